// Finds cycle slips and their likes in a stream of epochs.
//
// Epochs are taken one at a time; how they are grouped in calls changes nothing. An event comes out kLead
// epochs after its own. Memory is bounded by the satellites in view: a ring of kRing epochs per signal.
//
// All signals of a satellite are tested together against a Gaussian model of what may change from epoch to
// epoch: the range left after modelled orbit, clocks and troposphere, the ionosphere, and phase noise
// (prediction.h). Where that fails, whole or half cycles, a satellite clock, a patch of ionosphere and an
// outlier compete (decision.h).
#ifndef ORSOLVA_ANALYSIS_SLIPS_SLIP_DETECTOR_H
#define ORSOLVA_ANALYSIS_SLIPS_SLIP_DETECTOR_H

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/station.h"
#include "host/analysis/slips/decision.h"
#include "host/analysis/slips/detector_observer.h"
#include "host/analysis/slips/event.h"
#include "host/analysis/slips/satellite_intake.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

struct DetectorOptions {
  std::optional<Vector3> position;  ///< of the header; checked against codes where there are records
  double interval_s = 0;            ///< nominal; 0 or absurd: the median step of the first epochs
  std::array<std::optional<int>, 100>
      glonass_channels;  ///< by slot; records and the data fill what is missing
  std::shared_ptr<const PreciseOrbits> precise_orbits;  ///< used instead of records where they cover a time
};

/// One decided step, for those who look on (tests, injection of slips).
struct DecidedStep {
  SatelliteId satellite;
  std::int64_t time_ns = 0;
  double elevation_deg = kAbsent;
  double chi2 = kAbsent;  ///< before repair; NaN: not tested
  int signals = 0;
  bool weak = false;  ///< see StepState
};

class SlipDetector {
 public:
  /// @param records   broadcast orbits; may hold nothing
  /// @param observer  sees everything as it goes; may be null; must outlive this
  SlipDetector(const DetectorOptions& options, const BroadcastRecords& records,
               DetectorObserver* observer = nullptr);
  ~SlipDetector();

  /// Takes the next epoch. Epochs that do not go on in time are left out and counted.
  void Add(const ObservationEpoch& epoch);
  /// Decides what is still open. No epoch may follow.
  void Finish();

  /// Events decided since the last call, by time and satellite.
  std::vector<Event> TakeEvents();

  /// For those who need orbits of other satellites too.
  BroadcastStore& Orbits() { return records_; }
  const std::map<SatelliteId, TestCounts>& Counts() const { return counts_; }
  std::int64_t DisorderedEpochs() const { return disordered_; }
  double Interval() const { return interval_s_; }
  const std::optional<Station>& Position() const { return station_; }
  /// Steps decided since the last call; kept only once it has been called for the first time.
  std::vector<DecidedStep> TakeSteps();

 private:
  void Start();
  void Process(const ObservationEpoch& epoch);
  SatelliteIntake& IntakeOf(SatelliteId id);
  void BeginSatellites(const ObservationEpoch& epoch);
  void ShowRanges(const ObservationEpoch& epoch);
  void SolveReceiver(const ObservationEpoch& epoch);
  bool NoteClockReset(const ObservationEpoch& epoch, double change_m);
  void FindUnmodelledReset(const ObservationEpoch& epoch);
  void FindCodeJump(const ObservationEpoch& epoch);
  void FindCommonPart(std::int64_t width, double StepState::*common_m,
                      double (*rate_of)(const SatelliteTrack&, std::int64_t));
  void WatchIonosphere();
  void DecideUpTo(std::int64_t number);
  TestCounts& CountsOf(SatelliteIntake& intake);
  void Decide(SatelliteIntake& intake);
  void CollectEvents(SatelliteIntake& intake);
  void AddReceiverEvent(const ObservationEpoch& epoch, EventKind kind, double size_ms);

  DetectorOptions options_;
  BroadcastStore records_;
  DetectorObserver* observer_;
  std::optional<Station> station_;
  double interval_s_ = 0;
  std::vector<ObservationEpoch> start_;  ///< first epochs, until interval and position are known
  bool started_ = false;
  std::unique_ptr<Decision> decision_;
  std::map<SatelliteId, std::unique_ptr<SatelliteIntake>> satellites_;
  std::vector<SatelliteIntake*> present_;  ///< in the epoch at hand
  std::vector<SatelliteIntake*> active_;   ///< with open steps
  std::vector<ClockSample> samples_;
  std::vector<ModelledSatellite> modelled_;  ///< of the epoch at hand, for the observer
  std::int64_t number_ = -1;
  std::int64_t last_time_ns_ = 0;
  std::int64_t disordered_ = 0;
  ClockSums clock_;
  SortedWindow<9> clock_rates_;
  SortedWindow<kSkySamples> ionosphere_changes_m_;     ///< sizes, of two-band satellites from step to step
  SortedWindow<kSkySamples> ionosphere_departures_m_;  ///< sizes, from their medians
  Vector3 shift_m_ = {};
  double shift_doubt_m_ = 0;
  double reset_s_ = 0;
  bool was_reset_ = false;
  double code_shift_m_ = 0;
  std::array<ReceiverStep, kRing> receiver_steps_;
  std::vector<double> scratch_;
  std::vector<std::pair<std::int64_t, Event>> receiver_events_;  ///< by epoch number
  std::vector<Event> fresh_;                                     ///< decided with the epoch at hand
  std::vector<Event> events_;
  std::map<SatelliteId, TestCounts> counts_;
  std::vector<DecidedStep> steps_;
  bool keeps_steps_ = false;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_SLIP_DETECTOR_H
