// What a quality check of one file is asked to do.
#ifndef ORSOLVA_JUDGING_SETTINGS_H
#define ORSOLVA_JUDGING_SETTINGS_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/rinex/byte_source.h"

namespace orsolva_host {

enum class PositionSource { kComputed, kHeader, kOption };

struct PositionChoice {
  PositionSource source = PositionSource::kComputed;
  std::array<double, 3> xyz_m = {};  ///< with kOption
};

struct ExcludedSatellite {
  int system_slot = 0;  ///< place in kSystemTable
  int number = 0;
};

struct QcSettings {
  std::string observation_file;
  double elevation_deg = 10;
  std::optional<double> interval_s;
  PositionChoice position;
  std::string systems = "GREJC";
  std::vector<ExcludedSatellite> excluded;
  bool snr_from_strength = false;
  InputLimits limits;
  bool satellites = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_SETTINGS_H
