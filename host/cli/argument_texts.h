// What the texts of arguments mean.
#ifndef ORSOLVA_CLI_ARGUMENT_TEXTS_H
#define ORSOLVA_CLI_ARGUMENT_TEXTS_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "host/judging/output_formats.h"
#include "host/judging/settings.h"

namespace orsolva_host {

// Each of these returns an empty text, or what is wrong with the argument.

/// "true", "on", "yes", "enable" or "1"; "false", "off", "no", "disable" or "0".
std::string ParseSwitch(const std::string& text, bool& on);
/// A finite number; with limits one in [low, high].
std::string ParseNumber(const std::string& text, double& number);
std::string ParseNumber(const std::string& text, double low, double high, double& number);
/// A whole number in [0, high].
std::string ParseWholeNumber(const std::string& text, unsigned high, unsigned& number);
/// "auto", or seconds from 0.001 to 86,400.
std::string ParseInterval(const std::string& text, std::optional<double>& interval_s);
/// Names of formats between commas.
std::string ParseFormats(const std::string& text, std::vector<Format>& formats);
/// "analysis", "library" or "both".
std::string ParseFigureChoice(const std::string& text, FigureChoice& choice);
/// Whether a position can be that of an antenna on the ground, at sea or in the air.
bool IsNearSurface(const std::array<double, 3>& xyz_m);
/// "X,Y,Z" in metres, "header" or "spp".
std::string ParsePosition(const std::string& text, PositionChoice& position);
/// Letters out of kAllSystems, each at most once.
std::string ParseSystems(const std::string& text, std::string& systems);
/// A number of bytes, such as "500M" or "20G" (powers of 1,024).
std::string ParseSize(const std::string& text, InputLimits& limits);
/// "G04,R12"
std::string ParseExcluded(const std::string& text, std::vector<ExcludedSatellite>& excluded);
/// Names between commas, added to those there.
std::string ParseNames(const std::string& text, std::vector<std::string>& names);

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_ARGUMENT_TEXTS_H
