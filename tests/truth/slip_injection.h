// Known slips injected into real observations, and how many of them the detector finds.
#ifndef ORSOLVA_TESTS_SLIP_INJECTION_H
#define ORSOLVA_TESTS_SLIP_INJECTION_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/truth/injection_data.h"

namespace orsolva_truth {

struct InjectionPlan {
  std::uint64_t seed = 1;
  double spacing_steps = 45;       ///< mean distance of slips of one satellite
  double least_elevation_deg = 5;  ///< where elevations are known
  /// Phases missing before each slip: of the satellite or of the signals that slip. A third of these holes
  /// are without a slip. 0: slips in continuous tracking.
  std::size_t hole_epochs = 0;
};

/// One injected slip and what became of it.
struct InjectedSlip {
  orsolva_host::SatelliteId satellite;
  std::int64_t time_ns = 0;
  double elevation_deg = 0;  ///< NaN unknown
  int bands = 0;             ///< with phases at the step
  std::string kind;
  std::vector<orsolva_host::SignalCode> signals;
  std::vector<double> sizes;
  bool whole = true;
  /// An event in exactly that epoch says a slip, half cycle or jump; of a hole without a slip, that it is
  /// none.
  bool found = false;
  bool size_right = false;      ///< with exactly these signals and sizes
  bool sure_and_wrong = false;  ///< not right, but an event of that epoch is sure of something else
  bool left_open = false;       ///< a hole that is reported as unresolved
  bool weakly_tested = false;   ///< its step is counted so
  std::string answer;           ///< what was found there
};

struct InjectionResult {
  std::vector<InjectedSlip> slips;
  std::vector<orsolva_host::analysis::Event> base;   ///< of the unchanged file
  std::vector<orsolva_host::analysis::Event> fresh;  ///< slips and jumps that neither file nor injection has
  std::int64_t tested_steps = 0;                     ///< at or above the least elevation
  std::int64_t weakly_tested_steps = 0;              ///< of those
  std::int64_t base_slips = 0;  ///< slips, half cycles and jumps of the unchanged file there
};

/// Runs the detector on the file as it is and with slips added to it. Slips are put where seven epochs hang
/// together and no event of the file itself is within six steps.
InjectionResult Inject(const InjectionData& data, const InjectionPlan& plan);

struct DetectorRun {
  std::vector<orsolva_host::analysis::Event> events;
  std::vector<orsolva_host::analysis::DecidedStep> steps;
};
DetectorRun RunDetector(const InjectionData& data);

/// "G05 2020-.. slip 1C 2W 1 1"-like text for a look.
std::string Described(const orsolva_host::analysis::Event& event);

}  // namespace orsolva_truth

#endif  // ORSOLVA_TESTS_SLIP_INJECTION_H
