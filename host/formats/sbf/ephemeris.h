// Decoded ephemerides: GPSNav, GLONav, GALNav, BDSNav, QZSNav (Septentrio mosaic and AsteRx SBF Reference
// Guide, blocks 5891, 4004, 4002, 4081 and 4095).
#ifndef ORSOLVA_FORMATS_SBF_EPHEMERIS_H
#define ORSOLVA_FORMATS_SBF_EPHEMERIS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/rinex/navigation_records.h"

namespace orsolva_host::sbf {

/// A record as a navigation file has it, with two differences: the time of GLONASS is GPS time, and the
/// accuracy of all systems is the index as transmitted (v[23]). Angles become radians by the pi of IS-GPS-200
/// (20.3.3.4.3). Weeks of reference times are those nearest to the time of the block.
/// @return absent when the block is too short, has no time, or has do-not-use values, an impossible satellite
/// or an impossible reference time
std::optional<NavigationRecord> ReadEphemeris(std::string_view block);

/// The block of such a record, single precision where the block has that; what NavigationRecord does not hold
/// is 0. @param time_ns  of the block @pre a system of the blocks above and a satellite that SBF has a number
/// for
std::string WriteEphemeris(const NavigationRecord& record, std::int64_t time_ns);

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_EPHEMERIS_H
