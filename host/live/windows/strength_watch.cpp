#include "host/live/windows/strength_watch.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace orsolva_host::live {
namespace {

constexpr double kMega = 1e6;

struct BandRow {
  double carrier_mhz;
  const char* name;
};
/// RINEX 4.01, tables 10 to 16.
constexpr BandRow kBands[] = {{1575.42, "L1/E1/B1C"}, {1602.0, "GLONASS G1"}, {1561.098, "B1I"},
                              {1227.6, "L2"},         {1246.0, "GLONASS G2"}, {1176.45, "L5/E5a/B2a"},
                              {1207.14, "E5b/B2b"},   {1191.795, "E5/B2"},    {1268.52, "B3I"},
                              {1278.75, "E6/L6"}};

/// A day at an elevation is some ten minutes of each pass; so many values let the mean follow a season.
constexpr double kRemembered_s = 3600;

}  // namespace

std::string BandName(double carrier_hz) {
  constexpr double kSame_mhz = 0.001;
  for (const BandRow& row : kBands) {
    if (std::fabs(carrier_hz / kMega - row.carrier_mhz) < kSame_mhz) return row.name;
  }
  return fmt::format("{:.2f} MHz", carrier_hz / kMega);
}

std::size_t StrengthWatch::PlaceOf(double carrier_hz) {
  const auto place = std::find_if(bands_.begin(), bands_.end(),
                                  [=](const Band& band) { return band.carrier_hz == carrier_hz; });
  if (place != bands_.end()) return static_cast<std::size_t>(place - bands_.begin());
  bands_.push_back({carrier_hz, {}});
  return bands_.size() - 1;
}

void StrengthWatch::Collect(const ObservationEpoch& epoch, const std::vector<double>& elevations_deg,
                            double interval_s) {
  values_.clear();
  for (Band& band : bands_) band.departures_db.clear();
  for (std::size_t s = 0; s < epoch.satellites.size(); ++s) {
    if (!(elevations_deg[s] >= kLeast_deg)) continue;
    const auto bin =
        std::min<std::size_t>(static_cast<std::size_t>(elevations_deg[s] / 5), kElevationBins - 1);
    const SatelliteObservation& satellite = epoch.satellites[s];
    TrackedSatellite& tracked = *signals_->Find(satellite.id);
    const std::size_t first = values_.size();
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& observed = epoch.signals[satellite.first_signal + i];
      if (!(observed.snr_dbhz > 0)) continue;
      TrackedSignal& signal = signals_->Signal(tracked, observed.code);
      values_.push_back(
          {&signal, bin, observed.snr_dbhz, PlaceOf(signals_->Shared()[signal.shared].carrier_hz)});
    }
    // One value a satellite and band: the mean over its signals.
    for (std::size_t i = first; i < values_.size(); ++i) {
      const bool earlier = std::any_of(values_.begin() + static_cast<std::ptrdiff_t>(first),
                                       values_.begin() + static_cast<std::ptrdiff_t>(i),
                                       [&](const Value& v) { return v.band == values_[i].band; });
      if (earlier) continue;
      double sum = 0;
      int count = 0;
      for (std::size_t j = i; j < values_.size(); ++j) {
        const Value& value = values_[j];
        if (value.band != values_[i].band) continue;
        const SlidingMean& own = value.signal->usual_dbhz[bin];
        const SlidingMean& shared = signals_->Shared()[value.signal->shared].usual_dbhz[bin];
        const bool knows_own = own.values * interval_s >= kLearn_s;
        if (!knows_own && shared.values * interval_s < kShareLearn_s) continue;
        sum += value.dbhz - static_cast<double>((knows_own ? own : shared).mean);
        ++count;
      }
      if (count > 0) bands_[values_[i].band].departures_db.push_back(sum / count);
    }
  }
}

void StrengthWatch::Learn(double interval_s, const std::vector<char>& down) {
  const auto most = static_cast<std::uint32_t>(std::max(60.0, kRemembered_s / interval_s));
  for (const Value& value : values_) {
    if (down[value.band] != 0) continue;
    value.signal->usual_dbhz[value.bin].Add(value.dbhz, most);
    signals_->Shared()[value.signal->shared].usual_dbhz[value.bin].Add(value.dbhz, 10 * most);
  }
}

std::vector<BandDeparture> StrengthWatch::Add(const ObservationEpoch& epoch,
                                              const std::vector<double>& elevations_deg, double interval_s,
                                              double limit_db, int least) {
  Collect(epoch, elevations_deg, interval_s);
  std::vector<BandDeparture> departures;
  std::vector<char> down(bands_.size(), 0);
  for (std::size_t i = 0; i < bands_.size(); ++i) {
    std::vector<double>& values = bands_[i].departures_db;
    const auto count = static_cast<int>(values.size());
    if (count < least) continue;
    std::nth_element(values.begin(), values.begin() + count / 2, values.end());
    const double median_db = values[static_cast<std::size_t>(count / 2)];
    down[i] = median_db < -limit_db / 2 ? 1 : 0;
    departures.push_back({BandName(bands_[i].carrier_hz), count, median_db});
  }
  Learn(interval_s, down);
  return departures;
}

}  // namespace orsolva_host::live
