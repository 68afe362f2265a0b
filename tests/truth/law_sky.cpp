#include "tests/truth/law_sky.h"

#include <algorithm>
#include <set>

#include "tests/truth/faulty_scenarios.h"
#include "tests/truth/observed_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::Fault;
using orsolva_host::FaultKind;

constexpr std::int64_t kWeek_s = 604800;

void AddRandom(FaultKind kind, int times, double duration_s, double size, orsolva_host::Scenario& scenario) {
  Fault fault = MakeFault(kind, 0, duration_s, size);
  fault.random = times;
  scenario.faults.push_back(fault);
}

}  // namespace

LawSky MakeLawSky(double interval_s, int epochs, std::uint64_t seed) {
  orsolva_host::Scenario scenario = Troubled(interval_s, epochs, seed);
  // The first epoch has every code: it determines which codes are used, and in which order.
  scenario.receiver = {};
  scenario.receiver.position_m = kEasternSite;
  scenario.receiver.reacquisition_s = 4 * interval_s;
  AddRandom(FaultKind::kSlip, 20, 0, 7, scenario);
  AddRandom(FaultKind::kCodeJump, 10, 10 * interval_s, 20, scenario);
  scenario.faults.push_back(MakeFault(FaultKind::kDuplicate, 100 * interval_s, 0, 0));
  orsolva_host::Simulation simulation(scenario);
  LawSky sky;
  sky.epochs = AllEpochs(simulation);
  sky.navigation = simulation.Navigation();
  sky.config = TruthConfig(scenario);
  return sky;
}

bool FirstEpochHasEveryCode(const LawSky& sky) {
  std::set<std::pair<int, int>> first, all;
  for (const ObsEpoch_QC_gbt& epoch : sky.epochs) {
    for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
      for (std::uint32_t k = 0; k < epoch.sats[i].signal_num; ++k) {
        all.insert({epoch.sats[i].sys, epoch.sats[i].signals[k].code});
      }
    }
    if (&epoch == &sky.epochs.front()) first = all;
  }
  return first == all;
}

bool FeedWhole(Process& process, const LawSky& sky) { return process.Feed(sky.epochs) == GNSSQC_OK; }

bool FeedSplit(Process& process, const LawSky& sky, int longest, std::uint32_t seed,
               const std::function<void(Process&)>& between) {
  std::mt19937 random(seed);
  std::size_t at = 0;
  while (at < sky.epochs.size()) {
    const std::size_t count =
        std::min<std::size_t>(1 + random() % static_cast<unsigned>(longest), sky.epochs.size() - at);
    if (process.Feed(sky.epochs.data() + at, static_cast<int>(count)) != GNSSQC_OK) return false;
    if (between) between(process);
    at += count;
  }
  return true;
}

std::unique_ptr<Results> RunLawSky(const LawSky& sky, const Feeding& feeding) {
  Process process;
  if (!InitialQc(sky.navigation.Body(), &sky.config, process.Handle())) return nullptr;
  if (!feeding(process, sky)) return nullptr;
  return std::make_unique<Results>(process);
}

void ShuffleSatellites(LawSky& sky, std::size_t first, std::uint32_t seed) {
  std::mt19937 random(seed);
  for (std::size_t k = first; k < sky.epochs.size(); ++k) {
    std::shuffle(sky.epochs[k].sats, sky.epochs[k].sats + sky.epochs[k].sat_num, random);
  }
}

void ShiftWeeks(LawSky& sky, int weeks) {
  const std::int64_t shift = weeks * kWeek_s;
  const auto kepler = [&](auto& records) {
    for (auto& record : records) {
      record.toc.time += shift;
      record.week += weeks;
    }
  };
  kepler(sky.navigation.gps);
  kepler(sky.navigation.qzss);
  kepler(sky.navigation.bds);
  kepler(sky.navigation.galileo);
  for (GloEph_gbt& record : sky.navigation.glonass) record.toe.time += shift;
  for (ObsEpoch_QC_gbt& epoch : sky.epochs) epoch.time.time += shift;
}

void RemoveSystem(LawSky& sky, int system) {
  for (ObsEpoch_QC_gbt& epoch : sky.epochs) {
    Satellite_gbt* end = std::remove_if(epoch.sats, epoch.sats + epoch.sat_num,
                                        [system](const Satellite_gbt& s) { return s.sys == system; });
    epoch.sat_num = static_cast<std::uint32_t>(end - epoch.sats);
  }
}

}  // namespace orsolva_test
