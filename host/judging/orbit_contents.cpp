#include "host/judging/orbit_contents.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <utility>

#include "host/formats/sp3_reader.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"
#include "host/rinex/file_names.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kDay_s = 86400;

/// The message that carries the records of a satellite (RINEX 4.02, table 28).
std::string MessageOf(const KeplerRecord& record) {
  // Geostationary satellites of BDS broadcast D2 (BDS-SIS-ICD-B1I, 5.1).
  constexpr int kLastGeostationary = 5, kFirstGeostationary = 59;
  switch (record.satellite.system) {
    case 'E':
      return record.second_message ? "F/NAV" : "I/NAV";
    case 'C': {
      const int number = record.satellite.number;
      return number <= kLastGeostationary || number >= kFirstGeostationary ? "D2" : "D1";
    }
    default:
      return "LNAV";
  }
}

template <typename Record>
void Take(const Record& record, const std::string& message, OrbitContents& contents) {
  OrbitSystem& system = contents[record.satellite.system];
  system.satellites.insert(record.satellite.number);
  system.unhealthy += record.unhealthy ? 1 : 0;
  ++system.messages[message];
  ++system.times[std::llround(record.toe_s * 1e9)];
}

/// Day of "AAA0PPPTYP_YYYYDDDHHMM_LEN_SMP_ORB.SP3".
std::optional<std::int64_t> DayOfSp3Name(std::string_view name) {
  constexpr std::size_t kYear = 11, kDayOfYear = 15;
  std::int64_t year = 0, day = 0;
  if (name.size() < 22 || name[10] != '_' || name[22] != '_') return std::nullopt;
  if (ParseInteger(name.substr(kYear, 4), year) != FieldState::kNumber) return std::nullopt;
  if (ParseInteger(name.substr(kDayOfYear, 3), day) != FieldState::kNumber) return std::nullopt;
  if (year < 1980 || day < 1 || day > 366) return std::nullopt;
  return DaysFromCivil(static_cast<int>(year), 1, 1) + day - 1;
}

}  // namespace

std::size_t OrbitSystem::Total() const {
  std::size_t total = 0;
  for (const auto& [time, count] : times) total += count;
  return total;
}

std::optional<double> OrbitSystem::LongestStep_s() const {
  if (times.size() < 2) return std::nullopt;
  std::int64_t longest = 0;
  for (auto next = std::next(times.begin()); next != times.end(); ++next)
    longest = std::max(longest, next->first - std::prev(next)->first);
  return static_cast<double>(longest) / 1e9;
}

OrbitContents ContentsOf(const BroadcastRecords& records) {
  OrbitContents contents;
  for (const KeplerRecord& record : records.kepler) Take(record, MessageOf(record), contents);
  for (const StateVectorRecord& record : records.state_vectors)
    Take(record, record.satellite.system == 'S' ? "SBAS" : "FDMA", contents);
  return contents;
}

OrbitContents ContentsOf(const PreciseOrbits& orbits) {
  OrbitContents contents;
  for (const auto& [satellite, points] : orbits.satellites) {
    OrbitSystem& system = contents[satellite.system];
    system.satellites.insert(satellite.number);
    for (const PrecisePoint& point : points) ++system.times[point.time_ns];
  }
  return contents;
}

OrbitContents ReadOrbitContents(std::unique_ptr<ByteSource> bytes, const std::string& name,
                                Diagnostics& diagnostics, const InputLimits& limits) {
  PreciseOrbits orbits;
  ReadPreciseOrbits(std::move(bytes), name, diagnostics, limits, orbits);
  return ContentsOf(orbits);
}

OrbitSystem AllOf(const OrbitContents& contents) {
  OrbitSystem all;
  for (const auto& [letter, system] : contents) {
    for (const auto& [time, count] : system.times) all.times[time] += count;
  }
  return all;
}

std::string NameContradiction(const std::string& path, const OrbitContents& contents) {
  const std::string name = std::filesystem::path(path).filename().string();
  const auto rinex = ParseRinexName(name);
  const std::optional<std::int64_t> day = rinex ? rinex->day : DayOfSp3Name(name);
  const OrbitSystem all = AllOf(contents);
  if (!day || all.times.empty()) return {};
  const std::int64_t begin_ns = *day * kDay_s * kNanosecondsPerSecond;
  const auto first = all.times.lower_bound(begin_ns);
  if (first != all.times.end() && first->first < begin_ns + kDay_s * kNanosecondsPerSecond) return {};
  return fmt::format("the file name says {}, and no reference time is of that day",
                     TimeText({*day * kDay_s, 0}).substr(0, 10));
}

}  // namespace orsolva_host
