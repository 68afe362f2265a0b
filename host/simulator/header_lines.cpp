#include "host/simulator/header_lines.h"

#include <fmt/format.h>

namespace orsolva_host {

std::string HeaderLine(std::string text, const std::string& label) {
  text.resize(60, ' ');
  return text + label + "\n";
}

std::string HeaderBegin(const std::string& type) {
  // No creation date: the same scenario gives the same bytes.
  return HeaderLine(fmt::format("{:9.2f}{:11}{:<20}{:<20}", 3.05, "", type, "M: MIXED"),
                    "RINEX VERSION / TYPE") +
         HeaderLine(fmt::format("{:<20}{:<20}{:<20}", "ORSOLVA SIMULATE", "SIMULATED", ""),
                    "PGM / RUN BY / DATE");
}

}  // namespace orsolva_host
