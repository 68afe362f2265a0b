#include "host/formats/streams/epoch_signals.h"

#include <algorithm>
#include <tuple>

namespace orsolva_host {
namespace {

auto OrderOf(const SatelliteSignal& s) {
  return std::tuple(s.satellite.system, s.satellite.number, s.observation.code.band,
                    s.observation.code.attribute);
}

}  // namespace

void AppendSignal(SatelliteId satellite, const SignalObservation& observation, ObservationEpoch& epoch) {
  if (epoch.satellites.empty() || !(epoch.satellites.back().id == satellite)) {
    epoch.satellites.push_back({satellite, epoch.signals.size(), 0});
  }
  epoch.signals.push_back(observation);
  ++epoch.satellites.back().signal_count;
}

std::uint64_t FillEpoch(std::int64_t time_ns, std::vector<SatelliteSignal> signals, ObservationEpoch& epoch) {
  std::stable_sort(signals.begin(), signals.end(), [](const SatelliteSignal& a, const SatelliteSignal& b) {
    return OrderOf(a) < OrderOf(b);
  });
  const auto end = std::unique(
      signals.begin(), signals.end(),
      [](const SatelliteSignal& a, const SatelliteSignal& b) { return OrderOf(a) == OrderOf(b); });
  const auto doubles = static_cast<std::uint64_t>(signals.end() - end);
  signals.erase(end, signals.end());
  epoch.Clear();
  epoch.time_ns = time_ns;
  for (const SatelliteSignal& signal : signals) AppendSignal(signal.satellite, signal.observation, epoch);
  return doubles;
}

}  // namespace orsolva_host
