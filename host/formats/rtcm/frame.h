// Frames of the transport layer: preamble, length, message, CRC-24Q (RTCM 10403.3, section 4).
//
//   11010011 | 000000 | length, 10 bits | message of 0 to 1023 bytes | CRC-24Q, 24 bits
#ifndef ORSOLVA_FORMATS_RTCM_FRAME_H
#define ORSOLVA_FORMATS_RTCM_FRAME_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/formats/streams/frame_finder.h"

namespace orsolva_host::rtcm {

constexpr std::size_t kMaxMessageBytes = 1023;
constexpr std::size_t kFrameHeadBytes = 3;
constexpr std::size_t kFrameCrcBytes = 3;

/// CRC-24Q of Qualcomm: polynomial 1864CFB hex, initial value 0, no reflection.
std::uint32_t Crc24q(std::string_view bytes);

/// A message as a frame. @pre at most kMaxMessageBytes
std::string FrameOf(std::string_view message);

using orsolva_host::FrameCounts;

/// The six reserved bits of a frame must be 0, so that a preamble by chance seldom makes a live stream wait
/// for the length that follows it.
extern const FrameForm kFrameForm;

class FrameScanner : public FrameFinder {
 public:
  FrameScanner() : FrameFinder(kFrameForm) {}
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_FRAME_H
