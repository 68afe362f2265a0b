// Blocks of SBF (Septentrio mosaic and AsteRx SBF Reference Guide, "SBF block header format"):
//
//   "$@" | CRC, 2 bytes | ID, 2 bytes | length of the block, 2 bytes | body
//
// The CRC is that of CCITT, of everything behind it. Times are in the body: TOW in ms at 8, WNc at 12.
#ifndef ORSOLVA_FORMATS_SBF_FRAME_H
#define ORSOLVA_FORMATS_SBF_FRAME_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/formats/streams/frame_finder.h"

namespace orsolva_host::sbf {

constexpr std::size_t kHeadBytes = 8;
constexpr std::size_t kTimedHeadBytes = 14;  ///< with TOW and WNc, which every block has

/// Far above 100 satellites with 6 signals each. A longer block is taken for chance: a stream would wait for
/// its end.
constexpr std::size_t kMaxBlockBytes = 32768;

// Numbers of blocks.
constexpr int kMeasEpoch = 4027;
constexpr int kGpsNav = 5891;
constexpr int kGloNav = 4004;
constexpr int kGalNav = 4002;
constexpr int kBdsNav = 4081;
constexpr int kQzsNav = 4095;
constexpr int kReceiverSetup = 5902;

/// Whether blocks of this number are decoded.
bool IsDecoded(int number);
/// GPSNav, GLONav, GALNav, BDSNav, QZSNav.
bool HoldsEphemeris(int number);

/// CRC-CCITT: polynomial 1021 hex, initial value 0, no reflection.
std::uint16_t CrcCcitt(std::string_view bytes);

/// Gives whole blocks, whose places are those of the reference guide.
extern const FrameForm kFrameForm;

/// Without the revision. @pre a block as a finder gives it
int NumberOf(std::string_view block);

/// TOW and WNc as nanoseconds since 1970-01-01, GPS time. Absent: do-not-use values, an impossible second, a
/// week before 2006 or after 2099, which is that of a receiver that does not know the date. @pre a block as a
/// finder gives it
std::optional<std::int64_t> TimeOf(std::string_view block);

/// A block with its head; the body is padded to a multiple of 4 bytes. @param body  from TOW on
std::string BlockOf(int number, std::string_view body);
/// TOW and WNc.
std::string TimeFields(std::int64_t time_ns);

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_FRAME_H
