// ROTI of the simulated content itself.
#ifndef ORSOLVA_TESTS_TRUTH_TRUE_ROTI_H
#define ORSOLVA_TESTS_TRUTH_TRUE_ROTI_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "host/simulator/portable_math.h"
#include "host/simulator/simulation.h"

namespace orsolva_test {

/// The deviation of the content's rates in each five minutes of a satellite.
class TrueRoti {
 public:
  void Take(const orsolva_host::Simulation& simulation, const orsolva_host::ObservationEpoch& epoch) {
    for (const orsolva_host::SatelliteMoment& m : simulation.Moments()) {
      Track& track = tracks_[{m.system, static_cast<std::uint8_t>(m.number)}];
      const bool up = m.elevation_rad > simulation.Settings().truth_cutoff_deg * orsolva_host::kRadian;
      const std::int64_t step_ns = epoch.time_ns - track.last_ns;
      if (up && track.up && step_ns == std::llround(simulation.Settings().interval_s * 1e9)) {
        const double rate = (m.slant_tec - track.tec) / (static_cast<double>(step_ns) / 60e9);
        track.windows[epoch.time_ns / kWindow_ns].push_back(rate);
      }
      track.up = up;
      track.last_ns = epoch.time_ns;
      track.tec = m.slant_tec;
    }
  }

  /// @return of the windows of a system, sorted
  std::vector<double> Of(char system) const {
    std::vector<double> all;
    for (const auto& [window, rotis] : WindowsOf(system)) all.insert(all.end(), rotis.begin(), rotis.end());
    std::sort(all.begin(), all.end());
    return all;
  }

  /// Those of the satellites of a system, by window.
  std::map<std::int64_t, std::vector<double>> WindowsOf(char system) const {
    std::map<std::int64_t, std::vector<double>> all;
    for (const auto& [id, track] : tracks_) {
      if (id.system != system) continue;
      for (const auto& [window, rates] : track.windows) {
        if (rates.size() >= 5) all[window].push_back(Deviation(rates));
      }
    }
    return all;
  }

 private:
  static constexpr std::int64_t kWindow_ns = 300 * orsolva_host::kNanosecondsPerSecond;
  struct Track {
    bool up = false;
    std::int64_t last_ns = 0;
    double tec = 0;
    std::map<std::int64_t, std::vector<double>> windows;
  };

  static double Deviation(const std::vector<double>& rates) {
    double mean = 0, squares = 0;
    for (const double rate : rates) mean += rate / static_cast<double>(rates.size());
    for (const double rate : rates) squares += (rate - mean) * (rate - mean);
    return std::sqrt(squares / static_cast<double>(rates.size() - 1));
  }

  std::map<orsolva_host::SatelliteId, Track> tracks_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_TRUE_ROTI_H
