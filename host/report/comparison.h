// What is different from an earlier report of the same station.
//
// Compared are the figures of watched_figures.h that both reports have a value of, or that one has of a
// system or signal that both hold; a difference beyond the limit there is a change. Changes come first that
// exceed their limit the most. Signals that only one report holds are listed apart, and so are marker,
// receiver (with its firmware) and antenna where their texts differ.
#ifndef ORSOLVA_REPORT_COMPARISON_H
#define ORSOLVA_REPORT_COMPARISON_H

#include <string>
#include <vector>

#include "host/report/earlier_report.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// The report to compare with: the only one, or of several the one of the same station.
/// @throws EarlierReportError when none of several is of the station
const EarlierReport& ReportToCompare(const std::vector<EarlierReport>& earlier, const EarlierReport& now);

Comparison Compare(const EarlierReport& before, const EarlierReport& now);

/// The run, a system or a signal: "run", "G", "G 1C".
std::string WhereOf(const FigureChange& change);
/// "44.5 dB-Hz -> 38.1 dB-Hz", with the digits that show the change.
std::string ValuesOf(const FigureChange& change);

/// Lines of the text report.
std::string ComparisonText(const Comparison& comparison, const TextStyle& style);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_COMPARISON_H
