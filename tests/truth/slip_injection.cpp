#include "tests/truth/slip_injection.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "host/simulator/random_streams.h"

namespace orsolva_truth {
namespace {

using namespace orsolva_host;
using analysis::DecidedStep;
using analysis::Event;
using analysis::EventKind;

constexpr std::int64_t kFreeSteps = 6;   // around a slip: no event of the file
constexpr std::int64_t kWholeSteps = 3;  // around a slip: no epoch missing

/// One epoch of a satellite.
struct Place {
  std::size_t epoch;
  std::size_t satellite;  ///< in the epoch
};

struct SatelliteWalk {
  std::vector<Place> places;
  std::map<std::int64_t, double> elevation_deg;  ///< by time
  std::set<std::int64_t> events;                 ///< numbers of epochs with an event of the file
  std::vector<SignalCode> left_out;              ///< unstable in the file itself
};

class Dice {
 public:
  explicit Dice(const RandomStream& random) : random_(random) {}
  std::size_t Below(std::size_t n) {
    return static_cast<std::size_t>(random_.Uniform(index_++) * static_cast<double>(n));
  }
  double Sign() { return Below(2) == 0 ? -1 : 1; }
  double Exponential(double mean) { return -mean * std::log(1 - random_.Uniform(index_++)); }

 private:
  RandomStream random_;
  std::uint64_t index_ = 0;
};

constexpr double kPairs[][2] = {{1, 1}, {2, 2}, {4, 3}, {5, 4}, {9, 7}, {77, 60}, {3, 4}, {7, 9}, {1, -1}};

/// Signals with phases at a step, by band.
struct Bands {
  std::vector<char> bands;
  std::vector<SignalCode> signals;

  void Add(SignalCode code) {
    signals.push_back(code);
    if (std::find(bands.begin(), bands.end(), code.band) == bands.end()) bands.push_back(code.band);
  }
};

void SlipBand(InjectedSlip& slip, const Bands& bands, char band, double size) {
  for (const SignalCode code : bands.signals) {
    if (code.band != band || size == 0) continue;
    slip.signals.push_back(code);
    slip.sizes.push_back(size);
  }
}

std::string Pair(const double* pair) {
  char text[40];
  std::snprintf(text, sizeof text, "pair (%g,%g)", pair[0], pair[1]);
  return text;
}

/// Chooses a kind and its sizes.
void Choose(InjectedSlip& slip, const Bands& bands, Dice& dice) {
  static const char* const kKinds[] = {"one", "one", "signal", "pair", "pair", "all", "random", "half"};
  std::string kind = kKinds[dice.Below(8)];
  if (bands.bands.size() < 2 && (kind == "pair" || kind == "all")) kind = "one";
  const double sign = dice.Sign();
  const char band = bands.bands[dice.Below(bands.bands.size())];
  if (kind == "signal") {
    slip.kind = "1 cycle on one signal";
    slip.signals = {bands.signals[dice.Below(bands.signals.size())]};
    slip.sizes = {sign};
  } else if (kind == "one") {
    slip.kind = "1 cycle on one band";
    SlipBand(slip, bands, band, sign);
  } else if (kind == "pair") {
    const double* pair = kPairs[dice.Below(9)];
    slip.kind = Pair(pair) + (bands.bands.size() > 2 ? " of 3 and more" : " of 2");
    SlipBand(slip, bands, bands.bands[0], sign * pair[0]);
    SlipBand(slip, bands, bands.bands[1], sign * pair[1]);
  } else if (kind == "all") {
    slip.kind = "1 cycle on all " + std::to_string(bands.bands.size()) + " bands";
    for (const char b : bands.bands) SlipBand(slip, bands, b, sign);
  } else if (kind == "random") {
    slip.kind = "random, up to 20 cycles";
    for (const char b : bands.bands) {
      const double size = dice.Below(10) < 7 ? static_cast<double>(dice.Below(41)) - 20 : 0;
      SlipBand(slip, bands, b, size);
    }
  } else {
    slip.kind = "half a cycle on one band";
    slip.whole = false;
    SlipBand(slip, bands, band, sign / 2);
  }
}

std::map<SatelliteId, SatelliteWalk> WalksOf(const InjectionData& data, const DetectorRun& base) {
  std::map<SatelliteId, SatelliteWalk> walks;
  std::map<std::int64_t, std::size_t> number;
  for (std::size_t e = 0; e < data.epochs.size(); ++e) {
    number[data.epochs[e].time_ns] = e;
    for (std::size_t s = 0; s < data.epochs[e].satellites.size(); ++s) {
      const SatelliteObservation& satellite = data.epochs[e].satellites[s];
      const bool phase =
          std::any_of(data.epochs[e].signals.begin() + static_cast<std::ptrdiff_t>(satellite.first_signal),
                      data.epochs[e].signals.begin() +
                          static_cast<std::ptrdiff_t>(satellite.first_signal + satellite.signal_count),
                      [](const SignalObservation& o) { return !std::isnan(o.phase_cycles); });
      if (phase) walks[satellite.id].places.push_back({e, s});
    }
  }
  for (const DecidedStep& step : base.steps)
    walks[step.satellite].elevation_deg[step.time_ns] = step.elevation_deg;
  for (const Event& event : base.events) {
    if (event.satellite.system == ' ') continue;
    SatelliteWalk& walk = walks[event.satellite];
    if (event.kind == EventKind::kUnstableSignal) {
      walk.left_out.insert(walk.left_out.end(), event.signals.begin(), event.signals.end());
    }
    walk.events.insert(static_cast<std::int64_t>(number[event.time_ns]));
  }
  return walks;
}

bool IsFree(const SatelliteWalk& walk, std::size_t i) {
  const auto epoch = static_cast<std::int64_t>(walk.places[i].epoch);
  const auto next = walk.events.lower_bound(epoch - kFreeSteps);
  if (next != walk.events.end() && *next <= epoch + kFreeSteps) return false;
  return walk.places[i + kWholeSteps].epoch - walk.places[i - kWholeSteps].epoch == 2 * kWholeSteps;
}

const SignalObservation* SignalAt(const InjectionData& data, const Place& place, SignalCode code) {
  const ObservationEpoch& epoch = data.epochs[place.epoch];
  const SatelliteObservation& satellite = epoch.satellites[place.satellite];
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    if (epoch.signals[satellite.first_signal + i].code == code)
      return &epoch.signals[satellite.first_signal + i];
  }
  return nullptr;
}

/// Whether tracking hangs together from before a hole that ends at a place until after it.
bool HasRoomForHole(const SatelliteWalk& walk, std::size_t i, std::size_t hole) {
  const std::size_t before = hole + static_cast<std::size_t>(kFreeSteps);
  if (i < before || !IsFree(walk, i) || !IsFree(walk, i - hole)) return false;
  return walk.places[i].epoch - walk.places[i - before].epoch == before;
}

/// Signals that can slip at a step: phases at both ends, wavelength known, not unstable.
Bands BandsAt(const InjectionData& data, const SatelliteWalk& walk, std::size_t i) {
  Bands bands;
  const ObservationEpoch& epoch = data.epochs[walk.places[i].epoch];
  const SatelliteObservation& satellite = epoch.satellites[walk.places[i].satellite];
  std::vector<std::pair<double, SignalCode>> found;
  for (std::size_t k = 0; k < satellite.signal_count; ++k) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + k];
    const SignalObservation* before = SignalAt(data, walk.places[i - 1], o.code);
    const double frequency = FrequencyOf(data, satellite.id, o.code);
    const bool out = std::find(walk.left_out.begin(), walk.left_out.end(), o.code) != walk.left_out.end();
    if (out || !(frequency > 0) || std::isnan(o.phase_cycles) || !before || std::isnan(before->phase_cycles))
      continue;
    found.emplace_back(frequency, o.code);
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  for (const auto& [frequency, code] : found) bands.Add(code);
  return bands;
}

void AddSlip(InjectionData& data, const SatelliteWalk& walk, std::size_t from, const InjectedSlip& slip) {
  for (std::size_t i = from; i < walk.places.size(); ++i) {
    ObservationEpoch& epoch = data.epochs[walk.places[i].epoch];
    const SatelliteObservation& satellite = epoch.satellites[walk.places[i].satellite];
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      SignalObservation& o = epoch.signals[satellite.first_signal + k];
      const auto slipped = std::find(slip.signals.begin(), slip.signals.end(), o.code);
      if (slipped != slip.signals.end())
        o.phase_cycles += slip.sizes[static_cast<std::size_t>(slipped - slip.signals.begin())];
    }
  }
}

/// Takes the phases of a hole out: of the signals that slip, or of all.
void AddHole(InjectionData& data, const SatelliteWalk& walk, std::size_t end, const InjectedSlip& slip,
             std::size_t epochs, bool of_signals) {
  for (std::size_t i = end - epochs; i < end; ++i) {
    ObservationEpoch& epoch = data.epochs[walk.places[i].epoch];
    const SatelliteObservation& satellite = epoch.satellites[walk.places[i].satellite];
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      SignalObservation& o = epoch.signals[satellite.first_signal + k];
      const bool slips = std::find(slip.signals.begin(), slip.signals.end(), o.code) != slip.signals.end();
      if (slips || !of_signals) o.phase_cycles = o.pseudorange_m = std::nan("");
    }
  }
}

/// Makes a slip one after a hole, or the hole alone.
void MakeHole(InjectionData& data, const SatelliteWalk& walk, std::size_t i, std::size_t epochs,
              const Bands& bands, Dice& dice, InjectedSlip& slip) {
  const bool of_signals = slip.signals.size() < bands.signals.size() && dice.Below(2) == 0;
  AddHole(data, walk, i, slip, epochs, of_signals);
  const bool without = dice.Below(3) == 0;
  slip.kind =
      std::string(of_signals ? "signals" : "satellite") + " away, " + (without ? "no slip" : slip.kind);
  if (!without) return;
  slip.whole = true;
  slip.signals.clear();
  slip.sizes.clear();
}

void InjectSatellite(InjectionData& data, SatelliteId id, const SatelliteWalk& walk,
                     const InjectionPlan& plan, std::vector<InjectedSlip>& slips) {
  Dice dice(RandomStream(plan.seed).Of(static_cast<std::uint64_t>(id.system) * 100 + id.number));
  for (std::size_t i = 6 + dice.Below(static_cast<std::size_t>(plan.spacing_steps));
       i + 6 < walk.places.size();) {
    const std::int64_t time_ns = data.epochs[walk.places[i].epoch].time_ns;
    const auto elevation = walk.elevation_deg.find(time_ns);
    const bool decided = elevation != walk.elevation_deg.end();
    const bool low = decided && elevation->second < plan.least_elevation_deg;
    const std::size_t hole = plan.hole_epochs;
    const bool free = hole > 0 ? HasRoomForHole(walk, i, hole) : IsFree(walk, i);
    const Bands bands = decided && !low && free ? BandsAt(data, walk, i) : Bands();
    if (!bands.signals.empty()) {
      InjectedSlip slip;
      slip.satellite = id;
      slip.time_ns = time_ns;
      slip.elevation_deg = elevation->second;
      slip.bands = static_cast<int>(bands.bands.size());
      Choose(slip, bands, dice);
      if (!slip.signals.empty()) {
        if (hole > 0) MakeHole(data, walk, i, hole, bands, dice, slip);
        AddSlip(data, walk, i, slip);
        slips.push_back(slip);
      }
    }
    const double least = std::max(8.0, static_cast<double>(hole) + kFreeSteps);
    i += static_cast<std::size_t>(
        std::max(least, 0.6 * plan.spacing_steps + dice.Exponential(0.6 * plan.spacing_steps)));
  }
}

using Sizes = std::vector<std::pair<std::string, double>>;

Sizes Sorted(const std::vector<SignalCode>& signals, const std::vector<double>& sizes) {
  Sizes out;
  for (std::size_t i = 0; i < signals.size() && i < sizes.size(); ++i)
    out.emplace_back(NameOf(signals[i]), sizes[i]);
  std::sort(out.begin(), out.end());
  return out;
}

void Score(const std::vector<Event>& events, std::vector<InjectedSlip>& slips) {
  std::map<std::pair<SatelliteId, std::int64_t>, std::vector<const Event*>> at;
  for (const Event& event : events) at[{event.satellite, event.time_ns}].push_back(&event);
  for (InjectedSlip& slip : slips) {
    bool sure = false;
    for (const Event* event : at[{slip.satellite, slip.time_ns}]) {
      sure = sure || event->sure;
      slip.answer += Described(*event) + "; ";
      const EventKind kind = event->kind;
      if (kind == EventKind::kGapUnresolved || kind == EventKind::kSignalGapUnresolved) slip.left_open = true;
      if (slip.signals.empty()) {
        const bool continuous = kind == EventKind::kGapContinuous || kind == EventKind::kSignalGapContinuous;
        slip.found = slip.size_right = slip.found || continuous;
        continue;
      }
      if (!IsSlip(kind)) continue;
      slip.found = true;
      slip.size_right =
          slip.size_right || Sorted(event->signals, event->sizes) == Sorted(slip.signals, slip.sizes);
    }
    slip.sure_and_wrong = sure && !slip.size_right;
  }
}

bool IsAlarm(const Event& event, double least_elevation_deg) {
  const bool kind =
      event.kind == EventKind::kSlip || event.kind == EventKind::kHalfCycle || event.kind == EventKind::kJump;
  return kind && !(event.elevation_deg < least_elevation_deg);
}

}  // namespace

std::string Described(const Event& event) {
  std::string text = NameOf(event.satellite) + " " + analysis::NameOf(event.kind);
  for (const SignalCode code : event.signals) text += " " + NameOf(code);
  char number[60];
  for (const double size : event.sizes) {
    std::snprintf(number, sizeof number, " %g", size);
    text += number;
  }
  std::snprintf(number, sizeof number, " (el %.1f, chi2 %.0f, score %.1f, margin %.1f%s)",
                event.elevation_deg, event.chi2, event.score, event.margin, event.sure ? ", sure" : "");
  return text + number;
}

DetectorRun RunDetector(const InjectionData& data) {
  analysis::SlipDetector detector(data.options, data.records);
  detector.TakeSteps();
  for (const ObservationEpoch& epoch : data.epochs) detector.Add(epoch);
  detector.Finish();
  return {detector.TakeEvents(), detector.TakeSteps()};
}

InjectionResult Inject(const InjectionData& data, const InjectionPlan& plan) {
  InjectionResult result;
  const DetectorRun base = RunDetector(data);
  result.base = base.events;
  InjectionData changed = data;
  for (const auto& [id, walk] : WalksOf(data, base)) {
    if (walk.places.size() > 14) InjectSatellite(changed, id, walk, plan, result.slips);
  }
  const DetectorRun run = RunDetector(changed);
  Score(run.events, result.slips);
  std::set<std::pair<SatelliteId, std::int64_t>> weak;
  for (const DecidedStep& step : run.steps) {
    if (step.weak) weak.insert({step.satellite, step.time_ns});
  }
  for (InjectedSlip& slip : result.slips) slip.weakly_tested = weak.count({slip.satellite, slip.time_ns}) > 0;
  std::map<std::int64_t, std::int64_t> number;
  for (std::size_t e = 0; e < data.epochs.size(); ++e)
    number[data.epochs[e].time_ns] = static_cast<std::int64_t>(e);
  std::set<std::pair<SatelliteId, std::int64_t>> known;
  const auto add = [&](SatelliteId id, std::int64_t time_ns) {
    for (const int off : {-1, 0, 1}) known.insert({id, number[time_ns] + off});
  };
  for (const InjectedSlip& slip : result.slips) add(slip.satellite, slip.time_ns);
  for (const Event& event : base.events) add(event.satellite, event.time_ns);
  for (const Event& event : run.events) {
    if (IsAlarm(event, plan.least_elevation_deg) && !known.count({event.satellite, number[event.time_ns]})) {
      result.fresh.push_back(event);
    }
  }
  for (const DecidedStep& step : run.steps) {
    if (!std::isfinite(step.chi2) || step.elevation_deg < plan.least_elevation_deg) continue;
    ++result.tested_steps;
    result.weakly_tested_steps += step.weak;
  }
  for (const Event& event : base.events) result.base_slips += IsAlarm(event, plan.least_elevation_deg);
  return result;
}

}  // namespace orsolva_truth
