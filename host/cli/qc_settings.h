// What a quality check is asked to do, and how the arguments say it.
#ifndef ORSOLVA_CLI_QC_SETTINGS_H
#define ORSOLVA_CLI_QC_SETTINGS_H

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
  std::vector<std::string> navigation_files;
  double elevation_deg = 10;
  std::optional<double> interval_s;
  PositionChoice position;
  std::string systems = "GREJC";
  std::vector<ExcludedSatellite> excluded;
  bool snr_from_strength = false;
  InputLimits limits;
  bool json = false;
  bool satellites = false;
  std::string detail_file;  ///< empty for none
  std::string html_file;    ///< empty for none
};

// Each of these returns an empty text, or what is wrong with the argument.

/// A number in [low, high].
std::string ParseNumber(const std::string& text, double low, double high, double& number);
/// "X,Y,Z" in metres, "header" or "spp".
std::string ParsePosition(const std::string& text, PositionChoice& position);
/// Letters out of GREJC, each at most once.
std::string ParseSystems(const std::string& text, std::string& systems);
/// A number of bytes, such as "500M" or "20G" (powers of 1,024).
std::string ParseSize(const std::string& text, InputLimits& limits);
/// "G04,R12"
std::string ParseExcluded(const std::string& text, std::vector<ExcludedSatellite>& excluded);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_QC_SETTINGS_H
