// What the analysis finds in a satellite's signals or in the receiver's clock.
#ifndef ORSOLVA_ANALYSIS_SLIPS_EVENT_H
#define ORSOLVA_ANALYSIS_SLIPS_EVENT_H

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

enum class EventKind {
  kSlip,            ///< whole cycles within continuous tracking
  kHalfCycle,       ///< at least one signal by a half
  kJump,            ///< the phase is broken by an unknown size; the arc ends
  kOutlier,         ///< one epoch off, the phase goes on as before
  kSatelliteClock,  ///< the same metres on all signals: not a slip
  kIonosphere,      ///< metres in the ratio of the ionosphere: not a slip
  kGapContinuous,   ///< the satellite was away and all its phases go on
  kGapSlip,
  kGapUnresolved,
  kSignalGapContinuous,  ///< a signal was away while others went on
  kSignalGapSlip,
  kSignalGapUnresolved,
  kUnstableSignal,      ///< slips so often against the others that it is left out for a while
  kReceiverClockReset,  ///< size in milliseconds
  kCodeClockJump,       ///< codes alone, size in milliseconds
  kReceiverRestart,     ///< the clock of this step cannot be known
  kPowerFailure,
};

/// "slip", "half_cycle", "gap_continuous" and so on.
const char* NameOf(EventKind kind);

/// Whether the phase of some signal was broken: slip, half cycle, jump, or a slip over a gap.
bool IsSlip(EventKind kind);

struct Event {
  std::int64_t time_ns = 0;
  SatelliteId satellite = {' ', 0};  ///< system ' ' for the receiver as a whole
  EventKind kind = EventKind::kSlip;
  double elevation_deg = kAbsent;
  std::vector<SignalCode> signals;
  std::vector<double>
      sizes;  ///< cycles (milliseconds for clocks) in the order of signals; empty when unknown
  bool sure = false;
  double score = 0;   ///< nats over "no slip"
  double margin = 0;  ///< nats over the next best explanation
  double chi2 = 0;    ///< of the step before repair
  double gap_s = 0;
  bool loss_of_lock = false;  ///< flagged by the receiver on some signal
  std::string evidence;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_EVENT_H
