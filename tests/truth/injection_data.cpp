#include "tests/truth/injection_data.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>

#include "host/analysis/geometry/constants.h"
#include "host/observation/carriers.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "host/simulator/random_streams.h"

namespace orsolva_truth {
namespace {

using namespace orsolva_host;

constexpr double kElectronsPerTecu = 1e16;
constexpr double kDelayFactor = 40.3;
constexpr double kSlowRate = 2.5, kFastRate = 0.5;  // TECU/min, one sigma
constexpr double kSlowMemory_s = 300, kFastMemory_s = 60;
constexpr double kScintillation_rad = 0.12;

void KeepSignals(ObservationEpoch& epoch, const std::map<SatelliteId, std::vector<SignalCode>>& kept) {
  std::vector<SignalObservation> signals;
  std::vector<SatelliteObservation> satellites;
  for (SatelliteObservation satellite : epoch.satellites) {
    const std::size_t first = signals.size();
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& o = epoch.signals[satellite.first_signal + i];
      const auto& codes = kept.at(satellite.id);
      if (std::find(codes.begin(), codes.end(), o.code) != codes.end()) signals.push_back(o);
    }
    satellite.first_signal = first;
    satellite.signal_count = signals.size() - first;
    if (satellite.signal_count > 0) satellites.push_back(satellite);
  }
  epoch.signals = signals;
  epoch.satellites = satellites;
}

struct SignalUse {
  SignalCode code;
  double frequency_hz = 0;
  std::size_t phases = 0;
};

std::map<SatelliteId, std::vector<SignalUse>> UseOf(const InjectionData& data) {
  std::map<SatelliteId, std::vector<SignalUse>> use;
  for (const ObservationEpoch& epoch : data.epochs) {
    for (const SatelliteObservation& satellite : epoch.satellites) {
      auto& list = use[satellite.id];
      for (std::size_t i = 0; i < satellite.signal_count; ++i) {
        const SignalObservation& o = epoch.signals[satellite.first_signal + i];
        if (std::isnan(o.phase_cycles)) continue;
        auto known =
            std::find_if(list.begin(), list.end(), [&](const SignalUse& u) { return u.code == o.code; });
        if (known == list.end()) {
          list.push_back({o.code, FrequencyOf(data, satellite.id, o.code), 0});
          known = list.end() - 1;
        }
        ++known->phases;
      }
    }
  }
  for (auto& [id, list] : use) {
    std::stable_sort(list.begin(), list.end(),
                     [](const SignalUse& a, const SignalUse& b) { return a.frequency_hz > b.frequency_hz; });
  }
  return use;
}

/// TEC rate of one satellite, TECU/min, as two processes with memory.
class TecRate {
 public:
  explicit TecRate(const RandomStream& random) : random_(random) {}
  double Next(double step_s) {
    slow_ = Grown(slow_, kSlowRate, kSlowMemory_s, step_s);
    fast_ = Grown(fast_, kFastRate, kFastMemory_s, step_s);
    return slow_ + fast_;
  }

 private:
  double Grown(double value, double sigma, double memory_s, double step_s) {
    const double keep = begun_ >= 2 ? std::exp(-step_s / memory_s) : 0;
    if (begun_ < 2) ++begun_;
    return keep * value + sigma * std::sqrt(1 - keep * keep) * random_.Normal(index_++);
  }
  RandomStream random_;
  std::uint64_t index_ = 0;
  int begun_ = 0;
  double slow_ = 0, fast_ = 0;
};

}  // namespace

InjectionData LoadData(const std::string& name, const std::string& observations,
                       const std::vector<std::string>& navigation) {
  InjectionData data;
  data.name = name;
  Diagnostics diagnostics;
  ObservationReader reader(observations, diagnostics);
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  while (reader.Next(*record, epoch)) data.epochs.push_back(epoch);
  data.options.position = reader.Header().position;
  data.options.glonass_channels = reader.Header().glonass_channels;
  NavigationReader records(diagnostics);
  for (const std::string& file : navigation) records.Read(file);
  data.records = records.Broadcast();
  return data;
}

double FrequencyOf(const InjectionData& data, SatelliteId satellite, SignalCode code) {
  const bool divided = satellite.system == 'R' && (code.band == '1' || code.band == '2');
  if (!divided) return CarrierFrequency(satellite.system, code.band, 0);
  std::optional<int> channel = data.options.glonass_channels[satellite.number];
  for (const StateVectorRecord& record : data.records.state_vectors) {
    if (!channel && record.satellite == satellite) channel = record.channel;
  }
  return channel ? CarrierFrequency('R', code.band, *channel) : 0;
}

void Decimate(InjectionData& data, std::size_t step) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < data.epochs.size(); i += step) data.epochs[kept++] = data.epochs[i];
  data.epochs.resize(kept);
}

void LimitBands(InjectionData& data, int bands) {
  std::map<SatelliteId, std::vector<SignalCode>> kept;
  for (const auto& [id, list] : UseOf(data)) {
    if (list.empty()) {
      kept[id] = {};
      continue;
    }
    std::size_t most = 0;
    for (const SignalUse& u : list) most = std::max(most, u.phases);
    kept[id] = {list[0].code};
    const SignalUse* best = nullptr;
    const auto worth = [&](const SignalUse& u) {
      return 4 * (10 * u.phases > 8 * most) + 2 * (u.code.band == '2' || u.code.band == '7');
    };
    for (const SignalUse& u : list) {
      if (u.code.band != list[0].code.band && (!best || worth(u) >= worth(*best))) best = &u;
    }
    if (bands > 1 && best) kept[id].push_back(best->code);
  }
  for (ObservationEpoch& epoch : data.epochs) KeepSignals(epoch, kept);
}

std::string AddStorm(InjectionData& data, std::uint64_t seed) {
  struct State {
    TecRate rate;
    RandomStream noise;
    double tec = 0;
    std::int64_t time_ns = 0;
  };
  std::map<SatelliteId, State> states;
  std::vector<double> rates;
  std::uint64_t index = 0;
  for (ObservationEpoch& epoch : data.epochs) {
    for (const SatelliteObservation& satellite : epoch.satellites) {
      const RandomStream random =
          RandomStream(seed).Of(static_cast<std::uint64_t>(satellite.id.system) * 100 + satellite.id.number);
      auto [place, fresh] =
          states.try_emplace(satellite.id, State{TecRate(random.Of(1)), random.Of(2), 0, epoch.time_ns});
      State& state = place->second;
      const double span_s = SecondsBetween(epoch.time_ns, state.time_ns);
      const double before = state.tec;
      for (double left = std::min(span_s, 3600.0); left > 0; left -= 1) {
        const double step_s = std::min(left, 1.0);
        state.tec += state.rate.Next(step_s) * step_s / 60;
      }
      if (span_s > 0) rates.push_back(std::fabs(state.tec - before) / span_s * 60);
      state.time_ns = epoch.time_ns;
      std::map<char, double> scintillation;
      for (std::size_t i = 0; i < satellite.signal_count; ++i) {
        SignalObservation& o = epoch.signals[satellite.first_signal + i];
        const double frequency = FrequencyOf(data, satellite.id, o.code);
        if (!(frequency > 0)) continue;
        const double delay_m = kDelayFactor * kElectronsPerTecu * state.tec / (frequency * frequency);
        const double wavelength = analysis::kLightSpeed_m_s / frequency;
        if (!scintillation.count(o.code.band)) {
          scintillation[o.code.band] = kScintillation_rad * analysis::kReferenceCarrier_hz / frequency *
                                       state.noise.Normal(index++) / (2 * analysis::kPi);
        }
        o.pseudorange_m += delay_m;
        o.phase_cycles += scintillation[o.code.band] - delay_m / wavelength;
      }
    }
  }
  std::sort(rates.begin(), rates.end());
  const auto at = [&](double part) {
    return rates[static_cast<std::size_t>(part * static_cast<double>(rates.size() - 1))];
  };
  char text[120];
  std::snprintf(text, sizeof text, "TEC rate: median %.1f, 95 %% %.1f, 99.9 %% %.1f TECU/min", at(0.5),
                at(0.95), at(0.999));
  return text;
}

}  // namespace orsolva_truth
