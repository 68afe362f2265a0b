#include "host/analysis/slips/satellite_track.h"

#include <cmath>

namespace orsolva_host::analysis {

double PhaseNoise(const StepState& step) {
  const double low = kPhaseNoiseB_m / step.sin_elevation;
  return std::sqrt(kPhaseNoiseA_m * kPhaseNoiseA_m + low * low);
}

void BeginArc(SatelliteTrack& track) {
  track.signals.clear();
  track.first = track.next;
  track.decide = track.next + 1;
  track.model_sum_m = 0;
  track.two_band_step = track.next - kRing;
  track.settled_step = kNeverSettled;
  track.range_rates.Clear();
  track.ionosphere_rates.Clear();
  track.range_errors = {};
  track.ionosphere_errors = {};
}

void Repair(SatelliteTrack& track, std::int64_t from, std::size_t signal, double metres) {
  SignalTrack& s = track.signals[signal];
  for (std::int64_t i = from; i < track.next; ++i) s.phase_m[RingSlot(i)] -= metres;
  s.repaired_m += metres;
}

}  // namespace orsolva_host::analysis
