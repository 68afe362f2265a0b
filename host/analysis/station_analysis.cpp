#include "host/analysis/station_analysis.h"

#include "host/analysis/figures/observation_counts.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/span.h"
#include "host/analysis/slips/detector_observer.h"

namespace orsolva_host::analysis {

/// Hands what the detector sees on to each group of figures.
class StationAnalysis::Figures : public DetectorObserver {
 public:
  explicit Figures(const AnalysisOptions& options)
      : cutoff_deg_(options.elevation_cutoff_deg), span_(options.detector.interval_s) {}

  void Started(double /*interval_s*/, const Station* station) override { with_orbits_ = station != nullptr; }

  void Taken(const ObservationEpoch& epoch, const ReceiverStep& /*receiver*/) override {
    roster_.Take(epoch);
    span_.Add(epoch);
    counts_.Add(epoch, roster_);
  }

  void FillIn(AnalysisResult& result) const {
    result.with_orbits = with_orbits_;
    result.elevation_cutoff_deg = cutoff_deg_;
    span_.FillIn(result.span);
    counts_.FillIn(roster_, result);
  }

 private:
  double cutoff_deg_;
  bool with_orbits_ = false;
  SignalRoster roster_;
  Span span_;
  ObservationCounts counts_;
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
