// Frames of UBX (u-blox ZED-F9P interface description, "UBX frame structure" and "UBX checksum"):
//
//   B5 62 | class | ID | length of the payload, 2 bytes | payload | CK_A CK_B
#ifndef ORSOLVA_FORMATS_UBX_FRAME_H
#define ORSOLVA_FORMATS_UBX_FRAME_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/formats/streams/frame_finder.h"

namespace orsolva_host::ubx {

/// The longest raw measurements have 16 + 255 * 32 bytes. A longer payload is taken for chance: a stream
/// would wait for its end.
constexpr std::size_t kMaxPayloadBytes = 8192;

/// CK_A in the low byte, CK_B in the high one (RFC 1145, 8-bit Fletcher). @param bytes  from the class on
std::uint16_t Checksum(std::string_view bytes);

/// Gives messages from the class on, up to the end of the payload.
extern const FrameForm kFrameForm;

/// Class times 256 plus ID, as 0x0215 for RXM-RAWX. @param message  as a finder gives it
int TypeOf(std::string_view message);
std::string_view PayloadOf(std::string_view message);

/// A message and its frame. @pre at most kMaxPayloadBytes
std::string MessageOf(int type, std::string_view payload);
std::string FrameOf(std::string_view message);

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_FRAME_H
