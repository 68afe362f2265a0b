// Compares injected slips and code jumps with the detections in a detail table.
#ifndef ORSOLVA_SIMULATOR_FAULT_DETECTION_H
#define ORSOLVA_SIMULATOR_FAULT_DETECTION_H

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/rinex/line_reader.h"

namespace orsolva_host {

/// A table of `orsolva qc --detail`.
struct DetailTable {
  std::string name;
  LineReader& lines;
};

/// A slip or code jump and the reasons that the rows of its epoch, satellite and signal give, in the
/// alphabet. A slip shows in the pairs on both sides of it; a jump in the multipath of its own signal.
struct DetectedFault {
  std::string time, satellite, signal;  ///< an empty satellite or signal: all
  bool is_slip = true;
  double size = 0;  ///< cycles of a slip, metres of a jump
  std::set<std::string> reasons = {};

  /// Whether a reason is the fault's own: not a gap or a new record that fell into its epoch.
  bool Detected() const;
};

/// Reads a detail table to its end and gives each fault the reasons of its rows.
/// @param faults  with times as the table writes them
/// @throws ComparisonError when the table lacks a column
void ReadReasons(const DetailTable& table, std::vector<DetectedFault>& faults);

/// The faults with their reasons in lines of at most 80 columns, and how many were detected.
std::string DetectedFaultsText(const std::vector<DetectedFault>& faults);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_FAULT_DETECTION_H
