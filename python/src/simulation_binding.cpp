#include "python/src/simulation_binding.h"

#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/judging/run_monitor.h"
#include "host/rinex/navigation_reader.h"
#include "host/simulator/broadcast.h"
#include "host/simulator/comparison.h"
#include "host/simulator/file_set.h"
#include "host/simulator/navigation_writer.h"
#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "host/simulator/simulation.h"
#include "host/simulator/truth_json.h"
#include "python/src/navigation_binding.h"
#include "python/src/observation_columns.h"
#include "python/src/table_binding.h"
#include "python/src/waiting.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

/// A simulated span in memory.
struct SimulatedDay {
  Scenario scenario;
  std::shared_ptr<Table> rows, epochs;
  Navigation navigation;
  std::string truth_json;
};

const Preset& PresetOf(const std::string& name) {
  if (const Preset* preset = FindPreset(name)) return *preset;
  std::string known;
  for (const Preset& preset : Presets()) known += (known.empty() ? "" : ", ") + std::string(preset.name);
  throw ScenarioError("preset: found '" + name + "', expected one of " + known);
}

/// @param settings  as in a scenario file, on top of the preset
Scenario ScenarioOf(const std::string& preset, const std::vector<std::string>& fault_presets,
                    const std::string& settings) {
  Scenario scenario;
  ReadScenario(PresetOf(preset).json, scenario);
  for (const std::string& name : fault_presets) {
    Scenario other;
    ReadScenario(PresetOf(name).json, other);
    scenario.faults.insert(scenario.faults.end(), other.faults.begin(), other.faults.end());
  }
  ReadScenario(settings, scenario);
  CheckScenario(scenario);
  return scenario;
}

/// The records as runs take them: by way of the text of a navigation file, so that they are those of the
/// file.
Navigation NavigationOf(const Simulation& simulation) {
  auto read = std::make_shared<ReadNavigation>();
  read->files = {"simulated"};
  read->has_record_files = true;
  NavigationReader reader(read->notices);
  const int leap_seconds = LeapSeconds(simulation.Settings().start.time);
  reader.Read(TextBytes(NavigationText(simulation.Navigation(), leap_seconds)), "simulated");
  read->set = reader.Take();
  read->broadcast = reader.TakeBroadcast();
  return {{}, std::make_shared<SharedNavigation>(std::move(read))};
}

/// Strengths as a file has them: the simulation has them as float.
void RoundStrengths(ObservationEpoch& epoch) {
  constexpr double kSteps = 1000;
  for (SignalObservation& signal : epoch.signals)
    signal.snr_dbhz = std::round(signal.snr_dbhz * kSteps) / kSteps;
}

void Simulate(SimulatedDay& day, RunMonitor& monitor) {
  Simulation simulation(day.scenario);
  Selection all;
  all.fields = {"pseudorange", "phase", "doppler", "snr"};
  all.flags = true;
  ObservationColumns columns(all);
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  while (simulation.Next(*record, epoch)) {
    if (monitor.stop.load(std::memory_order_relaxed)) throw Stopped();
    monitor.epochs.fetch_add(1, std::memory_order_relaxed);
    RoundStrengths(epoch);
    columns.Add(epoch);
  }
  day.rows = columns.Rows();
  day.epochs = columns.EpochTable();
  day.navigation = NavigationOf(simulation);
  day.truth_json = TruthJson(day.scenario, simulation.TruthSoFar());
}

std::shared_ptr<SimulatedDay> SimulatedDayOf(const std::string& preset,
                                             const std::vector<std::string>& faults,
                                             const std::string& settings, const nb::object& progress) {
  auto day = std::make_shared<SimulatedDay>();
  day->scenario = ScenarioOf(preset, faults, settings);
  RunMonitor monitor;
  RunInterruptibly([&] { Simulate(*day, monitor); }, monitor, progress);
  return day;
}

std::vector<std::string> Write(const SimulatedDay& day, const std::string& folder, bool gzip, bool crinex) {
  const FileSetOptions options{folder, gzip, crinex};
  RunMonitor monitor;
  const auto write = [&] {
    WriteFileSet(day.scenario, options, [&](std::uint64_t, std::uint64_t) {
      if (monitor.stop.load(std::memory_order_relaxed)) throw Stopped();
    });
  };
  RunInterruptibly(write, monitor, nb::none());
  const FileSet names = FileNames(day.scenario, options);
  return {names.observations, names.navigation, names.truth};
}

nb::list PresetList() {
  nb::list list;
  for (const Preset& preset : Presets()) list.append(nb::make_tuple(preset.name, preset.about));
  return list;
}

}  // namespace

void BindSimulation(nb::module_& module) {
  nb::class_<SimulatedDay>(module, "DayData", "A simulated span; orsolva.Day is the way to it.")
      .def("rows", [](const SimulatedDay& day) { return day.rows; })
      .def("epochs", [](const SimulatedDay& day) { return day.epochs; })
      .def("navigation", [](const SimulatedDay& day) { return day.navigation; })
      .def("truth_json", [](const SimulatedDay& day) { return day.truth_json; })
      .def("interval_s", [](const SimulatedDay& day) { return day.scenario.interval_s; })
      .def("write", Write, nb::arg("folder"), nb::arg("gzip"), nb::arg("crinex"));
  module.def("simulate", SimulatedDayOf, nb::arg("preset"), nb::arg("faults"), nb::arg("settings"),
             nb::arg("progress").none());
  module.def("presets", PresetList, "(name, about) of every preset");
  module.def(
      "compare",
      [](const std::string& report, const std::string& report_name, const std::string& truth,
         const std::string& truth_name) {
        return ComparisonText({report_name, report}, {truth_name, truth});
      },
      nb::arg("report"), nb::arg("report_name"), nb::arg("truth"), nb::arg("truth_name"));
}

}  // namespace orsolva_python
