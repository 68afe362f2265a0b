// Writes a simulated span as files: observations, navigation and truth.
#ifndef ORSOLVA_SIMULATOR_FILE_SET_H
#define ORSOLVA_SIMULATOR_FILE_SET_H

#include <cstdint>
#include <functional>
#include <string>

#include "host/simulator/scenario.h"
#include "host/simulator/truth.h"

namespace orsolva_host {

struct FileSetOptions {
  std::string folder;  ///< created if missing
  bool gzip = false;
  bool crinex = false;  ///< CRINEX 3
  /// 4 or 7: also writes an RTCM 3 stream of MSM4 or MSM7 (stream_writer.h), and the observations are its
  /// twin: what a reader of the stream gets.
  int rtcm = 0;
  /// Also writes a recording of a u-blox receiver (ubx_recording.h), of which the observations are the twin;
  /// not together with `rtcm`.
  bool ubx = false;
  /// Also writes a recording of a Septentrio receiver (sbf_recording.h), as above; not together with `rtcm`
  /// or `ubx`.
  bool sbf = false;
};

struct FileSet {
  std::string observations;
  std::string navigation;
  std::string truth;
  std::string stream;  ///< empty without one
};

/// Names after RINEX 3.05, section 4, such as SIMU00ORS_R_20201770000_01D_30S_MO.rnx, and truth.json.
FileSet FileNames(const Scenario& scenario, const FileSetOptions& options);

/// Called after each epoch with the number of nominal epochs done, and of all.
using SimulationProgress = std::function<void(std::uint64_t done, std::uint64_t of)>;

/// Writes the three files and the stream, or none of them.
/// @return the truth that was written
/// @throws ScenarioError, WriteError
Truth WriteFileSet(const Scenario& scenario, const FileSetOptions& options,
                   const SimulationProgress& progress);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_FILE_SET_H
