// Writes a report as one HTML file that holds everything it shows: plots, tables, script and data.
#ifndef ORSOLVA_REPORT_HTML_WRITER_H
#define ORSOLVA_REPORT_HTML_WRITER_H

#include <cstddef>
#include <string>

#include "host/report/detail_collector.h"
#include "host/report/report.h"
#include "host/report/series_collector.h"

namespace orsolva_host {

constexpr std::size_t kMaxPageBytes = 5'800'000;

/// The report's page. The data are the JSON report with its satellites (without the analysis of their single
/// signals, of which it has the multipath), the events of the analysis, its figures over time and the
/// collected detail, compressed. The detail is thinned until the page has no more than `most_bytes`, or few
/// points are left.
/// @param index  a link to the index of the pages of a run; empty: none
std::string WriteHtml(const Report& report, DetailCollector& detail, const SeriesCollector& series,
                      const std::string& index = {}, std::size_t most_bytes = kMaxPageBytes);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_HTML_WRITER_H
