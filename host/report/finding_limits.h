// The thresholds of the findings, each written once.
#ifndef ORSOLVA_REPORT_FINDING_LIMITS_H
#define ORSOLVA_REPORT_FINDING_LIMITS_H

#include <cstddef>

namespace orsolva_host {

/// The thresholds of the findings.
struct FindingLimits {
  std::size_t most_names = 10;  ///< listed in one text
  double longest_gap_s = 7200;  ///< a satellite that sets and rises again is away for longer

  // Events of the receiver: what strikes many satellites at once.
  double common_share = 0.3;     ///< of the satellites tracked at the epoch
  std::size_t least_common = 4;  ///< satellites

  // Shares of the satellites observed. A single satellite of SBAS without a record is no flaw of a
  // station-day; a system without records is.
  double not_judged_share = 0.1;
  double hardly_judged_share = 0.5;

  double far_from_header_m =
      50;  ///< as in the analysis' check of the header's position (description_check.h)
  double unusable_residual_m = 20;  ///< codes of a receiver at work leave 1 to 3 m, with one band up to 10 m
  double off_header_m = 10;         ///< worth a look: codes of an hour on two bands are good to some metres
  double missing_share = 0.001;     ///< of the nominal epochs: three of a day at 30 s
  double mostly_missing_share = 0.5;
  double unusable_share = 0.01;  ///< of the epochs present
  // Of the steps between epochs.
  double some_restarts_share = 0.01;
  double mostly_restarts_share = 0.5;
  double least_steps_per_slip = 2000;  ///< the best of stations at 30 s have 10,000 and more
  double least_observations_per_interruption = 1000;
  // Of the observations expected, less those of missing epochs.
  double some_missing_share = 0.001;
  double many_missing_share = 0.05;
  double least_completeness = 0.9;  ///< over 90 % is good across permanent networks
  double most_mp1_m = 0.5;          ///< long-published limits of GPS stations
  double most_mp2_m = 0.75;

  // Signals received without a semi-codeless technique lie above this in the open sky from weak_from_deg up.
  double weak_dbhz = 38;
  int weak_from_deg = 45;

  double disturbed_roti = 1;  ///< TECU/min; the level above which the ionosphere counts as disturbed
};
constexpr FindingLimits kFindingLimits = {};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FINDING_LIMITS_H
