// Numbers in fixed-width fields, read without copies and rounded correctly.
#ifndef ORSOLVA_RINEX_DECIMAL_H
#define ORSOLVA_RINEX_DECIMAL_H

#include <cstdint>
#include <string_view>

namespace orsolva_host {

enum class FieldState { kBlank, kNumber, kBad };

/// Reads a decimal with an optional exponent (e, E, d or D); blanks around it are allowed.
/// @param value  the nearest double; 0 when blank or bad, or too small for a double
FieldState ParseDecimal(std::string_view field, double& value);

/// Reads an integer of at most 18 digits; blanks around it are allowed.
/// @param value  0 when blank or bad
FieldState ParseInteger(std::string_view field, std::int64_t& value);

/// Part of a line by column (0-based) and width; shorter or empty where the line ends.
inline std::string_view Field(std::string_view line, std::size_t column, std::size_t width) {
  return column < line.size() ? line.substr(column, width) : std::string_view();
}

/// The text without leading and trailing blanks.
std::string_view Trimmed(std::string_view text);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_DECIMAL_H
