// State of each satellite, found by number in constant time and walked in order.
#ifndef ORSOLVA_ANALYSIS_FIGURES_PER_SATELLITE_H
#define ORSOLVA_ANALYSIS_FIGURES_PER_SATELLITE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "host/analysis/figures/system_order.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

template <typename T>
class PerSatellite {
 public:
  /// Made when asked for the first time; stays where it is.
  T& operator[](SatelliteId id) {
    T*& place = places_[SystemPlace(id.system)][id.number];
    if (place == nullptr) place = Insert(id);
    return *place;
  }

  /// Calls action(SatelliteId, T&) by system and number.
  template <typename Action>
  void ForEach(Action action) const {
    for (const auto& [id, state] : states_) action(id, *state);
  }

 private:
  T* Insert(SatelliteId id) {
    const auto place =
        std::lower_bound(states_.begin(), states_.end(), id,
                         [](const auto& entry, SatelliteId wanted) { return entry.first < wanted; });
    return states_.insert(place, {id, std::make_unique<T>()})->second.get();
  }

  std::array<std::array<T*, 256>, kSystemPlaces> places_ = {};
  std::vector<std::pair<SatelliteId, std::unique_ptr<T>>> states_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_PER_SATELLITE_H
