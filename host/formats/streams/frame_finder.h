// Finds frames with a correct check sum in a stream of bytes.
#ifndef ORSOLVA_FORMATS_STREAMS_FRAME_FINDER_H
#define ORSOLVA_FORMATS_STREAMS_FRAME_FINDER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orsolva_host {

/// What bytes that begin like a frame are.
struct FrameCandidate {
  enum class Kind : std::uint8_t { kFrame, kWrongCrc, kNone, kIncomplete };

  Kind kind = Kind::kNone;
  std::size_t size = 0;      ///< of a frame, with its head and check sum
  std::string_view message;  ///< of a frame: what the finder gives
};

/// A kind of frames.
struct FrameForm {
  char first_byte;
  /// @param rest  at least one byte, the first byte of a frame
  FrameCandidate (*examine)(std::string_view rest);
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
  void Skip(std::size_t bytes);

  FrameForm form_;
  std::string buffer_;
  std::size_t begin_ = 0;
  bool expected_ = true;  ///< a frame must begin here: the beginning, or right behind another frame
  bool finished_ = false;
  FrameCounts counts_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_FRAME_FINDER_H
