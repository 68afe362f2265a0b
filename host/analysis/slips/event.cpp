#include "host/analysis/slips/event.h"

namespace orsolva_host::analysis {

const char* NameOf(EventKind kind) {
  switch (kind) {
    case EventKind::kSlip:
      return "slip";
    case EventKind::kHalfCycle:
      return "half_cycle";
    case EventKind::kJump:
      return "jump";
    case EventKind::kOutlier:
      return "outlier";
    case EventKind::kSatelliteClock:
      return "satellite_clock";
    case EventKind::kIonosphere:
      return "ionosphere";
    case EventKind::kGapContinuous:
      return "gap_continuous";
    case EventKind::kGapSlip:
      return "gap_slip";
    case EventKind::kGapUnresolved:
      return "gap_unresolved";
    case EventKind::kSignalGapContinuous:
      return "signal_gap_continuous";
    case EventKind::kSignalGapSlip:
      return "signal_gap_slip";
    case EventKind::kSignalGapUnresolved:
      return "signal_gap_unresolved";
    case EventKind::kUnstableSignal:
      return "unstable_signal";
    case EventKind::kReceiverClockReset:
      return "clock_reset_ms";
    case EventKind::kCodeClockJump:
      return "code_clock_jump";
    case EventKind::kReceiverRestart:
      return "receiver_restart";
    case EventKind::kPowerFailure:
      return "power_failure";
  }
  return "";
}

bool IsSlip(EventKind kind) {
  return kind == EventKind::kSlip || kind == EventKind::kHalfCycle || kind == EventKind::kJump ||
         kind == EventKind::kGapSlip || kind == EventKind::kSignalGapSlip;
}

}  // namespace orsolva_host::analysis
