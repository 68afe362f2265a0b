#include <fmt/format.h>

#include "tests/support/sanitized.h"
#include "tests/truth/slip_trial.h"

namespace orsolva_test {
namespace {

using orsolva_host::Scenario;

struct IntervalPlan {
  double interval_s;
  int long_epochs;  ///< of the run without slips
};

constexpr IntervalPlan kPlans[] = {{0.1, 36000}, {1, 14400}, {15, 5760}, {30, 2880}};
constexpr int kShortEpochs = 300;
constexpr int kShortTrial = 150, kLongTrial = 1500;

std::vector<std::string> SlipColumns(const std::string& limit) {
  std::vector<std::string> columns = {"interval, s", "ionosphere", "band", limit, "slips per size"};
  for (const double size : kSlipSizes) columns.push_back(fmt::format("{} cycles, %", size));
  return columns;
}

std::string Percent(int found, int of) { return of ? Number(100.0 * found / of, 1) : "-"; }

/// The tables of the proof while they grow.
struct SlipTables {
  ProofTable geometry_free{
      "Slips found by the geometry-free test, in percent of the pairs that measure the code.",
      SlipColumns("largest step, m"),
      {},
      3};
  ProofTable geometry{
      "Slips found by the phase-minus-geometry test, likewise.", SlipColumns("largest excess, m"), {}, 3};
  ProofTable alarms{"False alarms per 10,000 satellite-epochs, without any slip.",
                    {"interval, s", "ionosphere", "band", "satellite-epochs", "geometry-free",
                     "phase minus geometry", "phase minus geometry at a new broadcast record"},
                    {},
                    3};
  ProofTable causes{
      "Causes of the false alarms under the quiet ionosphere, all bands, per 10,000 satellite-epochs.",
      {"interval, s", "simulated", "satellite-epochs", "geometry-free", "phase minus geometry",
       "phase minus geometry at a new broadcast record"},
      {},
      2};
};

void AddTrial(const Scenario& scenario, const char* weather, SlipTables& tables, Proof& proof) {
  for (const auto& [band, sizes] : RunSlipTrial(scenario, proof)) {
    const std::vector<std::string> keys = {Number(scenario.interval_s, 1), weather, band};
    std::vector<std::string> free = keys, geometry = keys;
    free.push_back(Number(sizes.back().geometry_free_limit_m, 3));
    geometry.push_back(Number(GeometryLimit(scenario.interval_s), 2));
    free.push_back(std::to_string(sizes[0].slips));
    geometry.push_back(std::to_string(sizes[0].slips));
    for (const Detection& d : sizes) {
      free.push_back(Percent(d.geometry_free, d.pairs));
      geometry.push_back(Percent(d.geometry, d.pairs));
    }
    tables.geometry_free.rows.push_back(free);
    tables.geometry.rows.push_back(geometry);
  }
}

void AddAlarmCells(const FalseAlarms& alarms, std::vector<std::string>& row) {
  row.push_back(std::to_string(alarms.epochs));
  row.push_back(Number(alarms.Per10000(alarms.geometry_free), 2));
  row.push_back(Number(alarms.Per10000(alarms.geometry), 2));
  row.push_back(Number(alarms.Per10000(alarms.new_record), 2));
}

void AddAlarms(const Scenario& scenario, const char* weather, SlipTables& tables, Proof& proof) {
  for (const auto& [band, alarms] : RunWithoutSlips(scenario, proof)) {
    std::vector<std::string> row = {Number(scenario.interval_s, 1), weather, band};
    AddAlarmCells(alarms, row);
    tables.alarms.rows.push_back(row);
  }
}

void AddCause(const Scenario& scenario, const char* simulated, SlipTables& tables, Proof& proof) {
  FalseAlarms all;
  for (const auto& [band, alarms] : RunWithoutSlips(scenario, proof)) all.Add(alarms);
  std::vector<std::string> row = {Number(scenario.interval_s, 1), simulated};
  AddAlarmCells(all, row);
  tables.causes.rows.push_back(row);
}

/// Switches the parts of the error model on one after the other.
void AddCauses(double interval_s, int epochs, SlipTables& tables, Proof& proof) {
  const Scenario full = SlipScenario(interval_s, epochs, false);
  Scenario scenario = full;
  Silence(scenario.errors);
  scenario.errors.troposphere = scenario.errors.ionosphere = false;
  AddCause(scenario, "geometry and clocks alone", tables, proof);
  scenario.errors.troposphere = true;
  AddCause(scenario, "and troposphere", tables, proof);
  scenario.errors.ionosphere = true;
  AddCause(scenario, "and ionosphere", tables, proof);
  AddCause(full, "and noise", tables, proof);
}

void Describe(Proof& proof) {
  proof.injected =
      "slips of 0.5 to 100 cycles, alternately up and down, on every signal every 60 epochs, one signal of a "
      "satellite at a time, under a quiet ionosphere and under a storm that changes the slant content by up "
      "to 0.2 TECU/s (3 cm of GPS L1 per second); and the same sky without slips. Elevations above 12 "
      "degrees";
  proof.must_say =
      "both tests see the full size of each slip: the step of the geometry-free combination and the phase "
      "change differ from those of the same epoch without the slip by size times wavelength. In every epoch "
      "of every pair, with and without slips, the common change is the upper median of the changes without a "
      "geometry-free slip, and each test flags exactly the epochs that its rule requires. The rates below "
      "follow from these rules";
  proof.tolerance = "0.0011 cycles for the size; none for the outcome of the rules";
  proof.reason =
      "phases have three decimals of a cycle, so a difference of two is off by up to 0.001. The proof "
      "implements the rules independently: a step above |1 - (f2/f1)^2| x 4 m/min x interval, but at least "
      "0.026 m; an excess above 0.05 m (up to 1 s), 0.1 m (15 s), 0.15 m (30 s), 0.3 m (60 s)";
  proof.notes = {
      "At 0.1 s and 1 s both tests find half a cycle. At 15 s and 30 s the geometry-free test tolerates an "
      "ionospheric change of 4 m per minute, and with it slips below the largest step of the table; the "
      "phase-minus-geometry test finds one cycle at 15 s and two at 30 s under a quiet ionosphere. In a "
      "storm its excess contains the ionospheric change of the interval, so slips are masked and false "
      "alarms are frequent; the geometry-free test is hardly affected.",
      "Systematic false alarms, counted separately in the last column: in the epoch in which a new broadcast "
      "record comes into use the library forms the previous value again, with the new record but without the "
      "satellite clock. The change then contains the whole clock offset (often hundreds of metres and more), "
      "and the test flags a slip on nearly every code of the satellite although none occurred. GLONASS "
      "changes records every 30 min, the others every one or two hours.",
      "Also systematic: the test does not remove the atmosphere from the phases. The tropospheric change of "
      "a low satellite within 30 s reaches the threshold, as the last table shows: with geometry and clocks "
      "alone there is no false alarm, with the troposphere there are, and noise adds next to none. The range "
      "of the test is the plain distance, without the rotation of the Earth during signal travel; that error "
      "changes too slowly to matter.",
      "The largest step is that for one of the partners: BDS band 2 pairs with band 7 (0.402 m at 15 s) and, "
      "of the newer satellites, with band 6 (0.340 m)."};
}

}  // namespace

void ProveSlips(bool long_form, Proof& proof) {
  Describe(proof);
  SlipTables tables;
  for (const IntervalPlan& plan : kPlans) {
    if (!RunsHere(static_cast<std::size_t>(&plan - kPlans), 2)) continue;
    const int epochs = long_form ? plan.long_epochs : kShortEpochs;
    for (const bool stormy : {false, true}) {
      const char* weather = stormy ? "stormy" : "quiet";
      AddTrial(SlipScenario(plan.interval_s, long_form ? kLongTrial : kShortTrial, stormy), weather, tables,
               proof);
      AddAlarms(SlipScenario(plan.interval_s, epochs, stormy), weather, tables, proof);
    }
    if (plan.interval_s > 1) AddCauses(plan.interval_s, epochs, tables, proof);
  }
  proof.tables = {tables.geometry_free, tables.geometry, tables.alarms, tables.causes};
}

}  // namespace orsolva_test
