// Unrest of the ionosphere: the rate of TEC index of each system.
//
// TEC rate (TECU/min) = 60 d(L_a - L_b) / (dt 40.3e16 (1/f_b^2 - 1/f_a^2)) with the phases (m) of the
// satellite's highest and lowest carrier, slips that are certain taken off, over 30 s or one longer step of
// up to 60 s. ROTI is its standard deviation over five minutes of GPS time (Pi et al. 1997, GRL 24(18):2283),
// from at least half of the rates that fit in; phase noise alone makes about 0.1 at high and 0.2 TECU/min at
// low elevations. Data at more than 60 s have none.
//
// Median and 95th percentile are over all windows of all satellites. A window of the station is disturbed
// when at least a quarter of the system's satellites in it, at least one, have a ROTI above 0.5 TECU/min; it
// counts five minutes.
//
// Population: from the cut-off up, without SBAS, whose carriers are steered from the ground, each on its own.
#ifndef ORSOLVA_ANALYSIS_FIGURES_IONOSPHERE_RATE_H
#define ORSOLVA_ANALYSIS_FIGURES_IONOSPHERE_RATE_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/log_histogram.h"
#include "host/analysis/figures/per_satellite.h"
#include "host/analysis/figures/scatter.h"
#include "host/analysis/figures/step_outcome.h"

namespace orsolva_host::analysis {

/// The ROTI of a satellite in a window.
struct RotiWindow {
  SatelliteId satellite;
  std::int64_t time_ns = 0;  ///< at which the window begins
  double roti = 0;           ///< TECU/min
};

class IonosphereRate {
 public:
  explicit IonosphereRate(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  void SetInterval(double interval_s) { interval_s_ = interval_s; }
  /// The time of an epoch of the stream.
  void AddEpoch(std::int64_t time_ns);
  void AddStep(const StepOutcome& outcome);
  void AddEvent(const Event& event);

  /// From now on windows are kept until TakeWindows.
  void KeepWindows() { keeps_windows_ = true; }
  /// Ends all windows: no step follows.
  void EndAll() { CloseWindows(window_ + 1); }
  std::vector<RotiWindow> TakeWindows() { return std::exchange(windows_, {}); }

  void FillIn(AnalysisResult& result) const;

 private:
  /// TEC of one satellite since the last rate, and the rates of its window.
  struct Satellite {
    double tecu = 0;
    double time_s = 0;
    std::int64_t window = 0;
    Scatter rates;
  };
  struct Window {
    int satellites = 0;
    int disturbed = 0;
  };
  struct System {
    LogHistogram<-12, 8> roti;
    std::map<std::int64_t, Window> open;  ///< the last few
    Count disturbed_windows = 0;
    Count events = 0;

    void Close(std::int64_t before);
  };

  void AddRate(const StepOutcome& outcome, Satellite& satellite);
  std::optional<double> CloseWindow(Satellite& satellite, System& system) const;
  void Close(SatelliteId id, Satellite& satellite);
  void CloseWindows(std::int64_t before);

  double cutoff_deg_;
  double interval_s_ = 0;
  std::int64_t window_ = 0;  ///< of the newest epoch
  std::map<char, System> systems_;
  PerSatellite<Satellite> satellites_;
  bool keeps_windows_ = false;
  std::vector<RotiWindow> windows_;  ///< ended, until taken
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_IONOSPHERE_RATE_H
