// Figures over time as plain data: a row per bin of five minutes and per subject. time_series.h has the
// rules.
#ifndef ORSOLVA_ANALYSIS_SERIES_ROW_H
#define ORSOLVA_ANALYSIS_SERIES_ROW_H

#include <array>
#include <cstdint>
#include <optional>

#include "host/analysis/analysis_result.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

enum class SeriesSubject : std::uint8_t { kStation, kSystemSignal, kSatellite, kSatelliteSignal };

/// What does not apply to the subject, and what is not known, is absent or NaN.
struct SeriesRow {
  std::int64_t time_ns = 0;  ///< at which the bin begins
  SeriesSubject subject = SeriesSubject::kStation;
  SatelliteId satellite = {' ', 0};  ///< of a system's signal: its letter, without a number
  SignalCode code;
  std::optional<Count> expected_epochs;
  Count observed_epochs = 0;
  double satellites = kAbsent;
  double elevation_deg = kAbsent;
  double snr_dbhz = kAbsent;
  Count snr_values = 0;  ///< that the mean is of
  double multipath_m = kAbsent;
  Count multipath_values = 0;  ///< that the RMS is of
  Count slips = 0;
  double roti = kAbsent;
  double pdop = kAbsent;
  double clock_s = kAbsent;
  std::array<double, 3> enu_m = {kAbsent, kAbsent, kAbsent};
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SERIES_ROW_H
