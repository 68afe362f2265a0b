// Valid runs with records corrupted field by field, for tests and fuzz targets.
#ifndef ORSOLVA_TESTS_SUPPORT_MUTATOR_H
#define ORSOLVA_TESTS_SUPPORT_MUTATOR_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "tests/support/run.h"
#include "tests/support/run_laws.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {

/// Corrupts valid records field by field with extreme and invalid values.
///
/// @tparam Random  called without arguments for 32 random bits
template <class Random>
class Mutator {
 public:
  explicit Mutator(Random random) : random_(std::move(random)) {}

  std::uint32_t Below(std::uint32_t bound) { return random_() % bound; }

  double Double() {
    static const double odd[] = {0.0,   -0.0,   1e-12,        5e-13,    2e-12,    -1e-12,  1.0,
                                 -1.0,  0.5,    0.9999999999, 1e-9,     1e9,      1e15,    1e17,
                                 1e300, -1e300, 1e-300,       302400.0, 604800.0, 86400.0, 7200.0};
    switch (Below(8)) {
      case 0:
        return std::numeric_limits<double>::quiet_NaN();
      case 1:
        return std::numeric_limits<double>::infinity();
      case 2:
        return -std::numeric_limits<double>::infinity();
      case 3: {
        const std::uint64_t bits = Word();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
      }
      default:
        return odd[Below(sizeof odd / sizeof *odd)];
    }
  }

  /// a + b, wrapping.
  static std::int64_t Shifted(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
  }

  std::int64_t Word() { return static_cast<std::int64_t>((std::uint64_t{random_()} << 32) | random_()); }

  std::int64_t Integer() {
    static const std::int64_t odd[] = {0,
                                       1,
                                       -1,
                                       2,
                                       7,
                                       8,
                                       9,
                                       64,
                                       65,
                                       79,
                                       80,
                                       81,
                                       127,
                                       128,
                                       255,
                                       256,
                                       65536,
                                       std::numeric_limits<std::int32_t>::max(),
                                       std::numeric_limits<std::int32_t>::min(),
                                       std::numeric_limits<std::int64_t>::max(),
                                       std::numeric_limits<std::int64_t>::min(),
                                       3155760000,
                                       -3155760000};
    return Below(3) == 0 ? Word() : odd[Below(sizeof odd / sizeof *odd)];
  }

  /// Overwrites a random aligned word, or a few random bytes, of a record.
  template <class Record>
  void Scribble(Record& record) {
    auto* bytes = reinterpret_cast<unsigned char*>(&record);
    if (Below(2) == 0) {
      const double value = Double();
      std::memcpy(bytes + 8 * Below(sizeof(Record) / 8), &value, sizeof value);
    } else {
      for (std::uint32_t n = 1 + Below(4); n > 0; --n)
        bytes[Below(sizeof(Record))] = static_cast<unsigned char>(random_());
    }
  }

  void MutateEpoch(ObsEpoch_QC_gbt& epoch) {
    switch (Below(6)) {
      case 0:
        epoch.time.time = Shifted(epoch.time.time, Integer() % 100000);
        break;
      case 1:
        epoch.time.time = Integer();
        break;
      case 2:
        epoch.time.sec = Double();
        break;
      case 3:
        epoch.sat_num = static_cast<std::uint32_t>(Integer());
        break;
      default:
        // The satellites the epoch holds, and the one after them.
        MutateSatellite(epoch.sats[Below(epoch.sat_num < 80 ? epoch.sat_num + 1 : 80)]);
        break;
    }
  }

  void MutateSatellite(Satellite_gbt& satellite) {
    switch (Below(5)) {
      case 0:
        satellite.sys = static_cast<std::uint8_t>(Integer());
        break;
      case 1:
        satellite.prn = static_cast<std::int32_t>(Integer());
        break;
      case 2:
        satellite.signal_num = static_cast<std::uint32_t>(Integer());
        break;
      default: {
        Signal_QC_gbt& signal = satellite.signals[Below(8)];
        switch (Below(4)) {
          case 0:
            signal.pseudorange = Double();
            break;
          case 1:
            signal.phase = Double();
            break;
          case 2:
            signal.snr = static_cast<float>(Double());
            break;
          default:
            signal.code = static_cast<std::uint8_t>(Integer());
            break;
        }
      }
    }
  }

  template <class Record>
  void MutateRecords(std::vector<Record>& records) {
    if (!records.empty()) Scribble(records[Below(static_cast<std::uint32_t>(records.size()))]);
  }

  void MutateNavigation(NavigationSet& set) {
    for (std::uint32_t n = Below(40); n > 0; --n) {
      switch (Below(5)) {
        case 0:
          MutateRecords(set.Gps);
          break;
        case 1:
          MutateRecords(set.Glonass);
          break;
        case 2:
          MutateRecords(set.Bds);
          break;
        case 3:
          MutateRecords(set.Galileo);
          break;
        default:
          MutateRecords(set.Qzss);
          break;
      }
    }
  }

  void MutateConfig(config_qct& config) {
    switch (Below(6)) {
      case 0:
        config.interval = Double();
        break;
      case 1:
        config.elevation = Double();
        break;
      case 2:
        config.position[Below(3)] = Double();
        break;
      case 3:
        config.enable_position = static_cast<std::uint8_t>(Below(2));
        break;
      default:
        Scribble(config);
        break;
    }
  }

 private:
  Random random_;
};

/// What a mutated run showed.
struct MutatedRunFacts {
  long Batches = 0;              ///< fed
  long Accepted = 0;             ///< of them with the state GNSSQC_OK
  const char* Broken = nullptr;  ///< the first law that did not hold, null when all did
};

/// One run over mutated records, from its initialisation to its results.
/// @param results  filled on the way; half a megabyte that many runs can share
/// @param asking   one run in so many asks for its results at its end, and one batch in four times as many,
/// 64 at least
template <class Random>
MutatedRunFacts MutatedRun(const SimulatedSky& sky, Mutator<Random>& mutator, Results& results,
                           std::uint32_t asking = 1) {
  NavigationSet navigation = sky.Navigation;
  config_qct config = sky.Config();
  if (mutator.Below(2) == 0) mutator.MutateNavigation(navigation);
  for (std::uint32_t n = mutator.Below(3); n > 0; --n) mutator.MutateConfig(config);
  NavBodyData_QC_gbt body = navigation.Body();
  if (mutator.Below(8) == 0) body.glo_eph = nullptr;
  if (mutator.Below(8) == 0) body.gps_num = -3;

  Process process;
  InitialQc(body, &config, process.Handle());
  MutatedRunFacts facts;
  std::uint64_t epochs = 0;
  const auto check = [&] {
    results.AskFor(process);
    const char* broken = BrokenLaw(results, epochs);
    if (facts.Broken == nullptr) facts.Broken = broken;
  };
  const std::uint32_t between = std::max<std::uint32_t>(64, 4 * asking);
  std::vector<ObsEpoch_QC_gbt> batch;
  for (std::size_t at = 0; at + 4 < sky.Epochs.size(); ++facts.Batches) {
    const std::size_t count = 1 + mutator.Below(4);
    batch.assign(sky.Epochs.begin() + static_cast<std::ptrdiff_t>(at),
                 sky.Epochs.begin() + static_cast<std::ptrdiff_t>(at + count));
    at += count;
    for (std::uint32_t n = mutator.Below(12); n > 0; --n)
      mutator.MutateEpoch(batch[mutator.Below(static_cast<std::uint32_t>(count))]);
    const GNSSQC_STATE state = process.Feed(batch.data(), static_cast<int>(batch.size()));
    epochs += count;
    if (!IsAState(state)) facts.Broken = "a batch gives one of the states";
    if (state == GNSSQC_OK) ++facts.Accepted;
    if (mutator.Below(between) == between - 1) check();
  }
  if (mutator.Below(asking) == asking - 1) check();
  return facts;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_MUTATOR_H
