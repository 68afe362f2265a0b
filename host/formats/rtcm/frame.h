// Frames of the transport layer: preamble, length, message, CRC-24Q (RTCM 10403.3, section 4).
//
//   11010011 | 000000 | length, 10 bits | message of 0 to 1023 bytes | CRC-24Q, 24 bits
#ifndef ORSOLVA_FORMATS_RTCM_FRAME_H
#define ORSOLVA_FORMATS_RTCM_FRAME_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orsolva_host::rtcm {

constexpr std::size_t kMaxMessageBytes = 1023;
constexpr std::size_t kFrameHeadBytes = 3;
constexpr std::size_t kFrameCrcBytes = 3;

/// CRC-24Q of Qualcomm: polynomial 1864CFB hex, initial value 0, no reflection.
std::uint32_t Crc24q(std::string_view bytes);

/// A message as a frame. @pre at most kMaxMessageBytes
std::string FrameOf(std::string_view message);

struct FrameCounts {
  std::uint64_t frames = 0;         ///< with a correct CRC
  std::uint64_t frame_bytes = 0;    ///< of these frames
  std::uint64_t crc_errors = 0;     ///< wrong CRC where a frame had to begin
  std::uint64_t skipped_bytes = 0;  ///< in no frame, those of wrong frames included
  std::uint64_t cut_frames = 0;     ///< 1 when the data end within a frame
};

/// Finds frames in a stream of bytes that arrive in pieces of any size, and loses no frame to bytes of
/// another protocol before it: after a wrong CRC the search goes on one byte behind the preamble.
///
/// The six reserved bits must be 0, so that a preamble by chance seldom makes a live stream wait for the
/// length that follows it.
class FrameScanner {
 public:
  void Append(std::string_view bytes);
  /// No bytes follow: what waits for the rest of a frame is searched for shorter ones.
  void Finish() { finished_ = true; }

  /// The next message, valid until the next call. @return absent when more bytes are needed
  std::optional<std::string_view> Next();

  const FrameCounts& Counts() const { return counts_; }

 private:
  enum class Candidate { kFrame, kWrongCrc, kNone, kIncomplete };
  Candidate Examine(std::string_view rest) const;
  void Skip(std::size_t bytes);

  std::string buffer_;
  std::size_t begin_ = 0;
  bool expected_ = true;  ///< a frame must begin here: the beginning, or right behind another frame
  bool finished_ = false;
  FrameCounts counts_;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_FRAME_H
