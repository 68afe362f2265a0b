#include "tests/truth/slip_pattern.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/constellation.h"
#include "host/simulator/random_streams.h"
#include "tests/truth/faulty_scenarios.h"

namespace orsolva_test {
namespace {

using orsolva_host::FaultKind;
using orsolva_host::NominalOrbit;
using orsolva_host::RandomStream;
using orsolva_host::Scenario;

constexpr std::uint64_t kPatternStream = 909;
constexpr int kMinDistance = 12;  // epochs

/// Cycles on the first and on the second band; 0 on the second: one band.
struct TwoBands {
  const char* name;
  double first, second;
};
constexpr TwoBands kTwoBands[] = {
    {"(1,1) on two bands", 1, 1}, {"(1,-1)", 1, -1}, {"(9,7)", 9, 7}, {"(77,60)", 77, 60}, {"(5,4)", 5, 4}};
constexpr const char* kOneSignal = "1 cycle on one signal";
constexpr const char* kOneBand = "1 cycle on one band";
constexpr const char* kAllBands = "1 cycle on all bands";
constexpr const char* kHalf = "half a cycle on one band";
constexpr const char* kRandom = "2 to 20 cycles on one signal";

std::vector<char> BandsOf(const std::vector<std::string>& signals) {
  std::vector<char> bands;
  for (const std::string& name : signals) {
    if (std::find(bands.begin(), bands.end(), name[0]) == bands.end()) bands.push_back(name[0]);
  }
  return bands;
}

using Sizes = std::map<std::string, double>;

Sizes OnBand(const std::vector<std::string>& signals, char band, double size) {
  Sizes sizes;
  for (const std::string& name : signals) {
    if (name[0] == band) sizes[name] = size;
  }
  return sizes;
}

/// @param random  numbers of this slip
Sizes SizesOf(const std::string& kind, const std::vector<std::string>& signals, const RandomStream& random) {
  const std::vector<char> bands = BandsOf(signals);
  const double sign = random.Uniform(0) < 0.5 ? 1 : -1;
  const std::string& signal = signals[random.Bits(1) % signals.size()];
  const char band = bands[random.Bits(2) % bands.size()];
  if (kind == kOneSignal) return {{signal, sign}};
  if (kind == kOneBand) return OnBand(signals, band, sign);
  if (kind == kHalf) return OnBand(signals, band, 0.5 * sign);
  if (kind == kRandom) return {{signal, sign * std::floor(random.Between(3, 2, 21))}};
  Sizes sizes;
  for (const std::string& name : signals) {
    if (kind == kAllBands) sizes[name] = sign;
  }
  for (const TwoBands& two : kTwoBands) {
    if (kind != two.name || bands.size() < 2) continue;
    sizes = OnBand(signals, bands[0], sign * two.first);
    sizes.merge(OnBand(signals, bands[1], sign * two.second));
  }
  return sizes;
}

}  // namespace

const std::vector<std::string>& SlipPatternKinds() {
  static const std::vector<std::string> kKinds = [] {
    std::vector<std::string> kinds = {kOneSignal, kOneBand, kAllBands};
    for (const TwoBands& two : kTwoBands) kinds.emplace_back(two.name);
    kinds.insert(kinds.end(), {kRandom, kHalf});
    return kinds;
  }();
  return kKinds;
}

SlipPattern WithSlipPattern(Scenario scenario, int spacing) {
  SlipPattern pattern;
  const auto epochs = static_cast<int>(std::lround(scenario.hours * 3600 / scenario.interval_s));
  const RandomStream stream = RandomStream(scenario.seed).Of(kPatternStream);
  std::uint64_t number = 0;
  for (const NominalOrbit& orbit : orsolva_host::NominalConstellation(scenario.systems)) {
    const std::vector<std::string>& signals = SignalsOf(scenario, orbit.system, orbit.number);
    int epoch = 0;
    while (true) {
      const RandomStream random = stream.Of(++number);
      epoch += static_cast<int>(random.Between(10, kMinDistance, 2 * spacing - kMinDistance));
      if (epoch >= epochs) break;
      const std::string& kind = SlipPatternKinds()[random.Bits(9) % SlipPatternKinds().size()];
      const double at_s = epoch * scenario.interval_s;
      for (const auto& [signal, size] : SizesOf(kind, signals, random)) {
        scenario.faults.push_back(
            MakeFault(FaultKind::kSlip, at_s, 0, size, {orbit.system, orbit.number, signal}));
      }
      const std::int64_t time_ns =
          scenario.start.time * orsolva_host::kNanosecondsPerSecond + std::llround(at_s * 1e9);
      pattern.kinds[{time_ns, {orbit.system, static_cast<std::uint8_t>(orbit.number)}}] = kind;
    }
  }
  pattern.scenario = std::move(scenario);
  return pattern;
}

void KeepBands(Scenario& scenario, std::size_t bands) {
  for (const std::string& group : orsolva_host::SignalGroups()) {
    const int satellite = group == "C3" ? 20 : group == "C3G" ? 60 : 1;
    const std::vector<std::string> all = SignalsOf(scenario, group[0], satellite);
    std::vector<std::string> kept;
    for (const char band : BandsOf(all)) {
      if (kept.size() < bands) {
        kept.push_back(
            *std::find_if(all.begin(), all.end(), [band](const std::string& s) { return s[0] == band; }));
      }
    }
    scenario.signals[group] = kept;
  }
}

}  // namespace orsolva_test
