// The analysis over a small sky whose epochs and records are corrupted as the input says. Looking at what has
// been found after every few epochs changes nothing, and what is found stays within what was fed.
#include "host/analysis/station_analysis.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <vector>

#include "fuzz/input_words.h"
#include "fuzz/require.h"
#include "tests/support/analysis_sky.h"
#include "tests/support/mutator.h"
#include "tests/support/value_digest.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using orsolva_fuzz::Require;
using orsolva_host::KeplerRecord;
using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteObservation;
using orsolva_host::SignalObservation;
using orsolva_host::StateVectorRecord;
using orsolva_host::analysis::Event;
using orsolva_test::AnalysisOutcome;
using orsolva_test::AnalysisSky;
using orsolva_test::DigestOf;

constexpr int kEpochs = 26;  // the first 16 find the station, decisions look 20 back and 4 ahead
/// GPS and Galileo find a position; a satellite of each other system is enough.
int SatellitesOf(char system) { return system == 'G' ? 4 : system == 'E' ? 2 : 1; }

/// Few satellites of each system, the same in all epochs, and their records.
AnalysisSky SmallSky() {
  orsolva_test::SkyOptions options;
  options.Epochs = kEpochs;
  options.LowestElevation = 0.35;
  AnalysisSky sky{orsolva_test::SimulatedSky(options)};
  std::map<char, int> counts;
  std::erase_if(sky.Epochs.front().satellites, [&](const SatelliteObservation& satellite) {
    return ++counts[satellite.id.system] > SatellitesOf(satellite.id.system);
  });
  const std::vector<SatelliteObservation> kept = sky.Epochs.front().satellites;
  const auto is_left_out = [&](orsolva_host::SatelliteId id) {
    return std::none_of(kept.begin(), kept.end(), [id](const auto& one) { return one.id == id; });
  };
  for (ObservationEpoch& epoch : sky.Epochs) {
    std::erase_if(epoch.satellites, [&](const SatelliteObservation& one) { return is_left_out(one.id); });
  }
  std::erase_if(sky.Records.kepler, [&](const KeplerRecord& one) { return is_left_out(one.satellite); });
  std::erase_if(sky.Records.state_vectors,
                [&](const StateVectorRecord& one) { return is_left_out(one.satellite); });
  return sky;
}

/// Corrupts a sky by choices from the input.
class Corruption {
 public:
  Corruption(orsolva_fuzz::InputWords words, AnalysisSky& sky) : mutator_(words), sky_(sky) {}

  void Run() {
    ChangeOptions();
    for (std::uint32_t n = Below(12); n > 0; --n) ChangeRecords();
    for (std::uint32_t n = Below(40); n > 0; --n) ChangeEpoch(sky_.Epochs[Below(sky_.Epochs.size())]);
    if (Below(4) == 0) SlipFrom(Below(sky_.Epochs.size()));
  }

  std::uint32_t Below(std::size_t bound) { return mutator_.Below(static_cast<std::uint32_t>(bound)); }

 private:
  void ChangeOptions() {
    auto& detector = sky_.Options.detector;
    if (Below(4) == 0) detector.position.reset();
    if (Below(8) == 0) detector.position = {mutator_.Double(), mutator_.Double(), mutator_.Double()};
    if (Below(4) == 0) detector.interval_s = mutator_.Double();
    if (Below(8) == 0) sky_.Options.elevation_cutoff_deg = mutator_.Double();
    if (Below(4) == 0) sky_.Records = {};
    const std::int64_t interval_ns[] = {30'000'000'000, 1'000'000'000, 100'000'000, 300'000'000'000};
    const std::int64_t interval = interval_ns[Below(std::size(interval_ns))];
    const std::int64_t start = sky_.Epochs.front().time_ns;
    for (std::size_t k = 0; k < sky_.Epochs.size(); ++k) {
      sky_.Epochs[k].time_ns = start + static_cast<std::int64_t>(k) * interval;
    }
  }

  void ChangeRecords() {
    static constexpr double KeplerRecord::*kElements[] = {
        &KeplerRecord::toe_s,        &KeplerRecord::toc_s,  &KeplerRecord::af0,          &KeplerRecord::af1,
        &KeplerRecord::af2,          &KeplerRecord::sqrt_a, &KeplerRecord::eccentricity, &KeplerRecord::m0,
        &KeplerRecord::delta_n,      &KeplerRecord::omega0, &KeplerRecord::omega_dot,    &KeplerRecord::i0,
        &KeplerRecord::idot,         &KeplerRecord::omega,  &KeplerRecord::cuc,          &KeplerRecord::cus,
        &KeplerRecord::cic,          &KeplerRecord::cis,    &KeplerRecord::crc,          &KeplerRecord::crs,
        &KeplerRecord::toe_of_week_s};
    auto& kepler = sky_.Records.kepler;
    auto& vectors = sky_.Records.state_vectors;
    if (Below(4) != 0) {
      if (!kepler.empty())
        kepler[Below(kepler.size())].*kElements[Below(std::size(kElements))] = mutator_.Double();
      return;
    }
    if (vectors.empty()) return;
    StateVectorRecord& record = vectors[Below(vectors.size())];
    double* const elements[] = {record.position_m, record.velocity_m_s, record.acceleration_m_s2};
    switch (Below(4)) {
      case 0:
        record.toe_s = mutator_.Double();
        break;
      case 1:
        record.clock_bias_s = mutator_.Double();
        break;
      default:
        elements[Below(3)][Below(3)] = mutator_.Double();
        break;
    }
  }

  void ChangeEpoch(ObservationEpoch& epoch) {
    switch (Below(8)) {
      case 0:
        epoch.time_ns = OfFiles(mutator_.Integer());
        break;
      case 1:
        epoch.time_ns = OfFiles(mutator_.Shifted(epoch.time_ns, mutator_.Integer() % 2'000'000'000'000));
        break;
      case 2:
        epoch.events = mutator_.Below(32);
        break;
      case 3:
        if (!epoch.satellites.empty())
          epoch.satellites.erase(epoch.satellites.begin() + Below(epoch.satellites.size()));
        break;
      case 4:
        if (!epoch.satellites.empty()) {
          SatelliteObservation again = epoch.satellites[Below(epoch.satellites.size())];
          if (Below(2) == 0) again.id = {"GRECJIS?"[Below(8)], static_cast<std::uint8_t>(Below(256))};
          epoch.satellites.push_back(again);
        }
        break;
      default:
        if (!epoch.signals.empty()) ChangeSignal(epoch.signals[Below(epoch.signals.size())]);
        break;
    }
  }

  /// Readers give times from 1970 to 2100.
  static std::int64_t OfFiles(std::int64_t time_ns) {
    constexpr std::int64_t kYear2100_ns = 4'102'444'800'000'000'000;
    return ((time_ns % kYear2100_ns) + kYear2100_ns) % kYear2100_ns;
  }

  void ChangeSignal(SignalObservation& signal) {
    switch (Below(8)) {
      case 0:
        signal.pseudorange_m = mutator_.Double();
        break;
      case 1:
        signal.phase_cycles = mutator_.Double();
        break;
      case 2:
        signal.phase_cycles = orsolva_host::kAbsent;
        break;
      case 3:
        signal.phase_cycles += 0.5 * Below(20);
        break;
      case 4:
        signal.doppler_hz = mutator_.Double();
        break;
      case 5:
        signal.snr_dbhz = mutator_.Double();
        break;
      case 6:
        signal.loss_of_lock = static_cast<std::uint8_t>(Below(8));
        signal.strength_digit = static_cast<std::uint8_t>(Below(10));
        break;
      default:
        signal.code = {static_cast<char>('0' + Below(11)), "CWPXIQ?"[Below(7)]};
        break;
    }
  }

  /// Every signal with a place of its kind, from an epoch on.
  void SlipFrom(std::size_t first) {
    const std::uint32_t place = Below(40);
    const double cycles = 0.5 * static_cast<double>(Below(200)) - 50;
    for (std::size_t k = first; k < sky_.Epochs.size(); ++k) {
      auto& signals = sky_.Epochs[k].signals;
      if (place < signals.size()) signals[place].phase_cycles += cycles;
    }
  }

  orsolva_test::Mutator<orsolva_fuzz::InputWords> mutator_;
  AnalysisSky& sky_;
};

void CheckEvents(const AnalysisSky& sky, const std::vector<Event>& events) {
  std::size_t most = 0;
  for (const ObservationEpoch& epoch : sky.Epochs)
    most += 2 * (epoch.signals.size() + epoch.satellites.size()) + 4;
  Require(events.size() <= most, "events are bounded by observations");
  for (const Event& event : events) {
    const bool fed = std::any_of(sky.Epochs.begin(), sky.Epochs.end(), [&](const ObservationEpoch& epoch) {
      return epoch.time_ns == event.time_ns;
    });
    Require(fed, "an event is of an epoch that was fed");
    const bool of_satellite = event.satellite.system != ' ';
    Require(!of_satellite || event.sizes.empty() || event.sizes.size() == event.signals.size(),
            "a size for each signal, or none");
    Require(event.evidence.size() < 4096, "evidence is a line");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const AnalysisSky base = SmallSky();
  AnalysisSky sky = base;
  Corruption corruption(orsolva_fuzz::InputWords(data, size), sky);
  corruption.Run();
  const std::size_t share = corruption.Below(2) == 0 ? 1 : 7;
  const AnalysisOutcome whole = Analysed(sky, sky.Records, sky.Epochs.size());
  const AnalysisOutcome split = Analysed(sky, sky.Records, share);
  Require(DigestOf(whole.Events) == DigestOf(split.Events), "events do not depend on the split");
  Require(DigestOf(whole.Figures) == DigestOf(split.Figures), "figures do not depend on the split");
  CheckEvents(sky, whole.Events);
  return 0;
}
