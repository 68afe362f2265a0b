// The events of a real day that docs/internals/slips.md lists one by one, held against what is found.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "host/analysis/slips/slip_detector.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_host::analysis {
namespace {

using orsolva_test::DataFile;

constexpr double kCutoff_deg = 10;
constexpr std::int64_t kDay_ns = 86'400'000'000'000, kSecond_ns = 1'000'000'000;

/// What each step leaves of the range, less its median, by satellite and time.
class Series : public DetectorObserver {
 public:
  void Decided(const SatelliteTrack& track, std::int64_t step) override {
    const StepState& s = track.At(step);
    metres_[{track.satellite, s.time_ns}] = (s.range_rate - s.range_median) * s.dt_s;
  }
  /// "0.3, 8.6, -0.1" cm: before, at and after a time; a dash where there is no step.
  std::string Around(SatelliteId satellite, std::int64_t time_ns, std::int64_t interval_ns) const {
    std::string text;
    for (const std::int64_t k : {-1, 0, 1}) {
      const auto found = metres_.find({satellite, time_ns + k * interval_ns});
      const bool known = found != metres_.end() && std::isfinite(found->second);
      if (k >= 0) text += ", ";
      text += known ? fmt::format("{:.1f}", found->second * 100 + 0.0) : "-";
    }
    return text;
  }

 private:
  std::map<std::pair<SatelliteId, std::int64_t>, double> metres_;
};

std::string TimeOf(const Event& event) {
  const std::int64_t s = event.time_ns % kDay_ns / kSecond_ns;
  return fmt::format("{:02}:{:02}:{:02}", s / 3600, s / 60 % 60, s % 60);
}

std::string SignalsOf(const Event& event) {
  std::string text;
  for (const SignalCode code : event.signals) text += fmt::format("{}{} ", code.band, code.attribute);
  return text.substr(0, text.size() - 1);
}

/// How the rows of both tables begin, and what is counted.
struct Found {
  std::vector<std::string> slips, clocks;
  int continuous = 0, unresolved = 0;
};

Found FoundOnTheDay() {
  Diagnostics notices;
  ObservationReader reader(DataFile("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz"), notices);
  NavigationReader records(notices);
  records.Read(DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz"));
  DetectorOptions options;
  options.position = reader.Header().position;
  options.glonass_channels = reader.Header().glonass_channels;
  Series series;
  SlipDetector detector(options, records.Broadcast(), &series);
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  while (reader.Next(*record, epoch)) detector.Add(epoch);
  detector.Finish();
  Found found;
  for (const Event& event : detector.TakeEvents()) {
    if (event.elevation_deg < kCutoff_deg) continue;
    const std::string name = fmt::format("{}{:02}", event.satellite.system, event.satellite.number);
    const std::string begin = fmt::format("| {} | {} | {:.1f} | ", TimeOf(event), name, event.elevation_deg);
    if (IsSlip(event.kind)) {
      found.slips.push_back(begin);
    } else if (event.kind == EventKind::kSatelliteClock) {
      found.clocks.push_back(begin + SignalsOf(event) + " | " +
                             series.Around(event.satellite, event.time_ns, 30 * kSecond_ns) + " | ");
    }
    found.continuous +=
        event.kind == EventKind::kGapContinuous || event.kind == EventKind::kSignalGapContinuous;
    found.unresolved +=
        event.kind == EventKind::kGapUnresolved || event.kind == EventKind::kSignalGapUnresolved;
  }
  return found;
}

/// The rows of a table that begin with a time of day, from a heading to the next one.
std::vector<std::string> RowsUnder(const std::string& heading) {
  std::ifstream page(std::string(ORSOLVA_SOURCE_DIR) + "/docs/internals/slips.md");
  std::vector<std::string> rows;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("#", 0) == 0) inside = line.find("# " + heading) != std::string::npos;
    if (inside && line.size() > 4 && line.rfind("| ", 0) == 0 && line[4] == ':') rows.push_back(line);
  }
  return rows;
}

void ExpectListed(const std::string& heading, const std::vector<std::string>& begins) {
  const std::vector<std::string> rows = RowsUnder(heading);
  EXPECT_EQ(rows.size(), begins.size());
  for (const std::string& begin : begins) {
    const auto has = [&](const std::string& row) { return row.rfind(begin, 0) == 0; };
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(), has), 1) << begin << "under \"" << heading << '"';
  }
}

TEST(ListedEvents, AreThoseFoundOnTheStationDay) {
  ORSOLVA_NEED_FILE(DataFile("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz"));
  const Found found = FoundOnTheDay();
  ExpectListed("Events of ESBC from 10 degrees up", found.slips);
  ExpectListed("Satellite clocks of ESBC from 10 degrees up", found.clocks);
  EXPECT_EQ(found.continuous, 264);
  EXPECT_EQ(found.unresolved, 39);
}

}  // namespace
}  // namespace orsolva_host::analysis
