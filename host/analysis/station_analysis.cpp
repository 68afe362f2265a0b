#include "host/analysis/station_analysis.h"

#include "host/analysis/slips/detector_observer.h"

namespace orsolva_host::analysis {

/// Hands what the detector sees on to each group of figures.
class StationAnalysis::Figures : public DetectorObserver {
 public:
  explicit Figures(const AnalysisOptions& options) : cutoff_deg_(options.elevation_cutoff_deg) {}

  void Started(double interval_s, const Station* station) override {
    interval_s_ = interval_s;
    with_orbits_ = station != nullptr;
  }

  void FillIn(AnalysisResult& result) const {
    result.with_orbits = with_orbits_;
    result.elevation_cutoff_deg = cutoff_deg_;
    result.span.interval_s = interval_s_;
  }

 private:
  double cutoff_deg_;
  double interval_s_ = 0;
  bool with_orbits_ = false;
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
  return result;
}

}  // namespace orsolva_host::analysis
