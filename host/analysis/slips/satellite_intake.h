// One satellite of a stream: takes its observations in and keeps what the next epoch needs.
#ifndef ORSOLVA_ANALYSIS_SLIPS_SATELLITE_INTAKE_H
#define ORSOLVA_ANALYSIS_SLIPS_SATELLITE_INTAKE_H

#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/range_model.h"
#include "host/analysis/geometry/station.h"
#include "host/analysis/slips/glonass_channel.h"
#include "host/analysis/slips/receiver_clock.h"
#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

/// What the receiver clock did up to an epoch of the stream.
struct ClockSums {
  double metres = 0;         ///< of all known changes
  std::int64_t unknown = 0;  ///< epochs whose change is not known
};

/// What was tested so far, by satellite.
struct TestCounts {
  std::int64_t observed_epochs = 0;  ///< with a phase
  std::int64_t tested_steps = 0;
  std::int64_t untested_steps = 0;
  std::int64_t lost_lock_epochs = 0;
};

/// A satellite with its epoch at hand, from Begin to Append.
class SatelliteIntake {
 public:
  /// @param records  of the satellite, may be null; must outlive this
  SatelliteIntake(SatelliteId id, SatelliteRecords* records, std::optional<int> channel);

  SatelliteTrack track;
  TestCounts* counts = nullptr;  ///< kept by the detector

  /// Whether the epoch holds a phase of the satellite whose wavelength is known.
  bool IsUsable(const ObservationEpoch& epoch, const SatelliteObservation& satellite);

  /// Seconds to a time since the satellite's last epoch; 0 where there is none.
  double SecondsSinceLast(std::int64_t time_ns) const {
    return number_ < 0 ? 0 : SecondsBetween(time_ns, time_ns_);
  }
  /// Forgets the epochs before: the next one begins an arc.
  void StartArc();

  /// Takes an epoch's observations: range of both ends of the step by one record, phase and code changes.
  void Begin(const ObservationEpoch& epoch, const SatelliteObservation& satellite, const Station* station,
             std::int64_t number);

  /// Phase change for the receiver clock, over a step from the stream's epoch before.
  std::optional<ClockSample> SampleOfClock();
  /// Takes the step that led to an epoch of the stream out of what was learned of the satellite's clock.
  void DropFromClock(std::int64_t epoch) { clock_offsets_.Drop(epoch); }
  /// Change of code minus phase, and of the phase change itself; NaN where not known.
  double CodeMinusPhaseChange() const { return code_minus_phase_change_m_; }
  double PhaseChangeOfChange() const { return phase_change_m_ - last_phase_change_m_; }

  /// Adds the epoch to the track.
  /// @param shift_m       of the antenna over the step
  /// @param shift_doubt_m  one sigma of it along a line of sight
  /// @param reset_s       whole milliseconds that phases and codes jumped by where no clock is solved
  /// @param code_shift_m  to be taken off codes
  void Append(const ClockSums& clock, const Vector3& shift_m, double shift_doubt_m, double reset_s,
              double code_shift_m, double interval_s);

  std::int64_t LastEpoch() const { return number_; }
  /// Forgets the modelled range of the last epoch, which was that of another position.
  void ForgetRange() { range_station_stale_ = true; }
  bool Modelled() const { return step_modelled_; }
  /// Of the epoch at hand.
  const ModelledRange& Range() const { return range_; }
  const SatelliteObservation* Observation() const { return satellite_; }

 private:
  void LearnChannel(const ObservationEpoch& epoch, const SatelliteObservation& satellite);
  void ModelRange(const Station* station);
  double TravelCode() const;
  double Frequency(SignalCode code) const;
  void FindPlaces();
  std::size_t PlaceOf(SignalCode code) const;
  void AddSignal(SignalCode code, double frequency_hz);
  void MeasureChanges();
  void StoreSignals(double code_shift_m);

  SatelliteRecords* records_;
  std::optional<int> channel_;
  GlonassChannel learned_channel_;
  ClockOffsets clock_offsets_;
  std::vector<std::size_t> places_;  ///< in the track, of the epoch's signals with phases
  const ObservationEpoch* epoch_ = nullptr;
  const SatelliteObservation* satellite_ = nullptr;
  std::int64_t number_ = -1, last_number_ = -1;
  std::int64_t time_ns_ = 0, last_time_ns_ = 0;
  double travel_code_m_ = 0, last_travel_code_m_ = 0;
  std::optional<std::size_t> record_;
  ModelledRange range_;
  double range_change_m_ = 0;
  double last_mapping_ = kAbsent;
  bool step_modelled_ = false;
  bool range_station_stale_ = false;
  double phase_change_m_ = kAbsent, last_phase_change_m_ = kAbsent;
  double clock_change_sample_m_ = kAbsent;
  bool sample_has_two_bands_ = false;
  double code_minus_phase_m_ = kAbsent, code_minus_phase_change_m_ = kAbsent;
  SignalCode code_phase_signal_;
  ClockSums clock_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_SATELLITE_INTAKE_H
