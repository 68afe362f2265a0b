#include "host/report/network.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <tuple>
#include <utility>

#include "host/report/csv_writer.h"
#include "host/report/error_groups.h"
#include "host/report/findings.h"
#include "host/report/median.h"
#include "host/report/verdict_text.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

std::string Fixed(const std::optional<double>& value, int decimals, const char* none) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : none;
}

std::string Whole(const std::optional<Count>& value) { return value ? fmt::format("{}", *value) : "-"; }

template <typename T>
std::string Exact(const std::optional<T>& value) {
  return value ? fmt::format("{}", *value) : std::string();
}

int Rank(const NetworkRow& row) {
  if (!row.error.empty()) return 0;
  const std::string state = StateOf(row);
  if (state == "fail" || state == "poor") return 1;
  if (state == "no data" || state == "not judged") return 2;
  return state == "fair" ? 3 : 4;
}

Tone ToneOfRow(const NetworkRow& row) { return row.error.empty() ? ToneOf(StateOf(row)) : Tone::kFail; }

std::string TimeOf(const std::optional<Time_gbt>& time) { return time ? TimeText(*time) : std::string(); }

/// A text of several lines.
std::string InOneLine(std::string error) {
  // Further lines are indented.
  for (std::size_t at = error.find('\n'); at != std::string::npos; at = error.find('\n', at)) {
    const std::size_t next = std::min(error.find_first_not_of(" \n", at), error.size());
    error.replace(at, next - at, next < error.size() ? " " : "");
  }
  return error;
}

}  // namespace

std::string StateOf(const NetworkRow& row) {
  if (!row.error.empty()) return "ERROR";
  return row.grade.empty() ? row.verdict.grade : row.grade;
}

std::string ErrorOf(const NetworkRow& row) {
  std::string error = row.error;
  if (error.compare(0, row.file.size() + 2, row.file + ": ") == 0) error.erase(0, row.file.size() + 2);
  return InOneLine(std::move(error));
}

NetworkRow RowOf(const Report& report) {
  NetworkRow row;
  row.file = report.run.observation_file;
  row.marker = report.run.marker;
  if (report.profile_verdict) row.grade = report.profile_verdict->grade;
  row.first_epoch = report.run.first_epoch;
  row.last_epoch = report.run.last_epoch;
  row.duration_h = report.run.duration_h;
  row.interval_s = report.run.interval_s;
  row.epochs = report.run.epochs;
  row.lost_epochs = report.run.lost_epochs;
  row.verdict = report.verdict;
  row.notable = NotableOf(report);
  row.headline = report.headline;
  row.library_headline = report.library_headline;
  row.notices = report.further_notices;
  for (const ReportNotice& notice : report.notices) row.notices += notice.count;
  return row;
}

NetworkRow FailedRow(const std::string& file, const std::string& error) {
  NetworkRow row;
  row.file = file;
  row.judged = false;
  row.error = error.empty() ? "unknown error" : error;
  return row;
}

void SortWorstFirst(std::vector<NetworkRow>& rows) {
  std::stable_sort(rows.begin(), rows.end(), [](const NetworkRow& a, const NetworkRow& b) {
    const auto key = [](const NetworkRow& r) {
      return std::make_tuple(Rank(r), r.headline.cutoff_completeness.value_or(-1), std::cref(r.file));
    };
    return key(a) < key(b);
  });
}

NetworkSummary SummaryOf(const std::vector<NetworkRow>& rows) {
  NetworkSummary sum;
  std::vector<double> ratios;
  sum.files = rows.size();
  for (const NetworkRow& row : rows) {
    const std::string state = StateOf(row);
    if (state == "ERROR") ++sum.errors;
    if (Rank(row) == 1 || Rank(row) == 2) ++sum.failed;
    if (state == "fair") ++sum.fair;
    if (state == "good") ++sum.good;
    if (row.headline.cutoff_completeness) ratios.push_back(*row.headline.cutoff_completeness);
    sum.duration_h += row.duration_h;
    if (!row.first_epoch) continue;
    if (!sum.first_epoch || Difference(*row.first_epoch, *sum.first_epoch) < 0)
      sum.first_epoch = row.first_epoch;
  }
  if (ratios.empty()) return sum;
  sum.least_completeness = *std::min_element(ratios.begin(), ratios.end());
  sum.median_completeness = MedianOf(ratios);
  return sum;
}

namespace {

std::vector<FailedFile> FailedOf(const std::vector<NetworkRow>& rows) {
  std::vector<FailedFile> failed;
  for (const NetworkRow& row : rows) {
    if (!row.judged) failed.push_back({row.file, row.error});
  }
  return failed;
}

/// By file, those that share the cause of their failure with others.
using SharedCauses = std::map<std::string, const ErrorGroup*>;

SharedCauses SharedCausesOf(const std::vector<ErrorGroup>& groups) {
  SharedCauses causes;
  for (const ErrorGroup& group : groups) {
    if (group.files.size() < 2) continue;
    for (const FailedFile& failed : group.files) causes[failed.file] = &group;
  }
  return causes;
}

void AddFigures(const NetworkRow& row, TextTable& table) {
  const Headline& h = row.headline;
  const std::optional<double>& ratio = h.cutoff_completeness;
  const std::string percent = ratio ? fmt::format("{:.2f}", *ratio * 100) : "-";
  const std::string name = std::filesystem::path(row.file).filename().string();
  table.AddRow({Printable(name.empty() ? row.file : name), StateOf(row), percent, Whole(h.missing_epochs),
                Whole(h.cycle_slips), Fixed(h.gps_mp1_m, 3, "-"), Fixed(h.gps_mp2_m, 3, "-")},
               ToneOfRow(row));
}

void AddBelow(const std::string& lines, TextTable& table, const TextStyle& style) {
  table.AddBelow(Wrapped(Printable(lines), "    ", "    ", style.width));
}

void AddRow(const NetworkRow& row, TextTable& table, const TextStyle& style) {
  AddFigures(row, table);
  // The columns have what a good file is known by.
  const std::string& said = row.verdict.grade == "good" ? row.notable : row.verdict.text;
  if (!said.empty()) AddBelow(said, table, style);
  if (!row.error.empty()) AddBelow(ErrorOf(row), table, style);
}

/// The rows of files that failed for one cause, then the cause.
void AddGroup(const ErrorGroup& group, TextTable& table, const TextStyle& style) {
  for (const FailedFile& failed : group.files) AddFigures(FailedRow(failed.file, failed.error), table);
  AddBelow(fmt::format("These {} files: {}", group.files.size(), InOneLine(group.cause)), table, style);
}

}  // namespace

std::string NetworkText(const std::vector<NetworkRow>& rows, const TextStyle& style) {
  const NetworkSummary sum = SummaryOf(rows);
  std::string text = Toned(fmt::format("NETWORK ({} files, {} read, {} failed; worst first)", sum.files,
                                       sum.files - sum.errors, sum.errors),
                           Tone::kStrong, style) +
                     "\n";
  TextTable table;
  table.AddColumn("File", -30);
  table.AddColumn("State", -11);
  table.AddColumn("Compl %", 8);
  table.AddColumn("Missing", 8);
  table.AddColumn("Slips", 7);
  table.AddColumn("MP1 m", 7);
  table.AddColumn("MP2 m", 7);
  const std::vector<ErrorGroup> groups = GroupedByCause(FailedOf(rows));
  const SharedCauses shared = SharedCausesOf(groups);
  for (const NetworkRow& row : rows) {
    const auto group = row.judged ? shared.end() : shared.find(row.file);
    if (group == shared.end()) {
      AddRow(row, table, style);
    } else if (group->second->files.front().file == row.file) {
      AddGroup(*group->second, table, style);
    }
  }
  return text + table.Text(style);
}

std::string NetworkCsv(const std::vector<NetworkRow>& rows, const FigureTables& tables) {
  std::string text =
      "file,marker,state,first_epoch_gpst,last_epoch_gpst,duration_h,interval_s,epochs,lost_epochs";
  for (const auto& figure : tables.headline) text += std::string(",") + figure.key;
  for (const auto& figure : tables.library_headline) text += std::string(",") + figure.key;
  text += ",notices,verdict,error\n";
  for (const NetworkRow& row : rows) {
    const auto if_judged = [&row](auto value) {
      return row.judged ? fmt::format("{}", value) : std::string();
    };
    text += fmt::format("{},{},{},{},{},{},{},{},{}", CsvField(row.file), CsvField(row.marker), StateOf(row),
                        TimeOf(row.first_epoch), TimeOf(row.last_epoch), if_judged(row.duration_h),
                        if_judged(row.interval_s), if_judged(row.epochs), Exact(row.lost_epochs));
    for (const auto& figure : tables.headline) text += "," + Exact(figure.get(row.headline));
    for (const auto& figure : tables.library_headline) text += "," + Exact(figure.get(row.library_headline));
    text += fmt::format(",{},{},{}\n", if_judged(row.notices), CsvField(row.verdict.text),
                        CsvField(ErrorOf(row)));
  }
  return text;
}

}  // namespace orsolva_host
