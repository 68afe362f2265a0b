#include "host/report/headline.h"

#include <algorithm>
#include <string_view>

#include "host/analysis/figures/slip_sums.h"
#include "host/report/analysis_figures.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::SignalFigures;
using analysis::SlipFigures;
using analysis::SystemFigures;

/// Adds what is there; a sum of nothing stays absent.
void Sum(std::optional<Count>& sum, const std::optional<Count>& more) {
  if (more) sum = sum.value_or(0) + *more;
}

/// The multipath of the signal named, else of the one of its band with the most values.
std::optional<double> GpsMultipath(const AnalysisResult& result, std::string_view named) {
  const SignalFigures* best = nullptr;
  for (const SignalFigures& signal : result.signals) {
    if (signal.system != 'G' || signal.code.band != named[0] || !signal.multipath.moving_m) continue;
    const bool is_named = NameOf(signal.code) == named;
    if (is_named || best == nullptr ||
        signal.multipath.values.value_or(0) > best->multipath.values.value_or(0)) {
      best = &signal;
    }
    if (is_named) break;
  }
  return best == nullptr ? std::nullopt : best->multipath.moving_m;
}

std::optional<double> WorstMultipath(const AnalysisResult& result) {
  std::optional<double> worst;
  for (const SignalFigures& signal : result.signals) {
    const std::optional<double>& rms_m = signal.multipath.moving_m;
    if (rms_m && (!worst || *rms_m > *worst)) worst = rms_m;
  }
  return worst;
}

void AddSlips(const SlipFigures& slips, Headline& headline) {
  if (slips.tested_steps.value_or(0) == 0) return;
  Sum(headline.tested_steps, slips.tested_steps);
  for (const auto& count : {slips.sure, slips.unsure, slips.half_cycles, slips.unknown_size}) {
    Sum(headline.cycle_slips, count);
  }
}

void AddSystem(const SystemFigures& system, Headline& headline) {
  Sum(headline.satellites_tracked, system.satellites_observed);
  Sum(headline.cutoff_expected, system.cutoff.expected);
  Sum(headline.cutoff_observed, system.cutoff.observed);
  Sum(headline.interruptions_of_satellites, system.interruptions.by_satellite);
  Sum(headline.interruptions_of_signals, system.interruptions.by_signal);
  AddSlips(system.slips, headline);
}

void Divide(Headline& h) {
  if (h.cutoff_expected.value_or(0) > 0 && h.cutoff_observed) {
    h.cutoff_completeness = static_cast<double>(*h.cutoff_observed) / static_cast<double>(*h.cutoff_expected);
  }
  const Count tested = h.tested_steps.value_or(0);
  const Count slips = h.cycle_slips.value_or(0);
  if (tested > 0 && slips == 0) h.observations_without_slip = tested;
  if (tested >= analysis::SlipSums::kMinTestedSteps && slips > 0) {
    h.observations_per_slip = static_cast<double>(tested) / static_cast<double>(slips);
  }
}

}  // namespace

Headline HeadlineOf(const AnalysisResult& result) {
  Headline h;
  h.nominal_epochs = result.span.expected_epochs;
  h.present_epochs = result.span.present_epochs;
  h.missing_epochs = result.span.lost_epochs;
  if (result.span.lost_epochs) h.data_gaps = result.span.gaps.size() + result.span.further_gaps;
  for (const SystemFigures& system : result.systems) AddSystem(system, h);
  if (h.satellites_tracked) {
    h.satellites_without_orbit = result.without_record.size();
    h.satellites_with_orbit =
        *h.satellites_tracked - std::min(*h.satellites_tracked, *h.satellites_without_orbit);
  }
  h.satellites_never_observed = NeverObservedHealthy(result);
  Divide(h);
  h.gps_mp1_m = GpsMultipath(result, "1C");
  h.gps_mp2_m = GpsMultipath(result, "2W");
  h.worst_multipath_m = WorstMultipath(result);
  h.solution_to_header_m = result.position.distance_to_header_m;
  h.code_residual_rms_m = result.position.residual_rms_m;
  h.contradictions = result.contradictions.size();
  return h;
}

// The text of a heading is the line of the report and, after the bar, what follows the number in it.
// clang-format off
std::vector<FigureRow<Headline>> HeadlineRows() {
  constexpr FigureSource kOurs = FigureSource::kAnalysis;
  return {
      {"nominal_epochs",              FigureKind::kEpochs,       Get<&Headline::nominal_epochs>,              {"Epochs|nominal", 0, 0}, 0, kOurs},
      {"present_epochs",              FigureKind::kEpochs,       Get<&Headline::present_epochs>,              {"Epochs|present", 0, 0}, 0, kOurs},
      {"missing_epochs",              FigureKind::kEpochs,       Get<&Headline::missing_epochs>,              {"Epochs|missing", 0, 0}, 0, kOurs},
      {"data_gaps",                   FigureKind::kEvents,       Get<&Headline::data_gaps>,                   {"Epochs|gaps", 0, 0}, 0, kOurs},
      {"cutoff_expected_epochs",      FigureKind::kEpochs,       Get<&Headline::cutoff_expected>,             {"Completeness|observations expected", 0, 0}, 0, kOurs},
      {"cutoff_observed_epochs",      FigureKind::kEpochs,       Get<&Headline::cutoff_observed>,             {"Completeness|observed", 0, 0}, 0, kOurs},
      {"cutoff_completeness_ratio",   FigureKind::kRatio,        Get<&Headline::cutoff_completeness>,         {"Completeness|", 0, 2}, 2, kOurs},
      {"satellites_tracked",          FigureKind::kSatellites,   Get<&Headline::satellites_tracked>,          {"Satellites|observed", 0, 0}, 0, kOurs},
      {"satellites_with_orbit",       FigureKind::kSatellites,   Get<&Headline::satellites_with_orbit>,       {"Satellites|with orbit", 0, 0}, 0, kOurs},
      {"satellites_without_orbit",    FigureKind::kSatellites,   Get<&Headline::satellites_without_orbit>,    {"Satellites|without orbit", 0, 0}, 0, kOurs},
      {"satellites_never_observed",   FigureKind::kSatellites,   Get<&Headline::satellites_never_observed>,   {"Satellites|never observed", 0, 0}, 0, kOurs},
      {"cycle_slips",                 FigureKind::kEvents,       Get<&Headline::cycle_slips>,                 {"Cycle slips|", 0, 0}, 0, kOurs},
      {"tested_steps",                FigureKind::kSteps,        Get<&Headline::tested_steps>,                {"Cycle slips|tested steps", 0, 0}, 0, kOurs},
      {"observations_per_slip",       FigureKind::kObservations, Get<&Headline::observations_per_slip>,       {"Cycle slips|observations per slip", 0, 0}, 0, kOurs},
      {"observations_without_slip",   FigureKind::kEpochs,       Get<&Headline::observations_without_slip>,   {}, 0, kOurs},
      {"interruptions_of_satellites", FigureKind::kEvents,       Get<&Headline::interruptions_of_satellites>, {"Interruptions|of satellites", 0, 0}, 0, kOurs},
      {"interruptions_of_signals",    FigureKind::kEvents,       Get<&Headline::interruptions_of_signals>,    {"Interruptions|of single signals", 0, 0}, 0, kOurs},
      {"gps_mp1_rms_m",               FigureKind::kMetres,       Get<&Headline::gps_mp1_m>,                   {"Multipath|MP1", 0, 3}, 3, kOurs},
      {"gps_mp2_rms_m",               FigureKind::kMetres,       Get<&Headline::gps_mp2_m>,                   {"Multipath|MP2 of GPS", 0, 3}, 3, kOurs},
      {"worst_multipath_rms_m",       FigureKind::kMetres,       Get<&Headline::worst_multipath_m>,           {"Multipath|worst signal", 0, 3}, 3, kOurs},
      {"solution_to_header_m",        FigureKind::kMetres,       Get<&Headline::solution_to_header_m>,        {nullptr, 0, 2}, 2, kOurs},
      {"code_residual_rms_m",         FigureKind::kMetres,       Get<&Headline::code_residual_rms_m>,         {nullptr, 0, 2}, 2, kOurs},
      {"contradictions",              FigureKind::kEvents,       Get<&Headline::contradictions>,              {}, 0, kOurs},
  };
}
// clang-format on

}  // namespace orsolva_host
