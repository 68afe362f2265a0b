// A position as casters ask for it.
#ifndef ORSOLVA_LIVE_SOURCES_GGA_LINE_H
#define ORSOLVA_LIVE_SOURCES_GGA_LINE_H

#include <array>
#include <cstdint>
#include <string>

namespace orsolva_host::live {

/// A sentence GGA of NMEA 0183 with its checksum, without an end of line: a fix by single point positioning.
/// @param llh  latitude and longitude in degrees, height in m @param utc_s  seconds since 1970
std::string GgaLine(const std::array<double, 3>& llh, std::int64_t utc_s);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_GGA_LINE_H
