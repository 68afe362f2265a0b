// Reads precise orbits and clocks in SP3-c and SP3-d (Hilla 2010 and 2016, "The Extended Standard Product 3
// Orbit Format").
#ifndef ORSOLVA_FORMATS_SP3_READER_H
#define ORSOLVA_FORMATS_SP3_READER_H

#include <memory>
#include <string>
#include <string_view>

#include "host/observation/precise_orbits.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// Whether a file that begins with this line is an SP3 file of any version.
bool IsSp3Line(std::string_view line);

/// Whether a regular file, compressed or not, begins as an SP3 file does.
bool IsSp3File(const std::string& path);

/// Adds the positions and clocks of an SP3 file, compressed or not, to those there.
///
/// Times of GPS, Galileo, QZSS, NavIC, BDS, GLONASS, UTC and TAI become GPS time. A clock of 999999 us is
/// absent, and a point with a position of 0 is left out. Of two points of a satellite at one time the
/// one that is not predicted is kept, else the one that was there first. Velocities and accuracies are not
/// read. A line that cannot be used is skipped with a notice.
/// @throws FileError when the file is no SP3-c or SP3-d file, or holds more points than
/// InputLimits::max_records
void ReadPreciseOrbits(std::unique_ptr<ByteSource> source, const std::string& name, Diagnostics& diagnostics,
                       const InputLimits& limits, PreciseOrbits& orbits);
void ReadPreciseOrbits(const std::string& path, Diagnostics& diagnostics, const InputLimits& limits,
                       PreciseOrbits& orbits);

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_SP3_READER_H
