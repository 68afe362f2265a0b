#include "host/analysis/figures/windows.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <type_traits>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/figures/system_order.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kGpsTimeBegins_ns = 315'964'800 * kNanosecondsPerSecond;
constexpr Count kMinMultipathValues = 50;

using MaybeCount = std::optional<Count>;

constexpr MaybeCount SlipFigures::*kSlipCounts[] = {&SlipFigures::sure,
                                                    &SlipFigures::unsure,
                                                    &SlipFigures::half_cycles,
                                                    &SlipFigures::unknown_size,
                                                    &SlipFigures::tested_steps,
                                                    &SlipFigures::untested_steps,
                                                    &SlipFigures::loss_of_lock_flags,
                                                    &SlipFigures::loss_of_lock_with_slip};
constexpr MaybeCount InterruptionFigures::*kInterruptionCounts[] = {
    &InterruptionFigures::by_signal,  &InterruptionFigures::by_satellite, &InterruptionFigures::by_receiver,
    &InterruptionFigures::continuous, &InterruptionFigures::slipped,      &InterruptionFigures::unresolved};

/// Sums never fall but where one is counted again in parts.
Count Less(const MaybeCount& later, const MaybeCount& earlier) {
  const Count from = earlier.value_or(0), to = later.value_or(0);
  return to > from ? to - from : 0;
}

void Set(const MaybeCount& later, const MaybeCount& earlier, MaybeCount& difference) {
  if (later) difference = Less(later, earlier);
}

/// Absent without a step in the window.
void Set(const SlipFigures& later, const SlipFigures& earlier, SlipFigures& difference) {
  if (Less(later.tested_steps, earlier.tested_steps) + Less(later.untested_steps, earlier.untested_steps) ==
      0)
    return;
  for (const auto count : kSlipCounts) Set(later.*count, earlier.*count, difference.*count);
}

void Set(const InterruptionFigures& later, const InterruptionFigures& earlier,
         InterruptionFigures& difference) {
  for (const auto count : kInterruptionCounts) Set(later.*count, earlier.*count, difference.*count);
}

template <typename Row>
void SetTracking(const Row& later, const Row& earlier, Row& difference) {
  Set(later.slips, earlier.slips, difference.slips);
  Set(later.slips_below_cutoff, earlier.slips_below_cutoff, difference.slips_below_cutoff);
  Set(later.interruptions, earlier.interruptions, difference.interruptions);
  Set(later.interruptions_below_cutoff, earlier.interruptions_below_cutoff,
      difference.interruptions_below_cutoff);
}

void AddMore(const MaybeCount& later, const MaybeCount& earlier, MaybeCount& sum) {
  if (later) sum = sum.value_or(0) + Less(later, earlier);
}

void AddMore(const SlipFigures& later, const SlipFigures& earlier, SlipFigures& sum) {
  for (const auto count : kSlipCounts) AddMore(later.*count, earlier.*count, sum.*count);
}

void AddMore(const InterruptionFigures& later, const InterruptionFigures& earlier, InterruptionFigures& sum) {
  for (const auto count : kInterruptionCounts) AddMore(later.*count, earlier.*count, sum.*count);
}

template <typename Row>
void AddMoreTracking(const Row& later, const Row& earlier, Row& sum) {
  AddMore(later.slips, earlier.slips, sum.slips);
  AddMore(later.slips_below_cutoff, earlier.slips_below_cutoff, sum.slips_below_cutoff);
  AddMore(later.interruptions, earlier.interruptions, sum.interruptions);
  AddMore(later.interruptions_below_cutoff, earlier.interruptions_below_cutoff,
          sum.interruptions_below_cutoff);
}

/// Of a mean or, with squares, of a root of mean squares; absent with fewer values than the least.
void SetMean(const std::optional<double>& later, const MaybeCount& later_values,
             const std::optional<double>& earlier, const MaybeCount& earlier_values, bool squares,
             Count least, std::optional<double>& mean, MaybeCount& values) {
  const Count more = Less(later_values, earlier_values);
  if (more == 0) return;
  values = more;
  // An RMS of few values is absent, and nothing can be taken off then.
  if (!later || more < least || (!earlier && earlier_values.value_or(0) > 0)) return;
  const auto sum = [squares](const std::optional<double>& value, const MaybeCount& count) {
    const double v = value.value_or(0);
    return (squares ? v * v : v) * static_cast<double>(count.value_or(0));
  };
  const double over = (sum(later, later_values) - sum(earlier, earlier_values)) / static_cast<double>(more);
  if (!squares) mean = over;
  if (squares && over > 0) mean = std::sqrt(over);
}

bool IsSame(const SignalFigures& a, const SignalFigures& b) {
  return a.system == b.system && a.code == b.code;
}

void SetSignal(const SignalFigures& later, const SignalFigures& earlier, SignalFigures& row) {
  row.frequency_hz = later.frequency_hz;
  Set(later.codes, earlier.codes, row.codes);
  Set(later.phases, earlier.phases, row.phases);
  Set(later.dopplers, earlier.dopplers, row.dopplers);
  Set(later.strengths, earlier.strengths, row.strengths);
  SetMean(later.strength.mean_dbhz, later.strength.values, earlier.strength.mean_dbhz,
          earlier.strength.values, false, 1, row.strength.mean_dbhz, row.strength.values);
  SetMean(later.multipath.moving_m, later.multipath.values, earlier.multipath.moving_m,
          earlier.multipath.values, true, kMinMultipathValues, row.multipath.moving_m, row.multipath.values);
  SetTracking(later, earlier, row);
}

void AddSignals(const StreamSums& earlier, const StreamSums& later, WindowFigures& window) {
  for (const SignalFigures& signal : later.signals) {
    const auto before = std::find_if(earlier.signals.begin(), earlier.signals.end(),
                                     [&](const SignalFigures& s) { return IsSame(s, signal); });
    AnalysisResult rows;
    rows.signals.swap(window.signals);
    SetSignal(signal, before == earlier.signals.end() ? SignalFigures() : *before,
              SystemSignalRow(rows, signal.system, signal.code));
    rows.signals.swap(window.signals);
  }
}

void AddSystems(const StreamSums& earlier, const StreamSums& later, WindowFigures& window) {
  AnalysisResult rows;
  rows.systems.swap(window.systems);
  for (const SystemFigures& system : later.systems) {
    const auto before = std::find_if(earlier.systems.begin(), earlier.systems.end(),
                                     [&](const SystemFigures& s) { return s.letter == system.letter; });
    SystemFigures& row = SystemRow(rows, system.letter);
    SetTracking(system, before == earlier.systems.end() ? SystemFigures() : *before, row);
    row.satellites_observed = row.satellites_observed.value_or(0);
  }
  for (const auto& [id, epochs] : later.satellites) {
    const auto before = std::find_if(earlier.satellites.begin(), earlier.satellites.end(),
                                     [&id = id](const auto& s) { return s.first == id; });
    if (before != earlier.satellites.end() && before->second == epochs) continue;
    MaybeCount& satellites = SystemRow(rows, id.system).satellites_observed;
    satellites = satellites.value_or(0) + 1;
  }
  rows.systems.swap(window.systems);
}

/// Epochs of a gap that lie before a time, evenly spread.
Count LostUntil(std::int64_t time_ns, const DataGap& gap) {
  const auto steps = static_cast<std::int64_t>(gap.missing_epochs) + 1;
  const std::int64_t step_ns = (gap.first_after_ns - gap.last_before_ns) / steps;
  if (time_ns <= gap.last_before_ns || step_ns == 0) return 0;
  return std::min(gap.missing_epochs, static_cast<Count>((time_ns - 1 - gap.last_before_ns) / step_ns));
}

}  // namespace

WindowGrid::WindowGrid(double length_s) : length_ns_(std::llround(length_s * 1e9)) {}

std::int64_t WindowGrid::NumberOf(std::int64_t time_ns) const {
  const std::int64_t since_ns = time_ns - kGpsTimeBegins_ns;
  const std::int64_t number = since_ns / length_ns_;
  return since_ns % length_ns_ < 0 ? number - 1 : number;
}

std::int64_t WindowGrid::BeginOf(std::int64_t number) const {
  return kGpsTimeBegins_ns + number * length_ns_;
}

StreamSums::StreamSums(AnalysisResult&& result)
    : systems(std::move(result.systems)), signals(std::move(result.signals)) {
  for (const SatelliteFigures& satellite : result.satellites) {
    if (satellite.observed_epochs) satellites.emplace_back(satellite.id, *satellite.observed_epochs);
  }
  for (SignalFigures& signal : signals) {
    signal.strength.mean_by_elevation = {};
    signal.strength.p5_by_elevation = {};
    signal.multipath.by_elevation = {};
  }
}

void AddDifference(const StreamSums& earlier, const StreamSums& later, WindowFigures& window) {
  AddSystems(earlier, later, window);
  AddSignals(earlier, later, window);
}

void AddLate(const StreamSums& before, const StreamSums& after, StreamSums& at_border) {
  const auto add = [](const auto& earlier, const auto& later, auto& sums, const auto& is_same) {
    for (const auto& row : later) {
      const auto same = [&](const auto& other) { return is_same(other, row); };
      const auto old = std::find_if(earlier.begin(), earlier.end(), same);
      auto sum = std::find_if(sums.begin(), sums.end(), same);
      // A row without its like at the border began after it, or in this step.
      if (sum == sums.end()) continue;
      AddMoreTracking(row, old == earlier.end() ? std::decay_t<decltype(row)>() : *old, *sum);
    }
  };
  add(before.systems, after.systems, at_border.systems,
      [](const SystemFigures& a, const SystemFigures& b) { return a.letter == b.letter; });
  add(before.signals, after.signals, at_border.signals, IsSame);
}

void FillInEpochs(const SpanFigures& whole, std::vector<WindowFigures>& windows) {
  for (WindowFigures& window : windows) {
    window.span.interval_s = whole.interval_s;
    window.span.lost_epochs = 0;
  }
  for (const DataGap& gap : whole.gaps) {
    Count before = 0;
    for (std::size_t i = 0; i < windows.size() && before < gap.missing_epochs; ++i) {
      const bool last = i + 1 == windows.size();
      const Count until = last ? gap.missing_epochs : LostUntil(windows[i].to_ns, gap);
      *windows[i].span.lost_epochs += until - before;
      before = until;
    }
  }
  for (WindowFigures& window : windows)
    window.span.expected_epochs = window.span.present_epochs.value_or(0) + *window.span.lost_epochs;
}

}  // namespace orsolva_host::analysis
