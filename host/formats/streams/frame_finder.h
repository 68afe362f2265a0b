// Finds frames with a correct check sum in a stream of bytes.
#ifndef ORSOLVA_FORMATS_STREAMS_FRAME_FINDER_H
#define ORSOLVA_FORMATS_STREAMS_FRAME_FINDER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host {

/// What bytes that begin like a frame claim to be.
struct FrameCandidate {
  enum class Kind : std::uint8_t { kNone, kIncomplete, kMeasured };

  Kind kind = Kind::kNone;
  std::size_t size = 0;                            ///< with head and check sum
  std::size_t checked_begin = 0, checked_end = 0;  ///< of the bytes that the check sum is of
  std::uint32_t check_sum = 0;                     ///< as the frame states it
  std::string_view message;                        ///< what the finder gives
};

/// A kind of frames. Its check sum is one of those whose value for a part follows from the sums before the
/// part and before its end: so a false beginning does not cost the length that it claims.
struct FrameForm {
  char first_byte;
  /// @param rest  at least one byte, the first byte of a frame
  FrameCandidate (*measure)(std::string_view rest);
  /// Appends the check sum of everything so far after each byte. @param sums  at first a single 0
  void (*sum)(std::string_view bytes, std::vector<std::uint32_t>& sums);
  std::uint32_t (*sum_of_part)(std::uint32_t before, std::uint32_t until, std::size_t bytes);
};

struct FrameCounts {
  std::uint64_t frames = 0;         ///< with a correct CRC
  std::uint64_t frame_bytes = 0;    ///< of these frames
  std::uint64_t crc_errors = 0;     ///< wrong CRC where a frame had to begin
  std::uint64_t skipped_bytes = 0;  ///< in no frame, those of wrong frames included
  std::uint64_t cut_frames = 0;     ///< 1 when the data end within a frame
};

/// Finds frames in a stream of bytes that arrive in pieces of any size, and loses no frame to bytes of
/// another protocol before it: after a wrong CRC the search goes on one byte behind the frame's first.
class FrameFinder {
 public:
  explicit FrameFinder(const FrameForm& form) : form_(form) {}

  void Append(std::string_view bytes);
  /// No bytes follow: what waits for the rest of a frame is searched for shorter ones.
  void Finish() { finished_ = true; }

  /// The next message, valid until the next call. @return absent when more bytes are needed
  std::optional<std::string_view> Next();

  const FrameCounts& Counts() const { return counts_; }

 private:
  bool IsRight(const FrameCandidate& found) const;
  void Skip(std::size_t bytes);

  FrameForm form_;
  std::string buffer_;
  std::vector<std::uint32_t> sums_ = {
      0};  ///< check sums of all bytes before each byte of the buffer, and its end
  std::size_t begin_ = 0;
  bool expected_ = true;  ///< a frame must begin here: the beginning, or right behind another frame
  bool finished_ = false;
  FrameCounts counts_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_FRAME_FINDER_H
