#include "host/analysis/figures/epoch_groups.h"

#include <algorithm>
#include <utility>

#include "host/analysis/figures/nominal_counts.h"

namespace orsolva_host::analysis {

void EpochGroups::AddEpoch(const ObservationEpoch& epoch, const Station* station) {
  roster_.Take(epoch);
  span_.Add(epoch);
  if (span_.OverflowsNow() && span_.CountsOtherwise()) Recount();
  if (station != nullptr) station_ = *station;
  const std::int64_t steps =
      grid_.IsOn() ? PassBorders(epoch.time_ns, station, span_.NominalStep()) : span_.NominalStep();
  present_ += span_.NominalStep() > 0 && HasObservation(epoch);
  counts_.Add(epoch, roster_);
  sky_->Add(epoch, roster_, station, steps);
  completeness_.Add(epoch, roster_, *sky_, span_.NominalStep() > 0, span_.Kind());
  strength_.Add(epoch, roster_, *sky_);
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) mask_.Add(sky_->ElevationDegrees(i));
}

void EpochGroups::Recount() {
  std::vector<std::int64_t> borders_ns;
  for (const Mark& mark : marks_) borders_ns.push_back(mark.border_ns);
  std::vector<NominalCounts> counts =
      CountAgain(span_.Stretches(), borders_ns, sky_->TheVisibility(), station_ ? &*station_ : nullptr);
  const Span::Kinds kinds = span_.CountsOfKinds();
  for (std::size_t i = 0; i < marks_.size(); ++i) {
    marks_[i].present = counts[i].present;
    marks_[i].expected = std::move(counts[i].expected);
    marks_[i].completeness.Recount(kinds);
  }
  present_ = counts.back().present;
  if (station_) sky_->Replace(std::move(counts.back().expected));
  completeness_.Recount(kinds);
}

EpochGroups::Mark EpochGroups::MarkAt(std::int64_t border_ns) const {
  AnalysisResult result;
  counts_.FillIn(roster_, result);
  strength_.FillInSums(roster_, result);
  return {border_ns, present_, StreamSums(std::move(result)), completeness_, sky_->AllCounts()};
}

/// Marks every border since the epoch before; epochs lost before a border are expected there.
/// @return nominal epochs from the last border, or the epoch before, to this epoch
std::int64_t EpochGroups::PassBorders(std::int64_t time_ns, const Station* station, std::int64_t steps) {
  const std::int64_t number = grid_.NumberOf(time_ns);
  if (!begun_) window_ = number;
  for (; window_ < number && marks_.size() + 1 < WindowGrid::kMaxWindows; ++window_) {
    const std::int64_t border_ns = grid_.BeginOf(window_ + 1);
    const std::int64_t step_ns = steps > 1 ? (time_ns - nominal_ns_) / steps : 0;
    if (step_ns > 0) {
      const std::int64_t lost = std::min(steps - 1, (border_ns - 1 - nominal_ns_) / step_ns);
      nominal_ns_ += lost * step_ns;
      if (lost > 0) sky_->AddLost(nominal_ns_, station, lost);
      steps -= lost;
    }
    marks_.push_back(MarkAt(border_ns));
  }
  begun_ = true;
  if (steps > 0) nominal_ns_ = time_ns;
  return steps;
}

void EpochGroups::FillInCompleteness(const Mark& from, const Mark& to, WindowFigures& window) const {
  std::vector<ExpectedEpochs::Counts> expected = to.expected;
  for (std::size_t s = 0; s < from.expected.size(); ++s) {
    for (std::size_t level = 0; level < Visibility::kLevels; ++level) {
      expected[s].healthy[level] -= std::min(expected[s].healthy[level], from.expected[s].healthy[level]);
    }
  }
  expected.resize(sky_->AllCounts().size());
  AnalysisResult rows;
  rows.systems = std::move(window.systems);
  rows.signals = std::move(window.signals);
  completeness_.Between(from.completeness, to.completeness).FillIn(roster_, *sky_, expected, rows);
  window.systems = std::move(rows.systems);
  window.signals = std::move(rows.signals);
}

void EpochGroups::FillInWindows(AnalysisResult& result) const {
  if (!grid_.IsOn() || !begun_) return;
  const std::int64_t end_ns = std::max(grid_.BeginOf(window_ + 1), result.span.last_ns + 1);
  std::vector<Mark> marks = {Mark()};
  marks.insert(marks.end(), marks_.begin(), marks_.end());
  marks.push_back(MarkAt(end_ns));
  for (std::size_t i = 1; i < marks.size(); ++i) {
    WindowFigures window;
    window.from_ns =
        i > 1 ? marks[i - 1].border_ns : grid_.BeginOf(window_ - static_cast<std::int64_t>(marks_.size()));
    window.to_ns = marks[i].border_ns;
    window.span.present_epochs = marks[i].present - marks[i - 1].present;
    AddDifference(marks[i - 1].sums, marks[i].sums, window);
    FillInCompleteness(marks[i - 1], marks[i], window);
    result.windows.push_back(std::move(window));
  }
  FillInEpochs(result.span, result.windows);
}

void EpochGroups::FillIn(AnalysisResult& result) const {
  if (!span_.CountsOtherwise()) return FillInCounted(result);
  EpochGroups recounted = *this;
  recounted.Recount();
  recounted.FillInCounted(result);
}

void EpochGroups::FillInCounted(AnalysisResult& result) const {
  span_.FillIn(result.span);
  counts_.FillIn(roster_, result);
  sky_->FillIn(roster_, result);
  completeness_.FillIn(roster_, *sky_, result);
  mask_.FillIn(result.mask);
  strength_.FillIn(roster_, result);
  FillInWindows(result);
}

}  // namespace orsolva_host::analysis
