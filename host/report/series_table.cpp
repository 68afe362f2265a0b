#include "host/report/series_table.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

using analysis::SeriesRow;
using analysis::SeriesSubject;

double CountOf(const std::optional<analysis::Count>& count) {
  return count ? static_cast<double>(*count) : kAbsent;
}

bool IsSignal(const SeriesRow& row) {
  return row.subject == SeriesSubject::kSystemSignal || row.subject == SeriesSubject::kSatelliteSignal;
}

double CountOfSignal(const SeriesRow& row, analysis::Count count) {
  return IsSignal(row) ? static_cast<double>(count) : kAbsent;
}

const std::vector<SeriesNumber> kNumbers = {
    {"expected_epochs", 0, [](const SeriesRow& r) { return CountOf(r.expected_epochs); }},
    {"observed_epochs", 0, [](const SeriesRow& r) { return static_cast<double>(r.observed_epochs); }},
    {"satellites", 2, [](const SeriesRow& r) { return r.satellites; }},
    {"elevation_deg", 2, [](const SeriesRow& r) { return r.elevation_deg; }},
    {"snr_dbhz", 2, [](const SeriesRow& r) { return r.snr_dbhz; }},
    {"snr_values", 0, [](const SeriesRow& r) { return CountOfSignal(r, r.snr_values); }},
    {"multipath_m", 4, [](const SeriesRow& r) { return r.multipath_m; }},
    {"multipath_values", 0, [](const SeriesRow& r) { return CountOfSignal(r, r.multipath_values); }},
    {"slips", 0, [](const SeriesRow& r) { return static_cast<double>(r.slips); }},
    {"roti_tecu_per_min", 3, [](const SeriesRow& r) { return r.roti; }},
    {"pdop", 2, [](const SeriesRow& r) { return r.pdop; }},
    {"clock_s", 11, [](const SeriesRow& r) { return r.clock_s; }},
    {"east_m", 3, [](const SeriesRow& r) { return r.enu_m[0]; }},
    {"north_m", 3, [](const SeriesRow& r) { return r.enu_m[1]; }},
    {"up_m", 3, [](const SeriesRow& r) { return r.enu_m[2]; }},
};

std::string CsvLine(const SeriesRow& row) {
  const SeriesNames names = NamesOf(row);
  std::string line = fmt::format("{},{},{},{}", TimeText(TimeOfNanoseconds(row.time_ns)), names.system,
                                 names.satellite, names.signal);
  for (const SeriesNumber& column : kNumbers) {
    const double value = column.get(row);
    line += ',';
    if (std::isfinite(value)) fmt::format_to(std::back_inserter(line), "{:.{}f}", value, column.digits);
  }
  return line + "\n";
}

std::string JsonLine(const SeriesRow& row) {
  const SeriesNames names = NamesOf(row);
  const auto text = [](const std::string& s) { return s.empty() ? std::string("null") : '"' + s + '"'; };
  std::string line = fmt::format(R"({{"time_gpst":"{}","system":{},"satellite":{},"signal":{})",
                                 TimeText(TimeOfNanoseconds(row.time_ns)), text(names.system),
                                 text(names.satellite), text(names.signal));
  for (const SeriesNumber& column : kNumbers) {
    const double value = column.get(row);
    line += fmt::format(",\"{}\":", column.name);
    line += std::isfinite(value) ? fmt::format("{:.{}f}", value, column.digits) : "null";
  }
  return line + "}\n";
}

}  // namespace

SeriesNames NamesOf(const SeriesRow& row) {
  SeriesNames names;
  if (row.subject != SeriesSubject::kStation) names.system = row.satellite.system;
  if (row.satellite.number > 0) names.satellite = NameOf(row.satellite);
  if (IsSignal(row)) names.signal = NameOf(row.code);
  return names;
}

const std::vector<SeriesNumber>& SeriesNumbers() { return kNumbers; }

std::string SeriesCsvHeading() {
  std::string line = "time_gpst,system,satellite,signal";
  for (const SeriesNumber& column : kNumbers) line += std::string(",") + column.name;
  return line + "\n";
}

std::string SeriesLine(const SeriesRow& row, TableForm form) {
  return form == TableForm::kCsv ? CsvLine(row) : JsonLine(row);
}

SeriesTable::SeriesTable(TableForm form, std::function<void(std::string_view)> write)
    : form_(form), write_(std::move(write)) {
  if (form_ == TableForm::kCsv) write_(SeriesCsvHeading());
}

}  // namespace orsolva_host
