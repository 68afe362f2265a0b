// Valid runs of the library, corrupted as the input says: every choice of the mutator is taken from its
// bytes.
#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "fuzz/input_words.h"
#include "fuzz/require.h"
#include "tests/support/mutator.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr int kSatellitesPerSystem = 3;
constexpr int kRecordsPerSatellite = 2;
/// Results take as long as eight batches; their laws are checked on every run by the mutation tests.
constexpr std::uint32_t kRunsPerResult = 48;

/// Counts by system or satellite; true for the first `most` of each key.
template <class Key>
class FirstOf {
 public:
  explicit FirstOf(int most) : most_(most) {}
  bool operator()(const Key& key) { return ++counts_[key] <= most_; }

 private:
  int most_;
  std::map<Key, int> counts_;
};

/// The first satellites of each system; those of one system keep their order from epoch to epoch.
void KeepFewSatellites(ObsEpoch_QC_gbt& epoch) {
  FirstOf<int> kept(kSatellitesPerSystem);
  ObsEpoch_QC_gbt few{};
  few.time = epoch.time;
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    if (kept(epoch.sats[i].sys)) few.sats[few.sat_num++] = epoch.sats[i];
  }
  epoch = few;
}

/// The records of the satellites of an epoch; each satellite's last ones are dropped.
template <class Record>
void KeepFewRecords(std::vector<Record>& records, int system, const ObsEpoch_QC_gbt& epoch) {
  FirstOf<int> kept(kRecordsPerSatellite);
  std::erase_if(records, [&](const Record& record) {
    const bool observed = std::any_of(epoch.sats, epoch.sats + epoch.sat_num, [&](const Satellite_gbt& s) {
      return s.sys == system && s.prn == record.prn;
    });
    return !observed || !kept(record.prn);
  });
}

/// A run of up to three batches that is small enough for hundreds of runs per second under the sanitizers.
orsolva_test::SimulatedSky SmallSky() {
  orsolva_test::SkyOptions options;
  options.Epochs = 7;
  options.LowestElevation = 0.35;  // well above the horizon over all epochs: the same satellites in each
  orsolva_test::SimulatedSky sky(options);
  for (ObsEpoch_QC_gbt& epoch : sky.Epochs) KeepFewSatellites(epoch);
  const ObsEpoch_QC_gbt& first = sky.Epochs.front();
  KeepFewRecords(sky.Navigation.Gps, 1, first);
  KeepFewRecords(sky.Navigation.Glonass, 2, first);
  KeepFewRecords(sky.Navigation.Bds, 4, first);
  KeepFewRecords(sky.Navigation.Galileo, 8, first);
  KeepFewRecords(sky.Navigation.Qzss, 16, first);
  return sky;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const orsolva_test::SimulatedSky sky = SmallSky();
  static orsolva_test::Results results;
  orsolva_test::Mutator<orsolva_fuzz::InputWords> mutator(orsolva_fuzz::InputWords(data, size));
  const orsolva_test::MutatedRunFacts facts = orsolva_test::MutatedRun(sky, mutator, results, kRunsPerResult);
  orsolva_fuzz::Require(facts.Broken == nullptr, facts.Broken);
  return 0;
}
