#include "host/simulator/fault_detection.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "host/simulator/comparison.h"

namespace orsolva_host {
namespace {

enum Column : std::size_t { kTime, kSatellite, kSignal, kPartner, kRestart, kGeometryFree, kPhase, kColumns };
constexpr std::array<std::string_view, kColumns> kColumnNames = {
    "time_gpst", "satellite", "signal", "partner", "restart", "geometry_free_slip", "phase_slip"};
constexpr std::size_t kMaxRows = 40;

std::vector<std::string_view> FieldsOf(std::string_view line) {
  std::vector<std::string_view> fields;
  for (std::size_t begin = 0; begin <= line.size();) {
    const std::size_t end = std::min(line.find(',', begin), line.size());
    fields.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  return fields;
}

/// Positions of the columns, from the first line of the table.
std::array<std::size_t, kColumns> ColumnsOf(const DetailTable& table) {
  std::string_view head;
  if (!table.lines.Next(head)) head = {};
  const std::vector<std::string_view> names = FieldsOf(head);
  std::array<std::size_t, kColumns> columns{};
  for (std::size_t c = 0; c < kColumns; ++c) {
    const auto found = std::find(names.begin(), names.end(), kColumnNames[c]);
    if (found == names.end()) {
      throw ComparisonError(fmt::format("{}: found no column {}, expected a table of orsolva qc --detail",
                                        table.name, kColumnNames[c]));
    }
    columns[c] = static_cast<std::size_t>(found - names.begin());
  }
  return columns;
}

using Row = std::array<std::string_view, kColumns>;

void AddReasons(const Row& row, DetectedFault& fault) {
  const bool own = fault.signal.empty() || row[kSignal] == fault.signal;
  const auto add = [&fault](std::string_view reason) {
    if (!reason.empty()) fault.reasons.emplace(reason);
  };
  if (fault.is_slip) {
    if (own || row[kPartner] == fault.signal) add(row[kGeometryFree]);
    if (own) add(row[kPhase]);
  } else if (own && row[kRestart] == "jump") {
    add(row[kRestart]);
  }
}

std::string Joined(const std::set<std::string>& reasons) {
  std::string text;
  for (const std::string& reason : reasons) text += (text.empty() ? "" : ", ") + reason;
  return text.empty() ? "not detected" : text;
}

std::string SignalText(const DetectedFault& fault) {
  const std::string satellite = fault.satellite.empty() ? "all" : fault.satellite;
  return satellite + (fault.signal.empty() ? "" : " " + fault.signal);
}

}  // namespace

bool DetectedFault::Detected() const {
  return reasons.count("jump") + reasons.count("ionospheric_rate") + reasons.count("geometry") > 0;
}

void ReadReasons(const DetailTable& table, std::vector<DetectedFault>& faults) {
  std::multimap<std::string, DetectedFault*, std::less<>> by_time;
  for (DetectedFault& fault : faults) by_time.emplace(fault.time, &fault);
  const auto columns = ColumnsOf(table);
  const std::size_t needed = *std::max_element(columns.begin(), columns.end());
  std::string_view line;
  while (table.lines.Next(line)) {
    // Every row begins with the time; few rows belong to the epoch of a fault.
    const auto [begin, end] = by_time.equal_range(line.substr(0, line.find(',')));
    if (begin == end) continue;
    const std::vector<std::string_view> fields = FieldsOf(line);
    if (fields.size() <= needed) continue;
    Row row;
    for (std::size_t c = 0; c < kColumns; ++c) row[c] = fields[columns[c]];
    for (auto fault = begin; fault != end; ++fault) {
      const std::string& satellite = fault->second->satellite;
      if (satellite.empty() || satellite == row[kSatellite]) AddReasons(row, *fault->second);
    }
  }
}

std::string DetectedFaultsText(const std::vector<DetectedFault>& faults) {
  std::string text = "\nSLIPS AND CODE JUMPS, by the detail table\n";
  text += fmt::format("{:<21}{:<8}{:<11}{:>6}  {}\n", "Time", "Signal", "Kind", "Size", "Detected as");
  std::array<std::size_t, 2> all{}, detected{};
  std::size_t rows = 0;
  for (const DetectedFault& fault : faults) {
    const std::size_t kind = fault.is_slip ? 0 : 1;
    ++all[kind];
    if (fault.Detected()) ++detected[kind];
    if (++rows > kMaxRows) continue;
    text += fmt::format("{:<21}{:<8}{:<11}{:>6g}  {}\n", fault.time.substr(0, 19), SignalText(fault),
                        fault.is_slip ? "slip" : "code_jump", fault.size, Joined(fault.reasons));
  }
  if (rows > kMaxRows) text += fmt::format("and {} more\n", rows - kMaxRows);
  return text + fmt::format("Detected: {} of {} slips, {} of {} code jumps\n", detected[0], all[0],
                            detected[1], all[1]);
}

}  // namespace orsolva_host
