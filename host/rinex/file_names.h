// RINEX file names.
#ifndef ORSOLVA_RINEX_FILE_NAMES_H
#define ORSOLVA_RINEX_FILE_NAMES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orsolva_host {

enum class FileKind { kObservation, kNavigation, kOther };

struct RinexName {
  std::string station;   ///< four characters, or nine of a long name; upper case
  std::int64_t day = 0;  ///< first day of the data, days since 1970-01-01
  FileKind kind = FileKind::kOther;
  std::string
      whole;  ///< upper case, without the suffix of its compression: equal for two compressions of one file
};

/// Reads names of both forms, in any case and with or without the suffix of a compression:
/// "ssssdddf.yyt" (RINEX 2.11, section 4) and "XXXXMRCCC_S_YYYYDDDHHMM_..._MO.rnx" (RINEX 3.05, table A1).
/// Navigation data of geostationary satellites alone and of IRNSS count as other.
/// @return absent for any other name
std::optional<RinexName> ParseRinexName(std::string_view name);

/// A name without the suffix of a compression (.gz, .Z, .bz2, .xz, .zip, .zst in any case), if it has one.
std::string_view WithoutCompressionSuffix(std::string_view name);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_FILE_NAMES_H
