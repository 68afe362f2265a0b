// A satellite's track written by hand, epoch by epoch, for tests of figures that read tracks: no detector, no
// sky.
#ifndef ORSOLVA_TESTS_ANALYSIS_MADE_TRACK_H
#define ORSOLVA_TESTS_ANALYSIS_MADE_TRACK_H

#include <string>
#include <vector>

#include "host/analysis/figures/step_outcome.h"
#include "host/analysis/geometry/constants.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {

constexpr std::int64_t kMadeStart_ns = 1593043200LL * kNanosecondsPerSecond;  // 2020-06-25 00:00:00

class MadeTrack {
 public:
  struct Value {
    double phase_m = kAbsent;  ///< absent: the signal is away
    double code_m = kAbsent;
    bool carried = false;  ///< its phase is known though it is away
    bool flagged = false;
  };

  /// @param channel  of GLONASS
  MadeTrack(SatelliteId id, double interval_s, const std::vector<SignalCode>& codes, int channel = 0)
      : interval_s_(interval_s) {
    track_.satellite = id;
    track_.decide = 1;
    for (const SignalCode code : codes) {
      SignalTrack s;
      s.code = code;
      s.frequency_hz = CarrierFrequency(id.system, code.band, channel);
      s.wavelength_m = kLightSpeed_m_s / s.frequency_hz;
      s.mu = kReferenceCarrier_hz / s.frequency_hz * (kReferenceCarrier_hz / s.frequency_hz);
      track_.signals.push_back(s);
    }
  }

  /// The next epoch, one interval after the last or later.
  void Epoch(const std::vector<Value>& values, double elevation_deg = kAbsent, int intervals = 1) {
    const std::int64_t i = track_.next++;
    if (i > 0) time_ns_ += static_cast<std::int64_t>(1e9 * interval_s_ * intervals);
    StepState& step = track_.At(i);
    step = {};
    step.time_ns = kMadeStart_ns + time_ns_;
    step.epoch = number_ += intervals;
    step.dt_s = i > 0 ? interval_s_ * intervals : 0;
    step.gap = intervals > 1;
    step.elevation_rad = elevation_deg * kPi / 180;
    step.modelled = step.clock_known = true;
    step.chi2 = 1;
    for (std::size_t j = 0; j < values.size(); ++j) {
      SignalTrack& s = track_.signals[j];
      s.phase_m[RingSlot(i)] = values[j].phase_m;
      s.code_m[RingSlot(i)] = values[j].code_m;
      const bool real = std::isfinite(values[j].phase_m) && !values[j].carried;
      Set(s.real, i, real);
      Set(s.known, i, real || values[j].carried);
      Set(s.lost_lock, i, values[j].flagged);
    }
    track_.decide = track_.next;
    track_.events.clear();
  }

  /// An event of the newest step.
  Event Happens(EventKind kind, const std::vector<SignalCode>& signals, const std::vector<double>& sizes = {},
                bool sure = true) {
    Event event;
    event.satellite = track_.satellite;
    event.kind = kind;
    event.signals = signals;
    event.sizes = sizes;
    event.sure = sure;
    event.elevation_deg = ElevationDegrees(track_.At(Newest()));
    event.time_ns = track_.At(Newest()).time_ns;
    if (kind == EventKind::kJump || kind == EventKind::kGapUnresolved) track_.At(Newest()).broken = true;
    track_.events.emplace_back(Newest(), event);
    return event;
  }

  /// The newest step as decided.
  const StepOutcome& Outcome() { return reader_.Read(track_, Newest()); }

  SatelliteTrack& Track() { return track_; }
  std::int64_t Newest() const { return track_.next - 1; }
  std::int64_t Number() const { return number_; }

 private:
  static void Set(std::uint32_t& bits, std::int64_t i, bool value) {
    bits = value ? bits | RingBit(i) : bits & ~RingBit(i);
  }

  SatelliteTrack track_;
  OutcomeReader reader_{10};  ///< cut-off of the tests
  double interval_s_;
  std::int64_t time_ns_ = 0;
  std::int64_t number_ = -1;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_TESTS_ANALYSIS_MADE_TRACK_H
