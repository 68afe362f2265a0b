// Lines of RINEX headers.
#ifndef ORSOLVA_SIMULATOR_HEADER_LINES_H
#define ORSOLVA_SIMULATOR_HEADER_LINES_H

#include <string>

namespace orsolva_host {

inline constexpr const char* kSimulatedReceiver = "ORSOLVA SIMULATED";
inline constexpr const char* kSimulatedAntenna = "NONE";

/// The text truncated or padded to 60 columns, then the label, then the line end.
std::string HeaderLine(std::string text, const std::string& label);

/// The first lines of every file. @param type  "OBSERVATION DATA" or "NAVIGATION DATA"
std::string HeaderBegin(const std::string& type);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_HEADER_LINES_H
