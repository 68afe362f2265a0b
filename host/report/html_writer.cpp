#include "host/report/html_writer.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/report/detail_data.h"
#include "host/report/event_table.h"
#include "host/report/json_writer.h"
#include "host/report/page_data.h"

namespace orsolva_host {
namespace {

constexpr EpochIndex kLongestStride = 1U << 20U;

/// Multipath of every signal of every satellite: [satellite, signal, RMS in metres, values] of each.
std::string SatelliteMultipath(const Report& report) {
  nlohmann::json rows = nlohmann::json::array();
  for (const analysis::SignalFigures& signal : report.analysis.figures.satellite_signals) {
    const analysis::MultipathFigures& multipath = signal.multipath;
    if (!multipath.moving_m) continue;
    rows.push_back(
        {NameOf(signal.satellite), NameOf(signal.code), *multipath.moving_m, multipath.values.value_or(0)});
  }
  return rows.dump();
}

}  // namespace

std::string WriteHtml(const Report& report, DetailCollector& detail, const SeriesCollector& series,
                      const std::string& index, std::size_t most_bytes) {
  Report whole = report;
  whole.show_satellites = true;
  whole.show_satellite_signals = false;
  const std::string events = Base64(Gzip(EventsJson(report.analysis)));
  const std::string over_time = Base64(Gzip(series.Json()));
  const std::string json = InsideScript(WriteJson(whole));
  const std::string multipath = Base64(Gzip(SatelliteMultipath(report)));
  const auto compressed = [&] { return Base64(Gzip(EncodeDetail(detail, report.run.elevation_cutoff_deg))); };
  const std::string_view page = ReportPage();
  std::string points = compressed();
  const std::size_t others = page.size() + json.size() + events.size() + over_time.size() + multipath.size();
  while (others + points.size() > most_bytes && detail.Stride() < kLongestStride) {
    detail.Thin();
    points = compressed();
  }
  std::string elements = DataElement("report-data", "application/json", json) +
                         DataElement("event-data", "text/plain", events) +
                         DataElement("series-data", "text/plain", over_time) +
                         DataElement("multipath-data", "text/plain", multipath) +
                         DataElement("detail-data", "text/plain", points);
  if (!index.empty()) elements += DataElement("index-link", "text/plain", index);
  const std::string name = report.run.marker.empty() ? report.run.observation_file : report.run.marker;
  return Described(FilledPage(page, elements),
                   fmt::format("{}: {} - {}", name, report.verdict.grade, report.verdict.text));
}

}  // namespace orsolva_host
