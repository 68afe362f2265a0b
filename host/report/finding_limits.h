// The thresholds of the findings, each written once.
#ifndef ORSOLVA_REPORT_FINDING_LIMITS_H
#define ORSOLVA_REPORT_FINDING_LIMITS_H

#include <cstddef>

namespace orsolva_host {

/// The thresholds of the findings.
struct FindingLimits {
  double longest_gap_s = 7200;     ///< a satellite that sets and rises again is away for longer
  double common_share = 0.3;       ///< of the satellites tracked at the epoch
  std::size_t least_common = 4;    ///< satellites
  double far_from_header_m = 100;  ///< headers hold approximate positions; a wrong one is farther off
  std::size_t most_names = 10;     ///< listed in one text
};
constexpr FindingLimits kFindingLimits = {};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FINDING_LIMITS_H
