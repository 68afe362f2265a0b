// Which of the observed satellites the broadcast records cover, and how much of the span.
#ifndef ORSOLVA_REPORT_NAVIGATION_COVERAGE_H
#define ORSOLVA_REPORT_NAVIGATION_COVERAGE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/report/report.h"
#include "host/rinex/navigation_set.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/records.h"
#include "orsolva/signals.h"

namespace orsolva_host {

/// How long before and after its reference time a record gives positions, s. Same limits as the library's.
double RecordAge_s(int system);

/// Whether a satellite is one of the BDS numbers whose kind of orbit the library does not know: it never has
/// a position, whatever records there are.
bool HasNoOrbit(const std::string& satellite);

/// Counts, epoch by epoch, the satellites seen and those with a healthy record whose reference time lies
/// within RecordAge_s. GLONASS references are UTC; the few seconds to GPS time are left out.
class CoverageCounter {
 public:
  /// @param systems  letters of the systems that are judged
  CoverageCounter(const NavigationSet& set, std::string_view systems);

  /// Records that count from the next epoch on.
  void AddRecords(const NavigationSet& set);
  /// Satellites of other systems are passed over.
  void Add(const ObsEpoch_QC_gbt& epoch);

  /// One row for every satellite seen, in the order of systems and numbers.
  std::vector<NavigationCoverage> Rows() const;

 private:
  struct Satellite {
    std::vector<Time_gbt> references;  ///< of healthy records, ascending
    std::size_t last = 0;              ///< place of the one that covered the epoch before
    NavigationCoverage row;
    std::uint64_t covered_epochs = 0;
  };
  static constexpr int kMaxSatellites = ORSOLVA_MAX_NUMBERS;

  template <typename Record>
  void Take(int system, const std::vector<Record>& records);
  static bool Covers(Satellite& satellite, const Time_gbt& time, double age_s);

  std::array<bool, kSystems> judged_ = {};
  std::array<std::array<Satellite, kMaxSatellites>, kSystems> satellites_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_NAVIGATION_COVERAGE_H
