#include "host/report/analysis_figures.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::ArcFigures;
using analysis::CompletenessFigures;
using analysis::InterruptionFigures;
using analysis::IonosphereFigures;
using analysis::MaskFigures;
using analysis::MultipathFigures;
using analysis::PhaseNoiseFigures;
using analysis::PositionFigures;
using analysis::ReceiverClockFigures;
using analysis::SatelliteFigures;
using analysis::SignalFigures;
using analysis::SlipFigures;
using analysis::SpanFigures;
using analysis::StrengthFigures;
using analysis::SystemFigures;
using analysis::WideLaneFigures;

constexpr FigureSource kOurs = FigureSource::kAnalysis;
constexpr TextColumn kNoColumn = {};

/// Reads a member of a group of figures.
template <auto group, auto member>
std::optional<double> In(const typename MemberOf<decltype(group)>::Owner& owner) {
  return Get<member>(owner.*group);
}

template <typename Owner>
using Rows = std::vector<FigureRow<Owner>>;

template <typename Owner>
void Append(Rows<Owner>& rows, const Rows<Owner>& more) {
  rows.insert(rows.end(), more.begin(), more.end());
}

/// What has a column is also a field of the lines for grep, with the same decimals.
template <typename Owner>
FigureRow<Owner> Row(const char* key, FigureKind kind, std::optional<double> (*get)(const Owner&),
                     TextColumn text = kNoColumn) {
  return {key, kind, get, text, text.heading != nullptr ? text.decimals : kNotInSum, kOurs};
}

/// In the lines for grep alone.
template <typename Owner>
FigureRow<Owner> SumRow(const char* key, FigureKind kind, std::optional<double> (*get)(const Owner&),
                        int decimals = 0) {
  return {key, kind, get, kNoColumn, decimals, kOurs};
}

template <std::size_t axis>
std::optional<double> Scatter(const AnalysisResult& result) {
  const auto& scatter = result.position.scatter_enu_m;
  return scatter ? Finite((*scatter)[axis]) : std::nullopt;
}

std::optional<double> Gaps(const AnalysisResult& r) {
  if (!r.span.lost_epochs) return std::nullopt;
  return static_cast<double>(r.span.gaps.size() + r.span.further_gaps);
}

template <typename Value>
std::optional<double> SizeOf(const std::vector<Value>& list) {
  return static_cast<double>(list.size());
}

std::optional<double> NeverObserved(const AnalysisResult& r) {
  const std::optional<Count> count = NeverObservedHealthy(r);
  return count ? std::optional<double>(static_cast<double>(*count)) : std::nullopt;
}

/// Zero stands for an interval that nothing shows.
std::optional<double> Interval(const AnalysisResult& r) {
  return r.span.interval_s > 0 ? Finite(r.span.interval_s) : std::nullopt;
}

// Columns: key, kind, value, heading with width and decimals in the text report.
// clang-format off
template <typename Owner>
Rows<Owner> CompletenessRows() {
  return {
      Row<Owner>("horizon_expected_epochs",    FigureKind::kEpochs, In<&Owner::horizon, &CompletenessFigures::expected>),
      Row<Owner>("horizon_observed_epochs",    FigureKind::kEpochs, In<&Owner::horizon, &CompletenessFigures::observed>),
      Row<Owner>("horizon_completeness_ratio", FigureKind::kRatio,  In<&Owner::horizon, &CompletenessFigures::ratio>, {"Horiz %", 8, 2}),
      SumRow<Owner>("cutoff_expected_epochs",     FigureKind::kEpochs, In<&Owner::cutoff, &CompletenessFigures::expected>),
      SumRow<Owner>("cutoff_observed_epochs",     FigureKind::kEpochs, In<&Owner::cutoff, &CompletenessFigures::observed>),
      Row<Owner>("cutoff_completeness_ratio",  FigureKind::kRatio,  In<&Owner::cutoff, &CompletenessFigures::ratio>, {"Cut-off %", 10, 2}),
  };
}

template <typename Owner>
Rows<Owner> SlipRows() {
  return {
      Row<Owner>("sure_slips",                 FigureKind::kEvents,      In<&Owner::slips, &SlipFigures::sure>, {"Slips", 6, 0}),
      Row<Owner>("unsure_slips",               FigureKind::kEvents,      In<&Owner::slips, &SlipFigures::unsure>, {"Unsure", 7, 0}),
      Row<Owner>("half_cycle_slips",           FigureKind::kEvents,      In<&Owner::slips, &SlipFigures::half_cycles>, {"Half", 5, 0}),
      Row<Owner>("phase_jumps",                FigureKind::kEvents,      In<&Owner::slips, &SlipFigures::unknown_size>, {"Jumps", 6, 0}),
      SumRow<Owner>("tested_steps",               FigureKind::kSteps,       In<&Owner::slips, &SlipFigures::tested_steps>),
      Row<Owner>("untested_steps",             FigureKind::kSteps,       In<&Owner::slips, &SlipFigures::untested_steps>),
      Row<Owner>("weakly_tested_steps",        FigureKind::kSteps,       In<&Owner::slips, &SlipFigures::weakly_tested_steps>),
      SumRow<Owner>("observations_per_slip",      FigureKind::kObservations, In<&Owner::slips, &SlipFigures::observations_per_slip>),
      SumRow<Owner>("observations_without_slip",  FigureKind::kEpochs,      In<&Owner::slips, &SlipFigures::observations_without_slip>),
      Row<Owner>("slips_per_1000_observations", FigureKind::kNumber,     In<&Owner::slips, &SlipFigures::slips_per_1000>),
      Row<Owner>("loss_of_lock_flags",         FigureKind::kEvents,      In<&Owner::slips, &SlipFigures::loss_of_lock_flags>),
      Row<Owner>("loss_of_lock_with_slip",     FigureKind::kEvents,      In<&Owner::slips, &SlipFigures::loss_of_lock_with_slip>),
  };
}

template <typename Owner>
Rows<Owner> SlipRowsBelow() {
  return {
      Row<Owner>("below_cutoff_sure_slips",       FigureKind::kEvents, In<&Owner::slips_below_cutoff, &SlipFigures::sure>),
      Row<Owner>("below_cutoff_unsure_slips",     FigureKind::kEvents, In<&Owner::slips_below_cutoff, &SlipFigures::unsure>),
      Row<Owner>("below_cutoff_half_cycle_slips", FigureKind::kEvents, In<&Owner::slips_below_cutoff, &SlipFigures::half_cycles>),
      Row<Owner>("below_cutoff_phase_jumps",      FigureKind::kEvents, In<&Owner::slips_below_cutoff, &SlipFigures::unknown_size>),
      Row<Owner>("below_cutoff_tested_steps",     FigureKind::kSteps,  In<&Owner::slips_below_cutoff, &SlipFigures::tested_steps>),
      Row<Owner>("below_cutoff_untested_steps",   FigureKind::kSteps,  In<&Owner::slips_below_cutoff, &SlipFigures::untested_steps>),
      Row<Owner>("below_cutoff_weakly_tested_steps", FigureKind::kSteps, In<&Owner::slips_below_cutoff, &SlipFigures::weakly_tested_steps>),
      Row<Owner>("below_cutoff_observations_per_slip",       FigureKind::kObservations, In<&Owner::slips_below_cutoff, &SlipFigures::observations_per_slip>),
      Row<Owner>("below_cutoff_observations_without_slip",   FigureKind::kEpochs, In<&Owner::slips_below_cutoff, &SlipFigures::observations_without_slip>),
      Row<Owner>("below_cutoff_slips_per_1000_observations", FigureKind::kNumber, In<&Owner::slips_below_cutoff, &SlipFigures::slips_per_1000>),
      Row<Owner>("below_cutoff_loss_of_lock_flags",          FigureKind::kEvents, In<&Owner::slips_below_cutoff, &SlipFigures::loss_of_lock_flags>),
      Row<Owner>("below_cutoff_loss_of_lock_with_slip",      FigureKind::kEvents, In<&Owner::slips_below_cutoff, &SlipFigures::loss_of_lock_with_slip>),
  };
}

template <typename Owner>
Rows<Owner> TrackingRows() {
  return {
      Row<Owner>("arcs",                       FigureKind::kEvents,  In<&Owner::arcs, &ArcFigures::arcs>),
      Row<Owner>("median_arc_s",               FigureKind::kSeconds, In<&Owner::arcs, &ArcFigures::median_s>),
      Row<Owner>("longest_arc_s",              FigureKind::kSeconds, In<&Owner::arcs, &ArcFigures::longest_s>),
      SumRow<Owner>("interruptions_of_signals",   FigureKind::kEvents, In<&Owner::interruptions, &InterruptionFigures::by_signal>),
      SumRow<Owner>("interruptions_of_satellites", FigureKind::kEvents, In<&Owner::interruptions, &InterruptionFigures::by_satellite>),
      Row<Owner>("interruptions_of_receiver",  FigureKind::kEvents, In<&Owner::interruptions, &InterruptionFigures::by_receiver>),
      Row<Owner>("continuous_interruptions",   FigureKind::kEvents, In<&Owner::interruptions, &InterruptionFigures::continuous>),
      Row<Owner>("slipped_interruptions",      FigureKind::kEvents, In<&Owner::interruptions, &InterruptionFigures::slipped>),
      Row<Owner>("unresolved_interruptions",   FigureKind::kEvents, In<&Owner::interruptions, &InterruptionFigures::unresolved>),
      Row<Owner>("below_cutoff_interruptions_of_signals",    FigureKind::kEvents, In<&Owner::interruptions_below_cutoff, &InterruptionFigures::by_signal>),
      Row<Owner>("below_cutoff_interruptions_of_satellites", FigureKind::kEvents, In<&Owner::interruptions_below_cutoff, &InterruptionFigures::by_satellite>),
      Row<Owner>("below_cutoff_interruptions_of_receiver",   FigureKind::kEvents, In<&Owner::interruptions_below_cutoff, &InterruptionFigures::by_receiver>),
      Row<Owner>("below_cutoff_continuous_interruptions",    FigureKind::kEvents, In<&Owner::interruptions_below_cutoff, &InterruptionFigures::continuous>),
      Row<Owner>("below_cutoff_slipped_interruptions",       FigureKind::kEvents, In<&Owner::interruptions_below_cutoff, &InterruptionFigures::slipped>),
      Row<Owner>("below_cutoff_unresolved_interruptions",    FigureKind::kEvents, In<&Owner::interruptions_below_cutoff, &InterruptionFigures::unresolved>),
  };
}

template <typename Owner>
void AppendTracking(Rows<Owner>& rows) {
  Append(rows, SlipRows<Owner>());
  Append(rows, SlipRowsBelow<Owner>());
  Append(rows, TrackingRows<Owner>());
}

}  // namespace

std::optional<Count> NeverObservedHealthy(const AnalysisResult& result) {
  if (!result.with_orbits) return std::nullopt;
  const auto& list = result.never_observed;
  return static_cast<Count>(
      std::count_if(list.begin(), list.end(), [](const auto& s) { return s.healthy_epochs > 0; }));
}

std::vector<FigureRow<AnalysisResult>> AnalysisRows() {
  using Result = AnalysisResult;
  return {
      Row<Result>("data_interval_s",             FigureKind::kSeconds, Interval),
      Row<Result>("nominal_epochs",              FigureKind::kEpochs,  In<&Result::span, &SpanFigures::expected_epochs>),
      Row<Result>("present_epochs",              FigureKind::kEpochs,  In<&Result::span, &SpanFigures::present_epochs>),
      Row<Result>("usable_epochs",               FigureKind::kEpochs,  In<&Result::span, &SpanFigures::usable_epochs>),
      Row<Result>("missing_epochs",              FigureKind::kEpochs,  In<&Result::span, &SpanFigures::lost_epochs>),
      Row<Result>("disordered_epochs",           FigureKind::kEpochs,  In<&Result::span, &SpanFigures::disordered_epochs>),
      Row<Result>("data_gaps",                   FigureKind::kEvents,  Gaps),
      Row<Result>("receiver_mask_deg",           FigureKind::kDegrees, In<&Result::mask, &MaskFigures::lowest_deg>),
      Row<Result>("position_solutions",          FigureKind::kEpochs,  In<&Result::position, &PositionFigures::solutions>),
      Row<Result>("failed_solutions",            FigureKind::kEpochs,  In<&Result::position, &PositionFigures::failed>),
      Row<Result>("one_band_solutions",          FigureKind::kEpochs,  In<&Result::position, &PositionFigures::one_band_solutions>),
      Row<Result>("code_residual_rms_m",         FigureKind::kMetres,  In<&Result::position, &PositionFigures::residual_rms_m>),
      Row<Result>("pdop_median",                 FigureKind::kNumber,  In<&Result::position, &PositionFigures::pdop_median>),
      Row<Result>("pdop_p95",                    FigureKind::kNumber,  In<&Result::position, &PositionFigures::pdop_p95>),
      Row<Result>("scatter_east_m",              FigureKind::kMetres,  Scatter<0>),
      Row<Result>("scatter_north_m",             FigureKind::kMetres,  Scatter<1>),
      Row<Result>("scatter_up_m",                FigureKind::kMetres,  Scatter<2>),
      Row<Result>("antenna_moves",               FigureKind::kYesNo,   In<&Result::position, &PositionFigures::moving>),
      Row<Result>("solution_to_header_m",        FigureKind::kMetres,  In<&Result::position, &PositionFigures::distance_to_header_m>),
      Row<Result>("solution_to_given_m",         FigureKind::kMetres,  In<&Result::position, &PositionFigures::distance_to_given_m>),
      Row<Result>("receiver_clock_offset_s",     FigureKind::kClockOffset, In<&Result::receiver_clock, &ReceiverClockFigures::mean_offset_s>),
      Row<Result>("receiver_clock_drift_s_per_s", FigureKind::kClockRate,  In<&Result::receiver_clock, &ReceiverClockFigures::drift_s_per_s>),
      Row<Result>("receiver_clock_resets",       FigureKind::kEvents,  In<&Result::receiver_clock, &ReceiverClockFigures::resets>),
      Row<Result>("code_clock_jumps",            FigureKind::kEvents,  In<&Result::receiver_clock, &ReceiverClockFigures::code_clock_jumps>),
      Row<Result>("receiver_restarts",           FigureKind::kEvents,  In<&Result::receiver_clock, &ReceiverClockFigures::restarts>),
      Row<Result>("receiver_clock_steered",      FigureKind::kYesNo,   In<&Result::receiver_clock, &ReceiverClockFigures::steered>),
      Row<Result>("allan_deviation",             FigureKind::kNumber,  In<&Result::receiver_clock, &ReceiverClockFigures::allan_deviation>),
      Row<Result>("allan_deviation_10",          FigureKind::kNumber,  In<&Result::receiver_clock, &ReceiverClockFigures::allan_deviation_10>),
      Row<Result>("satellites_without_orbit",    FigureKind::kSatellites, [](const Result& r) { return SizeOf(r.without_record); }),
      Row<Result>("satellites_never_observed",   FigureKind::kSatellites, NeverObserved),
      Row<Result>("contradictions",              FigureKind::kEvents,  [](const Result& r) { return SizeOf(r.contradictions); }),
  };
}

std::vector<FigureRow<SystemFigures>> AnalysisSystemRows() {
  using System = SystemFigures;
  Rows<System> rows = {
      Row<System>("satellites_tracked",          FigureKind::kSatellites, Get<&System::satellites_observed>, {"Sats", 5, 0}),
      Row<System>("satellites_without_orbit",    FigureKind::kSatellites, Get<&System::satellites_without_record>, {"No orbit", 9, 0}),
      Row<System>("satellites_never_observed",   FigureKind::kSatellites, Get<&System::satellites_never_observed>),
  };
  Append(rows, CompletenessRows<System>());
  AppendTracking(rows);
  Append(rows, {
      Row<System>("roti_median_tecu_min",        FigureKind::kTecuPerMinute, In<&System::ionosphere, &IonosphereFigures::median_roti>),
      Row<System>("roti_p95_tecu_min",           FigureKind::kTecuPerMinute, In<&System::ionosphere, &IonosphereFigures::p95_roti>, {"ROTI95", 7, 2}),
      Row<System>("roti_windows",                FigureKind::kValues,  In<&System::ionosphere, &IonosphereFigures::windows>),
      Row<System>("disturbed_minutes",           FigureKind::kMinutes, In<&System::ionosphere, &IonosphereFigures::disturbed_minutes>),
      Row<System>("ionosphere_events",           FigureKind::kEvents,  In<&System::ionosphere, &IonosphereFigures::events>),
  });
  return rows;
}

std::vector<FigureRow<SignalFigures>> AnalysisSignalRows() {
  using Signal = SignalFigures;
  Rows<Signal> rows = {
      Row<Signal>("frequency_hz",                FigureKind::kHertz,   Get<&Signal::frequency_hz>),
      Row<Signal>("signal_satellites",           FigureKind::kSatellites, Get<&Signal::satellites>),
      Row<Signal>("code_values",                 FigureKind::kValues,  Get<&Signal::codes>),
      Row<Signal>("phase_values",                FigureKind::kValues,  Get<&Signal::phases>),
      Row<Signal>("doppler_values",              FigureKind::kValues,  Get<&Signal::dopplers>),
      Row<Signal>("strength_values",             FigureKind::kValues,  Get<&Signal::strengths>),
  };
  Append(rows, CompletenessRows<Signal>());
  Append(rows, {
      Row<Signal>("strength_mean_dbhz",          FigureKind::kDbHz,    In<&Signal::strength, &StrengthFigures::mean_dbhz>, {"SNR", 6, 1}),
      Row<Signal>("strength_p5_dbhz",            FigureKind::kDbHz,    In<&Signal::strength, &StrengthFigures::p5_dbhz>, {"P5", 6, 1}),
      Row<Signal>("strength_values_used",        FigureKind::kValues,  In<&Signal::strength, &StrengthFigures::values>),
      Row<Signal>("strength_drops",              FigureKind::kEvents,  [](const Signal& s) { return s.strength.values ? SizeOf(s.strength.drops) : std::nullopt; }),
      Row<Signal>("multipath_moving_rms_m",      FigureKind::kMetres,  In<&Signal::multipath, &MultipathFigures::moving_m>, {"MP m", 7, 3}),
      Row<Signal>("multipath_arc_rms_m",         FigureKind::kMetres,  In<&Signal::multipath, &MultipathFigures::whole_arc_m>, {nullptr, 0, 3}),
      Row<Signal>("multipath_values",            FigureKind::kValues,  In<&Signal::multipath, &MultipathFigures::values>),
      Row<Signal>("code_noise_m",                FigureKind::kMetres,  In<&Signal::multipath, &MultipathFigures::code_noise_m>, {"Noise m", 8, 3}),
      Row<Signal>("phase_noise_mm",              FigureKind::kMillimetres, In<&Signal::phase_noise, &PhaseNoiseFigures::noise_mm>, {nullptr, 0, 2}),
      Row<Signal>("phase_noise_values",          FigureKind::kValues,  In<&Signal::phase_noise, &PhaseNoiseFigures::values>),
  });
  AppendTracking(rows);
  return rows;
}

std::vector<FigureRow<SatelliteFigures>> AnalysisSatelliteRows() {
  using Satellite = SatelliteFigures;
  Rows<Satellite> rows = {
      Row<Satellite>("has_orbit",                FigureKind::kYesNo,   Get<&Satellite::has_record>),
      Row<Satellite>("tracked_epochs",           FigureKind::kEpochs,  Get<&Satellite::observed_epochs>, {"Epochs", 8, 0}),
      Row<Satellite>("highest_elevation_deg",    FigureKind::kDegrees, Get<&Satellite::highest_deg>, {"Highest", 8, 1}),
  };
  Append(rows, CompletenessRows<Satellite>());
  AppendTracking(rows);
  rows.push_back(Row<Satellite>("satellite_clock_events", FigureKind::kEvents, Get<&Satellite::satellite_clock_events>));
  return rows;
}

std::vector<FigureRow<WideLaneFigures>> WideLaneRows() {
  return {
      Row<WideLaneFigures>("wide_lane_spread_cycles", FigureKind::kCycles, Get<&WideLaneFigures::spread_cycles>),
      Row<WideLaneFigures>("wide_lane_spread_m",      FigureKind::kMetres, Get<&WideLaneFigures::spread_m>),
      Row<WideLaneFigures>("wide_lane_values",        FigureKind::kValues, Get<&WideLaneFigures::values>),
  };
}
// clang-format on

}  // namespace orsolva_host
