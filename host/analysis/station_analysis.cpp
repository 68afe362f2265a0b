#include "host/analysis/station_analysis.h"

#include "host/analysis/figures/observation_counts.h"
#include "host/analysis/figures/phase_groups.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/span.h"
#include "host/analysis/slips/detector_observer.h"

namespace orsolva_host::analysis {

/// Hands what the detector sees on to each group of figures.
class StationAnalysis::Figures : public DetectorObserver {
 public:
  explicit Figures(const AnalysisOptions& options)
      : cutoff_deg_(options.elevation_cutoff_deg), span_(options.detector.interval_s), phases_(cutoff_deg_) {}

  void Started(double interval_s, const Station* station) override {
    with_orbits_ = station != nullptr;
    phases_.Begin(interval_s);
  }

  void Taken(const ObservationEpoch& epoch, const ReceiverStep& receiver) override {
    roster_.Take(epoch);
    span_.Add(epoch);
    counts_.Add(epoch, roster_);
    phases_.AddEpoch(epoch, receiver.number);
  }

  void Decided(const SatelliteTrack& track, std::int64_t step) override { phases_.AddStep(track, step); }

  void Found(const Event& event) override { phases_.AddEvent(event); }

  void FillIn(AnalysisResult& result) const {
    result.with_orbits = with_orbits_;
    result.elevation_cutoff_deg = cutoff_deg_;
    span_.FillIn(result.span);
    counts_.FillIn(roster_, result);
    phases_.FillIn(result);
  }

 private:
  double cutoff_deg_;
  bool with_orbits_ = false;
  SignalRoster roster_;
  Span span_;
  ObservationCounts counts_;
  PhaseGroups phases_;
};

StationAnalysis::StationAnalysis(const AnalysisOptions& options, const BroadcastRecords& records)
    : figures_(std::make_unique<Figures>(options)), detector_(options.detector, records, figures_.get()) {}

StationAnalysis::~StationAnalysis() = default;

void StationAnalysis::Add(const ObservationEpoch& epoch) { detector_.Add(epoch); }

void StationAnalysis::Finish() { detector_.Finish(); }

std::vector<Event> StationAnalysis::TakeEvents() { return detector_.TakeEvents(); }

AnalysisResult StationAnalysis::Result() const {
  AnalysisResult result;
  figures_->FillIn(result);
  result.span.disordered_epochs = static_cast<Count>(detector_.DisorderedEpochs());
  return result;
}

}  // namespace orsolva_host::analysis
