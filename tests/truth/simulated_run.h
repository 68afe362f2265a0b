// Drives the exported functions with batches straight from the simulator, and the few independent formulas
// that the proofs share.
#ifndef ORSOLVA_TESTS_TRUTH_SIMULATED_RUN_H
#define ORSOLVA_TESTS_TRUTH_SIMULATED_RUN_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "host/simulator/simulation.h"
#include "host/simulator/surroundings.h"
#include "orsolva/detail.h"
#include "qc/process.h"
#include "results/result_model.h"
#include "tests/support/run.h"

namespace orsolva_test {

inline constexpr double kTruthCutoff_deg = 10.0;
inline constexpr double kTruthRadian = 0.017453292519943295;

/// Everything on, the position and the interval of the scenario.
config_qct TruthConfig(const orsolva_host::Scenario& scenario);

/// A process that takes the navigation set of a simulation.
bool Initialise(Process& process, const orsolva_host::Simulation& simulation, const config_qct& config);
/// The object behind a handle.
orsolva::PostProcessGnssQc& Inside(const Process& process);
/// The figures of a run before they are laid out in a record.
struct Figures {
  orsolva::QcResult result;
  orsolva::QcResultCore total;
};
std::unique_ptr<Figures> FiguresOf(const Process& process);

/// Epoch by epoch, without faults of the delivery: all epochs of a scenario at once.
std::vector<ObsEpoch_QC_gbt> AllEpochs(orsolva_host::Simulation& simulation);

/// The figures of a code of a satellite in a per-code record; null when it has none.
const code_qc_entry* FindEntry(const total_code_qc_result& record, int system, int prn, int code);

/// Letter of a system code, such as 'G' for 1.
char LetterOf(int system);
/// System code of a letter, such as 1 for 'G'.
int SystemCodeOf(char letter);
/// Result slot 0 to 4 of a system code.
int SlotOf(int system);
std::string NameOf(int system, int prn);
/// Such as "GPS 1C".
std::string CodeName(int system, int code);
/// Such as "GPS L1"; the three BDS bands close to one another have different names.
std::string BandLabel(int system, int code);
/// Carrier frequency of a code, Hz.
double FrequencyOf(int system, int code, int glonass_channel);

/// Elevations by the rule of the library (one nominal travel time of 3e8 m, plain line of sight), formed with
/// the simulator's own orbits and axes.
class ElevationRule {
 public:
  ElevationRule(const orsolva_host::Sky& sky, const orsolva_host::Scenario& scenario);
  /// @param seconds  after the start of the scenario
  double At(int system, int prn, double seconds) const;
  int Channel(int system, int prn) const;
  std::size_t IndexOf(int system, int prn) const { return indices_.at({system, prn}); }

 private:
  const orsolva_host::Sky* sky_;
  orsolva_host::Site site_;
  std::map<std::pair<int, int>, std::size_t> indices_;
};

/// Seconds from the start of the scenario to a time.
double SecondsAfter(const Time_gbt& start, const Time_gbt& time);

std::string Number(double value, int decimals);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_SIMULATED_RUN_H
