// First lines of navigation records: satellite, reference time and the columns of the values.
#ifndef ORSOLVA_RINEX_NAVIGATION_LINES_H
#define ORSOLVA_RINEX_NAVIGATION_LINES_H

#include <cstddef>
#include <string_view>

#include "host/rinex/navigation_records.h"

namespace orsolva_host {

constexpr std::size_t kNavigationValueWidth = 19;

/// Columns of the first value of a record's lines.
struct NavigationColumns {
  std::size_t first_line = 23;
  std::size_t further_lines = 4;
};

/// Whether the line begins a record: the satellite is in the first two columns.
bool BeginsRecord(std::string_view line);

/// Whether the line carries a header label, as no line of a record does.
bool HasHeaderLabel(std::string_view line);

/// "G05 2020 06 25 02 00 00" of RINEX 3 and 4. @return false when it cannot be read
bool ParseRecordLine(std::string_view line, NavigationRecord& record, NavigationColumns& columns);

/// " 5 20  6 25  2  0  0.0" of RINEX 2. Files of several systems, which RINEX 2 does not define but some
/// programs write, have a letter before the number; their columns are one further right, and some have the
/// whole line in the format of RINEX 3.
/// @param letter  system of records without a letter
bool ParseRecordLine2(std::string_view line, char letter, NavigationRecord& record,
                      NavigationColumns& columns);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_NAVIGATION_LINES_H
