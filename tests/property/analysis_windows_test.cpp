// Windows of time add up to the whole, and change nothing of it.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/figures/windows.h"
#include "host/analysis/station_analysis.h"
#include "tests/support/analysis_sky.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::analysis;
using orsolva_test::AnalysisSky;
using orsolva_test::SkyOptions;

constexpr std::int64_t kHour_ns = 3600 * kNanosecondsPerSecond;

/// Three and a half hours from 12:20 on, with troubles of every kind and twenty minutes around 14:00 lost.
AnalysisSky TroubledAfternoon() {
  SkyOptions options;
  options.Start = 1593000000 + 1200;
  options.Epochs = 420;
  AnalysisSky sky{orsolva_test::SimulatedSky(options)};
  AddTroubles(sky, 7);
  constexpr std::int64_t kTwo_ns = (1593000000 + 7200) * kNanosecondsPerSecond;
  std::erase_if(sky.Epochs, [](const ObservationEpoch& epoch) {
    return epoch.time_ns >= kTwo_ns - kHour_ns / 6 && epoch.time_ns < kTwo_ns + kHour_ns / 6;
  });
  return sky;
}

AnalysisResult Analysed(const AnalysisSky& sky, double window_s) {
  AnalysisOptions options = sky.Options;
  options.window_s = window_s;
  StationAnalysis analysis(options, sky.Records);
  for (const ObservationEpoch& epoch : sky.Epochs) analysis.Add(epoch);
  analysis.Finish();
  return analysis.Result();
}

/// Sums of a count by system or signal.
using Sums = std::map<std::string, Count>;

template <typename Row>
Sums SumsOf(const std::vector<const std::vector<Row>*>& lists,
            const std::function<std::string(const Row&)>& name,
            const std::function<std::optional<Count>(const Row&)>& count) {
  Sums sums;
  for (const std::vector<Row>* list : lists) {
    for (const Row& row : *list) sums[name(row)] += count(row).value_or(0);
  }
  return sums;
}

template <typename Row>
struct CountCase {
  const char* name;
  std::function<std::optional<Count>(const Row&)> get;
};

template <typename Row>
std::vector<CountCase<Row>> Counts() {
  return {{"sure slips", [](const Row& r) { return r.slips.sure; }},
          {"unsure slips", [](const Row& r) { return r.slips.unsure; }},
          {"half cycles", [](const Row& r) { return r.slips.half_cycles; }},
          {"jumps", [](const Row& r) { return r.slips.unknown_size; }},
          {"tested", [](const Row& r) { return r.slips.tested_steps; }},
          {"untested", [](const Row& r) { return r.slips.untested_steps; }},
          {"flags", [](const Row& r) { return r.slips.loss_of_lock_flags; }},
          {"slips below", [](const Row& r) { return r.slips_below_cutoff.sure; }},
          {"interruptions", [](const Row& r) { return r.interruptions.by_signal; }},
          {"of satellites", [](const Row& r) { return r.interruptions.by_satellite; }},
          {"of the receiver", [](const Row& r) { return r.interruptions.by_receiver; }},
          {"slipped holes", [](const Row& r) { return r.interruptions.slipped; }},
          {"expected", [](const Row& r) { return r.cutoff.expected; }},
          {"observed", [](const Row& r) { return r.cutoff.observed; }},
          {"horizon expected", [](const Row& r) { return r.horizon.expected; }},
          {"horizon observed", [](const Row& r) { return r.horizon.observed; }}};
}

TEST(AnalysisWindows, CountsAddUpToThoseOfTheWhole) {
  const AnalysisResult result = Analysed(TroubledAfternoon(), 3600);
  std::vector<const std::vector<SystemFigures>*> systems;
  std::vector<const std::vector<SignalFigures>*> signals;
  Count expected = 0, present = 0, lost = 0;
  for (const WindowFigures& window : result.windows) {
    systems.push_back(&window.systems);
    signals.push_back(&window.signals);
    expected += window.span.expected_epochs.value();
    present += window.span.present_epochs.value();
    lost += window.span.lost_epochs.value();
  }
  EXPECT_EQ(expected, result.span.expected_epochs);
  EXPECT_EQ(present, result.span.present_epochs);
  EXPECT_EQ(lost, result.span.lost_epochs);
  const auto system_name = [](const SystemFigures& s) { return std::string(1, s.letter); };
  const auto signal_name = [](const SignalFigures& s) { return s.system + NameOf(s.code); };
  Count slips = 0;
  for (const CountCase<SystemFigures>& count : Counts<SystemFigures>()) {
    const Sums whole = SumsOf<SystemFigures>({&result.systems}, system_name, count.get);
    EXPECT_EQ(SumsOf<SystemFigures>(systems, system_name, count.get), whole) << count.name;
    if (std::string(count.name) == "sure slips") {
      for (const auto& [letter, sum] : whole) slips += sum;
    }
  }
  EXPECT_GT(slips, 5U);
  std::vector<CountCase<SignalFigures>> of_signals = Counts<SignalFigures>();
  of_signals.push_back({"codes", [](const SignalFigures& s) { return s.codes; }});
  of_signals.push_back({"phases", [](const SignalFigures& s) { return s.phases; }});
  of_signals.push_back({"strengths", [](const SignalFigures& s) { return s.strength.values; }});
  of_signals.push_back({"multipath", [](const SignalFigures& s) { return s.multipath.values; }});
  for (const CountCase<SignalFigures>& count : of_signals) {
    EXPECT_EQ(SumsOf<SignalFigures>(signals, signal_name, count.get),
              SumsOf<SignalFigures>({&result.signals}, signal_name, count.get))
        << count.name;
  }
}

TEST(AnalysisWindows, BeginAtFullHoursAndKeepThoseInsideAGap) {
  const AnalysisResult result = Analysed(TroubledAfternoon(), 600);
  ASSERT_EQ(result.windows.size(), 21U);
  for (const WindowFigures& window : result.windows) {
    EXPECT_EQ(window.from_ns % (600 * kNanosecondsPerSecond), 0);
    EXPECT_EQ(window.to_ns, window.from_ns + 600 * kNanosecondsPerSecond);
  }
  EXPECT_EQ(result.windows[0].from_ns, (1593000000 + 1200) * kNanosecondsPerSecond);
  // 13:50 to 14:10 is lost.
  for (const std::size_t i : {9U, 10U}) {
    const WindowFigures& window = result.windows[i];
    EXPECT_EQ(window.span.present_epochs, 0U);
    EXPECT_EQ(window.span.lost_epochs, 20U);
    ASSERT_FALSE(window.systems.empty());
    EXPECT_GT(window.systems[0].cutoff.expected.value(), 0U);
    EXPECT_EQ(window.systems[0].cutoff.observed, 0U);
    EXPECT_EQ(window.systems[0].satellites_observed, 0U);
    EXPECT_FALSE(window.systems[0].slips.tested_steps.has_value());
  }
}

TEST(AnalysisWindows, ChangeNothingOfTheWhole) {
  const AnalysisSky sky = TroubledAfternoon();
  const AnalysisResult with = Analysed(sky, 1800), without = Analysed(sky, 0);
  EXPECT_TRUE(without.windows.empty());
  ASSERT_EQ(with.signals.size(), without.signals.size());
  for (std::size_t i = 0; i < with.signals.size(); ++i) {
    const SignalFigures &a = with.signals[i], &b = without.signals[i];
    EXPECT_EQ(a.horizon.expected, b.horizon.expected);
    EXPECT_EQ(a.cutoff.observed, b.cutoff.observed);
    EXPECT_EQ(a.strength.mean_dbhz, b.strength.mean_dbhz);
    EXPECT_EQ(a.multipath.moving_m, b.multipath.moving_m);
    EXPECT_EQ(a.slips.sure, b.slips.sure);
    EXPECT_EQ(a.arcs.median_s, b.arcs.median_s);
  }
  EXPECT_EQ(with.position.mean_m, without.position.mean_m);
}

/// Of the whole length the differences are the whole; halves give back its mean and its mean square.
TEST(AnalysisWindows, GiveMeansAndRootsOfTheirOwnValues) {
  const AnalysisSky sky = TroubledAfternoon();
  const AnalysisResult result = Analysed(sky, 7200);
  ASSERT_EQ(result.windows.size(), 2U);
  for (const SignalFigures& whole : result.signals) {
    double sum = 0, squares = 0;
    for (const WindowFigures& window : result.windows) {
      for (const SignalFigures& part : window.signals) {
        if (part.system != whole.system || part.code != whole.code) continue;
        if (part.strength.mean_dbhz)
          sum += *part.strength.mean_dbhz * static_cast<double>(*part.strength.values);
        if (part.multipath.moving_m)
          squares += std::pow(*part.multipath.moving_m, 2) * static_cast<double>(*part.multipath.values);
      }
    }
    if (whole.strength.mean_dbhz) {
      EXPECT_NEAR(sum / static_cast<double>(*whole.strength.values), *whole.strength.mean_dbhz, 1e-9);
    }
    if (!whole.multipath.moving_m) continue;
    const double rms = std::sqrt(squares / static_cast<double>(*whole.multipath.values));
    EXPECT_NEAR(rms, *whole.multipath.moving_m, 1e-9) << whole.system << NameOf(whole.code);
  }
}

/// A signal that is lost for a whole window is missing in it.
TEST(AnalysisWindows, MissASignalThatTheWholeHolds) {
  SkyOptions options;
  options.Epochs = 360;
  AnalysisSky sky{orsolva_test::SimulatedSky(options)};
  const std::int64_t from_ns = sky.Epochs.front().time_ns + kHour_ns;
  for (ObservationEpoch& epoch : sky.Epochs) {
    if (epoch.time_ns < from_ns || epoch.time_ns >= from_ns + kHour_ns) continue;
    for (const SatelliteObservation& satellite : epoch.satellites) {
      for (std::size_t k = 0; k < satellite.signal_count; ++k) {
        SignalObservation& o = epoch.signals[satellite.first_signal + k];
        if (satellite.id.system == 'G' && o.code.band == '2') o.phase_cycles = o.pseudorange_m = kAbsent;
      }
    }
  }
  const AnalysisResult result = Analysed(sky, 3600);
  ASSERT_EQ(result.windows.size(), 3U);
  bool found = false;
  for (const SignalFigures& signal : result.windows[1].signals) {
    if (signal.system != 'G' || signal.code.band != '2') continue;
    found = true;
    EXPECT_GT(signal.cutoff.expected.value(), 100U);
    EXPECT_EQ(signal.cutoff.observed, 0U);
  }
  EXPECT_TRUE(found);
}

TEST(WindowGrid, CountsFromTheBeginOfGpsTime) {
  const WindowGrid weeks(7 * 86400.0);
  const std::int64_t begin_ns = 315'964'800 * kNanosecondsPerSecond;
  EXPECT_EQ(weeks.NumberOf(begin_ns), 0);
  EXPECT_EQ(weeks.NumberOf(begin_ns - 1), -1);
  EXPECT_EQ(weeks.NumberOf(1593043200 * kNanosecondsPerSecond), 2111);  // 2020-06-25
  EXPECT_EQ(weeks.BeginOf(2111), 1592697600 * kNanosecondsPerSecond);
}

}  // namespace
