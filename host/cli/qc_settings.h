// What a quality check is asked to do, and how the arguments say it.
#ifndef ORSOLVA_CLI_QC_SETTINGS_H
#define ORSOLVA_CLI_QC_SETTINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/judging/settings.h"

namespace orsolva_host {

/// What is asked for beyond the judging of one file.
struct QcRequest {
  QcSettings settings;             ///< of every file, without its names
  std::vector<std::string> paths;  ///< observations, navigation, folders, patterns
  std::vector<std::string> navigation;
  std::string profile;
  std::string text, json, csv, sum;       ///< a file, "-" or empty
  std::string detail;                     ///< file of the detail table; empty for none
  std::string html;                       ///< file of the page, of many files their index; empty for none
  std::string network;                    ///< file of the table over all files
  std::string output;                     ///< folder
  std::string formats = "text,json,sum";  ///< of the files in that folder
  std::string color = "auto";
  std::size_t width = 0;  ///< 0: the terminal's, at most 80
  unsigned jobs = 0;      ///< 0: one a core
  bool quiet = false;
  bool verbose = false;
};

// Each of these returns an empty text, or what is wrong with the argument.

/// A number in [low, high].
std::string ParseNumber(const std::string& text, double low, double high, double& number);
/// "auto", or seconds from 0.001 to 86,400.
std::string ParseInterval(const std::string& text, std::optional<double>& interval_s);
/// Names out of text, json, csv, sum, html and detail, between commas.
std::string ParseFormats(const std::string& text, std::string& formats);
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
