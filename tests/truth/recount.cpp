#include "tests/truth/recount.h"

#include <algorithm>
#include <cmath>

namespace orsolva_test {
namespace {

constexpr double kSplit_rad = 0.5235987755982988;
constexpr double kLeast = 1e-12;

}  // namespace

double RecountedCode::Spread() const {
  if (quarters.size() < 2) return 0;
  double sum = 0;
  for (const int q : quarters) sum += (q * 0.25 - all.Mean()) * (q * 0.25 - all.Mean());
  return std::sqrt(sum / static_cast<double>(quarters.size() - 1));
}

std::uint64_t RecountedSatellite::ObservedTogether(std::vector<int> wanted) const {
  std::sort(wanted.begin(), wanted.end());
  std::uint64_t count = 0;
  for (const auto& [seen, epochs] : together) {
    if (std::includes(seen.begin(), seen.end(), wanted.begin(), wanted.end())) count += epochs;
  }
  return count;
}

Recount::Recount(const orsolva_host::Simulation& simulation, double cutoff_deg)
    : elevations_(simulation.sky(), simulation.Settings()),
      start_(simulation.Settings().start),
      interval_s_(simulation.Settings().interval_s),
      cutoff_rad_(cutoff_deg * kTruthRadian) {}

void Recount::Add(const ObsEpoch_QC_gbt& epoch) {
  const std::int64_t number = std::llround(SecondsAfter(start_, epoch.time) / interval_s_);
  if (accepted > 0 && number <= last) return;  // repeated or late
  if (first < 0) first = number;
  last = number;
  ++accepted;
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) AddSatellite(epoch.sats[i], number);
}

void Recount::AddSatellite(const Satellite_gbt& satellite, std::int64_t number) {
  RecountedSatellite& s = satellites[{satellite.sys, satellite.prn}];
  double elevation = 0;
  for (std::int64_t k = s.last < 0 ? number : s.last + 1; k <= number; ++k) {
    elevation = elevations_.At(satellite.sys, satellite.prn, static_cast<double>(k) * interval_s_);
    const bool above = elevation > cutoff_rad_;
    if (above) ++s.expected;
    if (s.last >= 0 && above != s.above_last) ++s.crossings;
    s.above_last = above;
  }
  s.last = number;
  ++s.listed;
  const bool above = elevation > cutoff_rad_;
  std::vector<int> seen;
  for (std::uint32_t i = 0; i < satellite.signal_num; ++i) {
    const Signal_QC_gbt& signal = satellite.signals[i];
    RecountedCode& code = s.codes[signal.code];
    const double snr = static_cast<double>(signal.snr);
    const bool complete = signal.pseudorange >= kLeast && signal.phase >= kLeast && snr >= kLeast;
    if (above && complete) {
      ++code.observed;
      seen.push_back(signal.code);
    }
    if (!(snr > kLeast)) continue;
    code.all.Add(snr);
    (above ? code.above : code.below).Add(snr);
    (elevation > kSplit_rad ? code.above30 : code.below30).Add(snr);
    code.quarters.push_back(static_cast<int>(snr * 4 + 0.5) % 256);
  }
  std::sort(seen.begin(), seen.end());
  if (above) ++s.together[seen];
}

}  // namespace orsolva_test
