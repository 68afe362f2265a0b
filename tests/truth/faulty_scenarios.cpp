#include "tests/truth/faulty_scenarios.h"

namespace orsolva_test {

using orsolva_host::Fault;
using orsolva_host::FaultKind;
using orsolva_host::Scenario;

Fault MakeFault(FaultKind kind, double at_s, double duration_s, double size,
                const orsolva_host::FaultTarget& target) {
  Fault fault;
  fault.kind = kind;
  fault.target = target;
  fault.at_s = at_s;
  fault.duration_s = duration_s;
  fault.size = size;
  return fault;
}

Scenario Troubled(double interval_s, int epochs, std::uint64_t seed) {
  Scenario scenario;
  scenario.name = "troubled";
  scenario.seed = seed;
  scenario.interval_s = interval_s;
  const double span = epochs * interval_s;
  scenario.hours = span / 3600;
  // Longer than the climb from the receiver's cut-off to that of the check: satellites are listed late.
  scenario.receiver.acquisition_s = 60 * interval_s;
  scenario.receiver.start_up_s = 3 * interval_s;
  scenario.receiver.reacquisition_s = 40 < 4 * interval_s ? 40 : 4 * interval_s;
  scenario.receiver.signal_delay_s["G5Q"] = 9 * interval_s;
  // The whole receiver, across the border between the first two batches.
  scenario.faults.push_back(MakeFault(FaultKind::kOutage, 168 * interval_s, 12 * interval_s, 0));
  scenario.faults.push_back(MakeFault(FaultKind::kMissingEpoch, 0.6 * span, 5 * interval_s, 0));
  scenario.faults.push_back(MakeFault(FaultKind::kMissingEpoch, 0.7 * span, 0, 0));
  Fault outages = MakeFault(FaultKind::kOutage, 0, 30 * interval_s, 0);
  outages.random = 25;
  scenario.faults.push_back(outages);
  Fault drops = MakeFault(FaultKind::kSnrDrop, 0, 40 * interval_s, 12);
  drops.random = 15;
  scenario.faults.push_back(drops);
  scenario.faults.push_back(MakeFault(FaultKind::kOutage, 0.4 * span, 0.2 * span, 0, {'R', 0, "2C"}));
  // To the end: whole satellites are no longer listed, single signals are missed.
  scenario.faults.push_back(MakeFault(FaultKind::kOutage, 0.8 * span, 0, 0, {'J', 0, ""}));
  Fault ends = MakeFault(FaultKind::kOutage, 0, 0, 0);
  ends.random = 4;
  scenario.faults.push_back(ends);
  return scenario;
}

std::vector<FaultyScenario> FaultyScenarios(bool long_form) {
  struct Length {
    double interval_s;
    int brief, full;
  };
  constexpr Length kLengths[] = {{0.1, 1800, 36000}, {1, 1800, 21600}, {15, 960, 5760}, {30, 960, 5760}};
  std::vector<FaultyScenario> all;
  for (const Length& length : kLengths) {
    const int epochs = long_form ? length.full : length.brief;
    all.push_back({Troubled(length.interval_s, epochs, 11 + all.size()), false});
  }
  FaultyScenario repeated = {Troubled(30, long_form ? 2880 : 600, 77), true};
  for (const double at : {3000.0, 5010.0, 9990.0}) {
    repeated.scenario.faults.push_back(MakeFault(FaultKind::kDuplicate, at, 0, 0));
    repeated.scenario.faults.push_back(MakeFault(FaultKind::kLateDelivery, at + 600, 0, 0));
  }
  all.push_back(repeated);
  return all;
}

}  // namespace orsolva_test
