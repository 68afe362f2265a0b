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

/// A slip or code jump and the reasons in the rows of its epoch, satellite and signal, in alphabetical order.
/// A slip shows in every pair that contains the signal; a jump in the multipath of its own signal only.
struct DetectedFault {
  std::string time, satellite, signal;  ///< an empty satellite or signal: all
  bool is_slip = true;
  double size = 0;  ///< cycles of a slip, metres of a jump
  std::set<std::string> reasons = {};

  /// Whether one of the reasons is due to the fault, not to a gap or a new record in the same epoch.
  bool Detected() const;
};

/// Reads a detail table to its end and adds the reasons of its rows to each fault.
/// @param faults  with times as the table writes them
/// @throws ComparisonError when the table lacks a column
void ReadReasons(const DetailTable& table, std::vector<DetectedFault>& faults);

/// The faults with their reasons in lines of at most 80 columns, and how many were detected.
std::string DetectedFaultsText(const std::vector<DetectedFault>& faults);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_FAULT_DETECTION_H
