// Labels of observation headers: RINEX 2.11 table A1, RINEX 3.05 table A2 and RINEX 4.00 table A2.
#include "host/rinex/header_labels.h"

#include <algorithm>
#include <iterator>

#include "host/rinex/decimal.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kLabelColumn = 60;

constexpr std::string_view kLabels[] = {
    "COMMENT",
    "RINEX VERSION / TYPE",
    "CRINEX VERS   / TYPE",
    "CRINEX PROG / DATE",
    "PGM / RUN BY / DATE",
    "MARKER NAME",
    "MARKER NUMBER",
    "MARKER TYPE",
    "OBSERVER / AGENCY",
    "REC # / TYPE / VERS",
    "ANT # / TYPE",
    "APPROX POSITION XYZ",
    "ANTENNA: DELTA H/E/N",
    "ANTENNA: DELTA X/Y/Z",
    "ANTENNA: PHASECENTER",
    "ANTENNA: B.SIGHT XYZ",
    "ANTENNA: ZERODIR AZI",
    "ANTENNA: ZERODIR XYZ",
    "CENTER OF MASS: XYZ",
    "DOI",
    "LICENSE OF USE",
    "STATION INFORMATION",
    "WAVELENGTH FACT L1/2",
    "# / TYPES OF OBSERV",
    "SYS / # / OBS TYPES",
    "SIGNAL STRENGTH UNIT",
    "INTERVAL",
    "TIME OF FIRST OBS",
    "TIME OF LAST OBS",
    "RCV CLOCK OFFS APPL",
    "SYS / DCBS APPLIED",
    "SYS / PCVS APPLIED",
    "OBS SCALE FACTOR",
    "SYS / SCALE FACTOR",
    "SYS / PHASE SHIFT",
    "SYS / PHASE SHIFTS",
    "GLONASS SLOT / FRQ #",
    "GLONASS COD/PHS/BIS",
    "LEAP SECONDS",
    "# OF SATELLITES",
    "PRN / # OF OBS",
    "END OF HEADER",
};

}  // namespace

std::string_view HeaderLabel(std::string_view line) { return Trimmed(Field(line, kLabelColumn, 20)); }

bool IsHeaderLine(std::string_view line) {
  if (line.size() <= kLabelColumn) return false;
  const char first = line[kLabelColumn];
  if (first != '#' && (first < 'A' || first > 'Z')) return false;
  return std::find(std::begin(kLabels), std::end(kLabels), HeaderLabel(line)) != std::end(kLabels);
}

}  // namespace orsolva_host
