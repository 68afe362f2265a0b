#include "host/rinex/line_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace orsolva_host {
namespace {

// Bytes read at once stay in the second cache of a core until they are lines.
constexpr std::size_t kPiece = 1U << 16;

}  // namespace

LineReader::LineReader(std::unique_ptr<ByteSource> source)
    : source_(std::move(source)), buffer_(2 * kLongestLine) {}

bool LineReader::Refill() {
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  const std::size_t count = source_->Read(buffer_.data() + end_, std::min(buffer_.size() - end_, kPiece));
  end_ += count;
  return count > 0;
}

bool LineReader::Next(std::string_view& line) {
  if (again_) {
    again_ = false;
    line = last_;
    return true;
  }
  std::size_t searched = 0;
  for (;;) {
    const char* start = buffer_.data() + begin_;
    const std::size_t held = end_ - begin_;
    const void* found = held > searched ? std::memchr(start + searched, '\n', held - searched) : nullptr;
    std::size_t length = found ? static_cast<const char*>(found) - start : held;
    std::size_t taken = found ? length + 1 : length;
    if (!found && held < kLongestLine) {
      searched = held;
      if (Refill()) continue;
      if (held == 0) return false;
      start = buffer_.data();
    }
    if (length > kLongestLine) length = taken = kLongestLine;
    unterminated_ = !found && length < kLongestLine;
    begin_ += taken;
    if (length > 0 && start[length - 1] == '\r') --length;
    line = last_ = std::string_view(start, length);
    ++number_;
    return true;
  }
}

}  // namespace orsolva_host
