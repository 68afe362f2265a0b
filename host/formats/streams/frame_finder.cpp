#include "host/formats/streams/frame_finder.h"

#include <cstddef>

namespace orsolva_host {

void FrameFinder::Append(std::string_view bytes) {
  buffer_.erase(0, begin_);
  sums_.erase(sums_.begin(), sums_.begin() + static_cast<std::ptrdiff_t>(begin_));
  begin_ = 0;
  buffer_.append(bytes);
  form_.sum(bytes, sums_);
}

bool FrameFinder::IsRight(const FrameCandidate& found) const {
  const std::size_t begin = begin_ + found.checked_begin, end = begin_ + found.checked_end;
  return form_.sum_of_part(sums_[begin], sums_[end], end - begin) == found.check_sum;
}

void FrameFinder::Skip(std::size_t bytes) {
  begin_ += bytes;
  counts_.skipped_bytes += bytes;
  expected_ = false;
}

std::optional<std::string_view> FrameFinder::Next() {
  using Kind = FrameCandidate::Kind;
  while (begin_ < buffer_.size()) {
    const std::string_view rest = std::string_view(buffer_).substr(begin_);
    const FrameCandidate found = rest.front() == form_.first_byte ? form_.measure(rest) : FrameCandidate{};
    switch (found.kind) {
      case Kind::kMeasured:
        if (!IsRight(found)) {
          if (expected_) ++counts_.crc_errors;
          Skip(1);
          break;
        }
        begin_ += found.size;
        ++counts_.frames;
        counts_.frame_bytes += found.size;
        expected_ = true;
        return found.message;
      case Kind::kIncomplete:
        if (!finished_) return std::nullopt;
        if (expected_) ++counts_.cut_frames;
        Skip(1);
        break;
      case Kind::kNone: {
        const std::size_t next = rest.find(form_.first_byte, 1);
        Skip(next == std::string_view::npos ? rest.size() : next);
        break;
      }
    }
  }
  return std::nullopt;
}

}  // namespace orsolva_host
