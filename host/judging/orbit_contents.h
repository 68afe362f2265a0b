// What files of broadcast records or precise orbits hold, by system.
#ifndef ORSOLVA_JUDGING_ORBIT_CONTENTS_H
#define ORSOLVA_JUDGING_ORBIT_CONTENTS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "host/observation/broadcast_records.h"
#include "host/observation/precise_orbits.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// The records or points of a system; times in GPS time.
struct OrbitSystem {
  std::set<int> satellites;
  std::size_t unhealthy = 0;                    ///< records that say so
  std::map<std::string, std::size_t> messages;  ///< records by the message they came in
  std::map<std::int64_t, std::size_t> times;    ///< records or points by reference time, ns

  std::size_t Total() const;
  /// The longest time between neighbouring reference times, s; absent with fewer than two.
  std::optional<double> LongestStep_s() const;
};

using OrbitContents = std::map<char, OrbitSystem>;

OrbitContents ContentsOf(const BroadcastRecords& records);
/// Points with a position.
OrbitContents ContentsOf(const PreciseOrbits& orbits);
/// The same of an SP3 file. @throws FileError
OrbitContents ReadOrbitContents(std::unique_ptr<ByteSource> bytes, const std::string& name,
                                Diagnostics& diagnostics, const InputLimits& limits);

/// All reference times together.
OrbitSystem AllOf(const OrbitContents& contents);

/// What the name of a file states and its reference times contradict, such as "the file name says 2020-06-25
/// (day 177), and no reference time is of that day"; empty when they agree or the name says nothing. Names of
/// RINEX navigation files and long names of SP3 files say a day.
std::string NameContradiction(const std::string& path, const OrbitContents& contents);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_ORBIT_CONTENTS_H
