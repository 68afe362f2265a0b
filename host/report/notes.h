// What a reader must know to read some figures right: behaviours of the library that would mislead.
#ifndef ORSOLVA_REPORT_NOTES_H
#define ORSOLVA_REPORT_NOTES_H

#include <string>
#include <string_view>
#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

/// Whether a system's combination holds a code that the library keeps no completeness and SNR channel for
/// (Galileo bands 7 and 8).
bool HasUncountedCode(const SystemReport& system);

/// The notes that the figures of a report call for, in a fixed order.
std::vector<ReportNote> NotesOf(const Report& report);

/// Marks such as "[1][3]" of the notes about a figure of all systems; empty without one.
std::string HeadingMarks(const std::vector<ReportNote>& notes, std::string_view figure);

/// The mark of the note that says what a figure of the headline leaves out; empty without one.
std::string LibraryHeadlineMarks(const Report& report, std::string_view figure);

/// Marks of the notes about one row.
/// @param system  letter, or "all" for the library total
/// @param band    its name, or empty for a row of all bands
std::string RowMarks(const std::vector<ReportNote>& notes, std::string_view system, std::string_view band);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_NOTES_H
