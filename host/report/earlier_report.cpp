#include "host/report/earlier_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <nlohmann/json.hpp>

#include "host/report/json_writer.h"
#include "host/rinex/decimal.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/station_statements.h"
#include "host/rinex/text_file.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kShortStation = 4;

std::string UpperCase(std::string_view text) {
  std::string upper(Trimmed(text));
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

std::string TextAt(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// Every number and every yes or no of an object.
void TakeFigures(const Json& object, const std::string& subject, const std::string& signal,
                 EarlierReport& report) {
  for (const auto& [key, value] : object.items()) {
    if (value.is_number()) report.figures[{subject, signal, key}] = value.get<double>();
    if (value.is_boolean()) report.figures[{subject, signal, key}] = value.get<bool>() ? 1 : 0;
  }
}

/// The objects of a list; nothing where it is none.
std::vector<Json> ObjectsIn(const Json& parent, const char* key) {
  std::vector<Json> objects;
  const auto found = parent.find(key);
  if (found == parent.end() || !found->is_array()) return objects;
  std::copy_if(found->begin(), found->end(), std::back_inserter(objects),
               [](const Json& j) { return j.is_object(); });
  return objects;
}

EarlierReport ReportOf(const Json& json, const std::string& file) {
  const auto refuse = [&file](const std::string& what) { throw EarlierReportError(file + ": " + what); };
  if (!json.is_object() || !json.contains("format")) refuse("is not a report of orsolva qc --json");
  const Json& format = json["format"];
  if (format != kJsonFormat) {
    refuse(
        fmt::format("is a report of format {}, and this program reads format {}: make it again with this "
                    "version of orsolva qc --json",
                    format.dump(), kJsonFormat));
  }
  const auto run = json.find("run"), analysis = json.find("analysis");
  const bool whole = run != json.end() && analysis != json.end() && run->is_object() && analysis->is_object();
  if (!whole) refuse("has no figures of the analysis");
  EarlierReport report;
  report.file = file;
  report.observation_file = TextAt(*run, "observation_file");
  report.marker = TextAt(*run, "marker");
  report.receiver = TextAt(*run, "receiver");
  report.antenna = TextAt(*run, "antenna");
  report.first_epoch = TextAt(*run, "first_epoch_gpst");
  report.last_epoch = TextAt(*run, "last_epoch_gpst");
  TakeFigures(*analysis, "", "", report);
  for (const Json& system : ObjectsIn(*analysis, "systems"))
    TakeFigures(system, TextAt(system, "letter"), "", report);
  for (const Json& signal : ObjectsIn(*analysis, "signals")) {
    const std::string letter = TextAt(signal, "letter"), code = TextAt(signal, "signal");
    TakeFigures(signal, letter, code, report);
    report.signals.push_back(letter + " " + code);
  }
  return report;
}

}  // namespace

std::optional<double> EarlierReport::Find(const Place& place) const {
  const auto found = figures.find(place);
  return found == figures.end() ? std::nullopt : std::optional<double>(found->second);
}

bool EarlierReport::HasSignal(std::string_view name) const {
  return std::find(signals.begin(), signals.end(), name) != signals.end();
}

std::string EarlierReport::Station() const {
  const std::string upper = UpperCase(marker);
  if (!upper.empty()) return upper;
  const std::size_t slash = observation_file.find_last_of("/\\");
  return StatementOfName(slash == std::string::npos ? observation_file : observation_file.substr(slash + 1))
      .station;
}

bool SimilarSpans(const EarlierReport& a, const EarlierReport& b) {
  constexpr double kAlike = 0.1;
  const auto span = [](const EarlierReport& report) {
    return report.Find({"", "", "nominal_epochs"}).value_or(0) *
           report.Find({"", "", "data_interval_s"}).value_or(0);
  };
  return std::fabs(span(a) - span(b)) <= kAlike * std::max(span(a), span(b));
}

bool SameStation(const EarlierReport& a, const EarlierReport& b) {
  const std::string first = a.Station(), second = b.Station();
  if (first == second) return true;
  const bool one_is_short = first.size() == kShortStation || second.size() == kShortStation;
  return one_is_short && first.substr(0, kShortStation) == second.substr(0, kShortStation);
}

std::vector<EarlierReport> ParseReports(std::string_view text, const std::string& file) {
  const Json json = Json::parse(text, nullptr, false);
  if (json.is_discarded())
    throw EarlierReportError(file + ": is not JSON; reports are made by orsolva qc --json");
  std::vector<EarlierReport> reports;
  if (!json.is_array()) {
    if (json.is_object() && json.contains("error"))
      throw EarlierReportError(file + ": is of a file that could not be judged");
    reports.push_back(ReportOf(json, file));
    return reports;
  }
  for (const Json& one : json) {
    if (!one.is_object() || !one.contains("error")) reports.push_back(ReportOf(one, file));
  }
  if (reports.empty()) throw EarlierReportError(file + ": holds no report");
  return reports;
}

std::vector<EarlierReport> ReadReports(const std::string& file) {
  try {
    return ParseReports(TextOfFile(file, kLargestReport_bytes), file);
  } catch (const FileError& error) {
    throw EarlierReportError(error.what());
  }
}

EarlierReport AsEarlier(const Report& report) {
  Report whole = report;
  whole.figures = FigureChoice::kBoth;
  return ParseReports(WriteJson(whole), "").front();
}

}  // namespace orsolva_host
