#include "host/analysis/station_analysis.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/analysis/figures/epoch_groups.h"
#include "host/analysis/figures/phase_groups.h"
#include "host/analysis/figures/receiver_groups.h"
#include "host/analysis/figures/time_series.h"
#include "host/analysis/slips/detector_observer.h"

#include <optional>

namespace orsolva_host::analysis {

/// Hands what the detector sees on to each group of figures.
class StationAnalysis::Figures : public DetectorObserver {
 public:
  explicit Figures(const AnalysisOptions& options)
      : cutoff_deg_(options.elevation_cutoff_deg),
        epochs_(options.stated_interval_s, cutoff_deg_, options.window_s),
        phases_(cutoff_deg_) {
    if (!options.series) return;
    series_.emplace(cutoff_deg_);
    phases_.Multipath().KeepBlocks();
    phases_.Ionosphere().KeepWindows();
  }

  void UseOrbits(BroadcastStore& orbits) { epochs_.UseOrbits(orbits); }

  void Started(double interval_s, const Station* station) override {
    with_orbits_ = station != nullptr;
    epochs_.Begin(interval_s);
    phases_.Begin(interval_s);
    receiver_.Begin(interval_s);
  }

  void Modelled(const ObservationEpoch& epoch, const Station& station,
                const std::vector<ModelledSatellite>& satellites) override {
    const double clock_m = receiver_.AddRanges(epoch, station, satellites);
    if (series_) series_->AddSolution(epoch.time_ns, clock_m, receiver_.LastSolution());
  }

  void Taken(const ObservationEpoch& epoch, const ReceiverStep& receiver) override {
    epochs_.AddEpoch(epoch, receiver.station);
    while (borders_.size() < epochs_.Borders()) {
      borders_.push_back(receiver.number);
      border_times_ns_.push_back(epoch.time_ns);
    }
    phases_.AddEpoch(epoch, receiver.number);
    receiver_.AddEpoch(epoch, receiver);
    if (series_) AddToSeries(epoch);
  }

  void Decided(const SatelliteTrack& track, std::int64_t step) override {
    const std::int64_t epoch = track.At(step).epoch;
    while (phase_marks_.size() < borders_.size() && epoch >= borders_[phase_marks_.size()]) {
      phase_marks_.push_back(phases_.Sums());
    }
    AddUpTo(FirstAfter(borders_, epoch), [&] { phases_.AddStep(track, step); });
  }

  void Found(const Event& event) override {
    AddUpTo(FirstAfter(border_times_ns_, event.time_ns), [&] { phases_.AddEvent(event); });
    receiver_.AddEvent(event);
    if (series_) series_->AddEvent(event, epochs_.Roster());
  }

  /// No step follows.
  void Finish() {
    if (series_ || keeps_multipath_) phases_.Multipath().EndAll();
    if (!series_) return;
    phases_.Ionosphere().EndAll();
    CloseBins(true);
  }

  void KeepMultipath() {
    keeps_multipath_ = true;
    phases_.Multipath().KeepBlocks();
  }

  std::vector<MultipathBlock> TakeMultipath() {
    TakeBlocks();
    return std::exchange(multipath_, {});
  }

  std::vector<SeriesRow> TakeSeries() { return series_ ? series_->Take() : std::vector<SeriesRow>(); }

  void FillIn(const StationDescription& stated, AnalysisResult& result) const {
    result.with_orbits = with_orbits_;
    result.elevation_cutoff_deg = cutoff_deg_;
    epochs_.FillIn(result);
    phases_.FillIn(result);
    receiver_.FillIn(stated, result);
    FillInWindows(result);
  }

 private:
  /// Of the borders whose sums are noted, the first one after an epoch.
  std::size_t FirstAfter(const std::vector<std::int64_t>& borders, std::int64_t epoch) const {
    const auto noted = borders.begin() + static_cast<std::ptrdiff_t>(phase_marks_.size());
    return static_cast<std::size_t>(std::upper_bound(borders.begin(), noted, epoch) - borders.begin());
  }

  /// Where the stream ends, all steps of a satellite are decided before those of the next one, and events are
  /// found after all of them: what belongs before a border whose sums are noted is added to those, too.
  template <typename Add>
  void AddUpTo(std::size_t first_border, const Add& add) {
    if (first_border == phase_marks_.size()) return add();
    const StreamSums before = phases_.Sums();
    add();
    const StreamSums after = phases_.Sums();
    for (std::size_t i = first_border; i < phase_marks_.size(); ++i) AddLate(before, after, phase_marks_[i]);
  }

  /// What the phases add to the windows.
  void FillInWindows(AnalysisResult& result) const {
    if (result.windows.empty()) return;
    const StreamSums now = phases_.Sums();
    StreamSums before;
    for (std::size_t i = 0; i < result.windows.size(); ++i) {
      const StreamSums& after = i < phase_marks_.size() ? phase_marks_[i] : now;
      AddDifference(before, after, result.windows[i]);
      before = after;
    }
  }

  void AddToSeries(const ObservationEpoch& epoch) {
    series_->AddEpoch(epoch, epochs_.Roster(), epochs_.TheSky());
    if (!series_->BeganBin()) return;
    phases_.Multipath().EndBefore(series_->DecidedBefore());
    CloseBins(false);
  }

  void CloseBins(bool all) {
    const SignalRoster& roster = epochs_.Roster();
    TakeBlocks();
    for (const RotiWindow& window : phases_.Ionosphere().TakeWindows()) series_->AddRoti(window, roster);
    series_->Close(roster, all);
  }

  /// Hands blocks of multipath to those who want them.
  void TakeBlocks() {
    phases_.Multipath().TakeBlocks([&](SatelliteId id, SignalCode code, const JudgedBlock& block) {
      if (series_) series_->AddMultipath(id, code, block, epochs_.Roster());
      if (keeps_multipath_)
        multipath_.push_back({id, code, block.time_ns, block.squares, static_cast<Count>(block.values)});
    });
  }

  double cutoff_deg_;
  bool with_orbits_ = false;
  bool keeps_multipath_ = false;
  EpochGroups epochs_;
  PhaseGroups phases_;
  ReceiverGroups receiver_;
  std::optional<TimeSeries> series_;
  std::vector<MultipathBlock> multipath_;      ///< since the last call
  std::vector<std::int64_t> borders_;          ///< of windows: number of the first epoch after each
  std::vector<std::int64_t> border_times_ns_;  ///< and its time
  std::vector<StreamSums> phase_marks_;        ///< at those whose next step has been decided
};

StationAnalysis::StationAnalysis(const AnalysisOptions& options, const BroadcastRecords& records)
    : figures_(std::make_unique<Figures>(options)), detector_(options.detector, records, figures_.get()) {
  figures_->UseOrbits(detector_.Orbits());
}

StationAnalysis::~StationAnalysis() = default;

void StationAnalysis::Add(const ObservationEpoch& epoch) { detector_.Add(epoch); }

void StationAnalysis::Finish() {
  detector_.Finish();
  figures_->Finish();
}

std::vector<Event> StationAnalysis::TakeEvents() { return detector_.TakeEvents(); }

void StationAnalysis::KeepMultipath() { figures_->KeepMultipath(); }

std::vector<MultipathBlock> StationAnalysis::TakeMultipath() { return figures_->TakeMultipath(); }

std::vector<SeriesRow> StationAnalysis::TakeSeries() { return figures_->TakeSeries(); }

AnalysisResult StationAnalysis::Result(const StationDescription& stated) const {
  AnalysisResult result;
  figures_->FillIn(stated, result);
  result.span.disordered_epochs = static_cast<Count>(detector_.DisorderedEpochs());
  return result;
}

}  // namespace orsolva_host::analysis
