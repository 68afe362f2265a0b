// Small files read as a whole: a configuration, a profile, a scenario, a report.
#ifndef ORSOLVA_RINEX_TEXT_FILE_H
#define ORSOLVA_RINEX_TEXT_FILE_H

#include <cstddef>
#include <string>

namespace orsolva_host {

/// Settings files are short; a truth with the maximum number of faults has some megabytes.
constexpr std::size_t kLargestSettings_bytes = 1U << 20;
constexpr std::size_t kLargestReport_bytes = 256U << 20;

/// The bytes of a file. An endless device is not read beyond the limit.
/// @param max_bytes  a larger file is refused
/// @throws FileError when the file cannot be opened or read, or is larger
std::string TextOfFile(const std::string& path, std::size_t max_bytes);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_TEXT_FILE_H
