// A small file as a whole: a configuration, a profile, a scenario, a report.
#ifndef ORSOLVA_RINEX_TEXT_FILE_H
#define ORSOLVA_RINEX_TEXT_FILE_H

#include <cstddef>
#include <string>

namespace orsolva_host {

/// Files of settings are pages; a truth with every fault there can be has some megabytes.
constexpr std::size_t kLargestSettings_bytes = 1U << 20;
constexpr std::size_t kLargestReport_bytes = 256U << 20;

/// The bytes of a file. A device without end is not read beyond the limit.
/// @param most_bytes  a file with more is refused
/// @throws FileError when the file cannot be opened or read, or is larger
std::string TextOfFile(const std::string& path, std::size_t most_bytes);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_TEXT_FILE_H
