// What the slip detector hands on to those who make figures of it, in the order of time.
#ifndef ORSOLVA_ANALYSIS_SLIPS_DETECTOR_OBSERVER_H
#define ORSOLVA_ANALYSIS_SLIPS_DETECTOR_OBSERVER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/analysis/geometry/range_model.h"
#include "host/analysis/geometry/station.h"
#include "host/analysis/slips/event.h"
#include "host/analysis/slips/satellite_track.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

/// The receiver over the step that leads to an epoch.
struct ReceiverStep {
  std::int64_t number = -1;          ///< of the epoch in the stream, from 0
  const Station* station = nullptr;  ///< null without broadcast records
  bool clock_known = false;
  double clock_change_m = kAbsent;  ///< of the receiver clock over the step, from phases; resets included
  bool clock_reset = false;         ///< the change holds a reset
  Vector3 shift_m = {};             ///< of the antenna over the step, where it moves
};

/// A satellite of an epoch whose range is known.
struct ModelledSatellite {
  std::size_t place = 0;  ///< in ObservationEpoch::satellites
  ModelledRange range;
};

class DetectorObserver {
 public:
  virtual ~DetectorObserver() = default;
  /// Interval and position are known; the first epoch follows. @param station  null without records
  virtual void Started(double /*interval_s*/, const Station* /*station*/) {}
  /// The ranges of an epoch, before Taken and only where there is a station: from its position before this
  /// step, of satellites with a phase.
  virtual void Modelled(const ObservationEpoch& /*epoch*/, const Station& /*station*/,
                        const std::vector<ModelledSatellite>& /*satellites*/) {}
  /// An epoch of the stream, each once and in the order of time.
  virtual void Taken(const ObservationEpoch& /*epoch*/, const ReceiverStep& /*receiver*/) {}
  /// A step of a satellite is decided, kLead epochs after its own. Phases of the track are continuous up to
  /// this step unless an event breaks them; later ones may still change.
  virtual void Decided(const SatelliteTrack& /*track*/, std::int64_t /*step*/) {}
  /// An event, in the order in which SlipDetector::TakeEvents gives them.
  virtual void Found(const Event& /*event*/) {}
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_DETECTOR_OBSERVER_H
