#include "host/report/html_writer.h"

#include <utility>

#include "host/report/detail_data.h"
#include "host/report/event_table.h"
#include "host/report/json_writer.h"
#include "host/report/page_data.h"

namespace orsolva_host {
namespace {

constexpr EpochIndex kLongestStride = 1U << 20U;

}  // namespace

std::string WriteHtml(const Report& report, DetailCollector& detail, const SeriesCollector& series,
                      std::size_t most_bytes) {
  Report whole = report;
  whole.show_satellites = true;
  whole.show_satellite_signals = false;
  const std::string events = Base64(Gzip(EventsJson(report.analysis)));
  const std::string over_time = Base64(Gzip(series.Json()));
  const std::string json = InsideScript(WriteJson(whole));
  const auto compressed = [&] { return Base64(Gzip(EncodeDetail(detail, report.run.elevation_cutoff_deg))); };
  const std::string_view page = ReportPage();
  std::string points = compressed();
  while (page.size() + json.size() + events.size() + over_time.size() + points.size() > most_bytes &&
         detail.Stride() < kLongestStride) {
    detail.Thin();
    points = compressed();
  }
  return FilledPage(page, DataElement("report-data", "application/json", json) +
                              DataElement("event-data", "text/plain", events) +
                              DataElement("series-data", "text/plain", over_time) +
                              DataElement("detail-data", "text/plain", points));
}

}  // namespace orsolva_host
