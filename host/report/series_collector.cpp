#include "host/report/series_collector.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/analysis/figures/system_order.h"

namespace orsolva_host {
namespace {

using analysis::SeriesRow;
using analysis::SeriesSubject;

void Comma(std::string& text) {
  if (text.back() != '[' && text.back() != '{') text += ',';
}

/// ,"name":[...] with the value of each cell times a scale as an integer, null where it is not finite.
template <typename Cells, typename Get>
void AddList(const char* name, const Cells& cells, double scale, Get get, std::string& text) {
  Comma(text);
  fmt::format_to(std::back_inserter(text), "\"{}\":[", name);
  for (const auto& cell : cells) {
    Comma(text);
    const double value = get(cell) * scale;
    if (std::isfinite(value)) {
      fmt::format_to(std::back_inserter(text), "{:.0f}", std::round(value) + 0.0);
    } else {
      text += "null";
    }
  }
  text += ']';
}

double Ratio(double sum, double count) { return count > 0 ? sum / count : kAbsent; }

}  // namespace

void SeriesCollector::Cell::Add(const Cell& more) {
  rows += more.rows;
  observed += more.observed;
  expected += more.expected;
  slips += more.slips;
  snr_values += more.snr_values;
  multipath_values += more.multipath_values;
  satellites += more.satellites;
  snr_dbhz += more.snr_dbhz;
  squares_m2 += more.squares_m2;
  roti = std::max(roti, more.roti);
  has_expected = has_expected || more.has_expected;
}

void SeriesCollector::StationCell::Add(const StationCell& more) {
  if (std::isnan(clock_s)) clock_s = more.clock_s;
  rows += more.rows;
  slips += more.slips;
  solutions += more.solutions;
  satellites += more.satellites;
  pdop += more.pdop;
  for (std::size_t k = 0; k < enu_m.size(); ++k) enu_m[k] += more.enu_m[k];
}

/// The bin of a time, made longer until it fits.
std::size_t SeriesCollector::PlaceOf(std::int64_t time_ns) {
  if (!first_ns_) first_ns_ = time_ns;
  while ((time_ns - *first_ns_) / bin_ns_ >= static_cast<std::int64_t>(kMaxBins)) Merge();
  return static_cast<std::size_t>((time_ns - *first_ns_) / bin_ns_);
}

/// Two bins become one.
void SeriesCollector::Merge() {
  bin_ns_ *= 2;
  bins_ = (bins_ + 1) / 2;
  std::vector<StationCell> halves(bins_);
  for (std::size_t k = 0; k < station_.size(); ++k) halves[k / 2].Add(station_[k]);
  station_ = std::move(halves);
  for (auto& [key, series] : series_) {
    Series merged;
    merged.first = series.first / 2;
    for (std::size_t k = 0; k < series.cells.size(); ++k) {
      const std::size_t place = (series.first + k) / 2 - merged.first;
      if (place >= merged.cells.size()) merged.cells.resize(place + 1);
      merged.cells[place].Add(series.cells[k]);
    }
    series = std::move(merged);
  }
}

SeriesCollector::Cell& SeriesCollector::CellOf(const SeriesRow& row, std::size_t place) {
  const std::size_t system = analysis::SystemPlace(row.satellite.system);
  letters_[system] = row.satellite.system;
  const bool has_signal = row.subject != SeriesSubject::kSatellite;
  const auto [found, is_new] =
      series_.try_emplace({system, row.satellite.number, has_signal ? NameOf(row.code) : std::string()});
  Series& series = found->second;
  if (is_new) series.first = place;
  if (place >= series.first + series.cells.size()) series.cells.resize(place - series.first + 1);
  return series.cells[place - series.first];
}

void SeriesCollector::AddStation(const SeriesRow& row, std::size_t place) {
  StationCell cell;
  cell.rows = 1;
  cell.slips = static_cast<std::uint32_t>(row.slips);
  cell.satellites = std::isnan(row.satellites) ? 0 : row.satellites;
  if (!std::isnan(row.pdop)) {
    cell.solutions = 1;
    cell.pdop = row.pdop;
    cell.enu_m = row.enu_m;
    cell.clock_s = row.clock_s;
  }
  station_[place].Add(cell);
}

void SeriesCollector::Add(const SeriesRow& row) {
  const std::size_t place = PlaceOf(row.time_ns);
  bins_ = std::max(bins_, place + 1);
  station_.resize(bins_);
  if (row.subject == SeriesSubject::kStation) return AddStation(row, place);
  Cell cell;
  cell.rows = 1;
  cell.observed = static_cast<std::uint32_t>(row.observed_epochs);
  cell.has_expected = row.expected_epochs.has_value();
  cell.expected = static_cast<std::uint32_t>(row.expected_epochs.value_or(0));
  cell.slips = static_cast<std::uint32_t>(row.slips);
  cell.satellites = static_cast<float>(std::isnan(row.satellites) ? 0 : row.satellites);
  cell.snr_values = static_cast<std::uint32_t>(row.snr_values);
  if (row.snr_values > 0)
    cell.snr_dbhz = static_cast<float>(row.snr_dbhz * static_cast<double>(row.snr_values));
  cell.multipath_values = static_cast<std::uint32_t>(row.multipath_values);
  if (row.multipath_values > 0) {
    cell.squares_m2 =
        static_cast<float>(row.multipath_m * row.multipath_m * static_cast<double>(row.multipath_values));
  }
  if (!std::isnan(row.roti)) cell.roti = static_cast<float>(row.roti);
  CellOf(row, place).Add(cell);
}

std::string SeriesCollector::Json() const {
  std::string text =
      fmt::format("{{\"first_s\":{},\"bin_s\":{},\"bins\":{},\"station\":{{",
                  first_ns_.value_or(0) / kNanosecondsPerSecond, bin_ns_ / kNanosecondsPerSecond, bins_);
  AddList(
      "satellites", station_, 10, [](const StationCell& c) { return Ratio(c.satellites, c.rows); }, text);
  AddList(
      "slips", station_, 1, [](const StationCell& c) { return c.rows > 0 ? c.slips : kAbsent; }, text);
  AddList(
      "pdop", station_, 100, [](const StationCell& c) { return Ratio(c.pdop, c.solutions); }, text);
  AddList(
      "clock_ps", station_, 1e12, [](const StationCell& c) { return c.clock_s; }, text);
  constexpr const char* kAxes[] = {"east_mm", "north_mm", "up_mm"};
  for (std::size_t k = 0; k < 3; ++k) {
    AddList(
        kAxes[k], station_, 1000, [k](const StationCell& c) { return Ratio(c.enu_m[k], c.solutions); }, text);
  }
  text += "},\"series\":[";
  for (const auto& [key, series] : series_) {
    const auto& [system, number, signal] = key;
    Comma(text);
    const SatelliteId id = {letters_.at(system), number};
    text += fmt::format("{{\"of\":\"{}\",\"signal\":{},\"first\":{}",
                        number > 0 ? NameOf(id) : std::string(1, id.system),
                        signal.empty() ? "null" : '"' + signal + '"', series.first);
    const auto available = [](const Cell& c) {
      return c.has_expected ? Ratio(c.observed, c.expected) : kAbsent;
    };
    AddList("available", series.cells, 1000, available, text);
    AddList(
        "slips", series.cells, 1, [](const Cell& c) { return c.rows > 0 ? c.slips : kAbsent; }, text);
    if (number == 0)
      AddList(
          "satellites", series.cells, 10, [](const Cell& c) { return Ratio(c.satellites, c.rows); }, text);
    if (signal.empty()) {
      AddList(
          "observed", series.cells, 1, [](const Cell& c) { return c.rows > 0 ? c.observed : kAbsent; }, text);
      AddList(
          "roti", series.cells, 1000, [](const Cell& c) { return c.roti > 0 ? c.roti : kAbsent; }, text);
    } else {
      AddList(
          "snr", series.cells, 10, [](const Cell& c) { return Ratio(c.snr_dbhz, c.snr_values); }, text);
      AddList(
          "multipath", series.cells, 1000,
          [](const Cell& c) { return std::sqrt(Ratio(c.squares_m2, c.multipath_values)); }, text);
    }
    text += '}';
  }
  return text + "]}\n";
}

}  // namespace orsolva_host
