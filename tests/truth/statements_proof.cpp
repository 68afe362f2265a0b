// Statements of header and file name: the file of a simulated span, with one statement changed at a time.
#include <fmt/format.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/judging/judge_file.h"
#include "host/simulator/file_set.h"
#include "host/simulator/header_lines.h"
#include "host/simulator/scenario_json.h"
#include "tests/support/text_file.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::HeaderLine;
using orsolva_host::Scenario;
using orsolva_host::analysis::Contradiction;

constexpr std::size_t kLabelColumn = 60;
constexpr int kHours = 2;
constexpr const char* kName = "SIMU00ORS_R_20201770000_02H_30S_MO.rnx";

Scenario TwoHours() {
  Scenario scenario;
  scenario.seed = 7801;
  scenario.hours = kHours;
  return scenario;
}

std::string LabelOf(const std::string& line) {
  if (line.size() <= kLabelColumn) return {};
  const std::size_t end = line.find_last_not_of(" \n");
  return line.substr(kLabelColumn, end + 1 - kLabelColumn);
}

/// The file with the first line of a label replaced.
std::string Replaced(const std::string& file, const std::string& label, const std::string& line) {
  for (std::size_t at = 0; at < file.size();) {
    const std::size_t end = file.find('\n', at) + 1;
    if (LabelOf(file.substr(at, end - at)) == label) return file.substr(0, at) + line + file.substr(end);
    at = end;
  }
  return file;
}

/// The file with a line before the end of the header.
std::string WithLine(const std::string& file, const std::string& line) {
  const std::string end = HeaderLine("", "END OF HEADER");
  return Replaced(file, "END OF HEADER", line + end);
}

/// The file with a header line among the observations, before the epoch at one hour.
std::string WithChange(const std::string& file, const std::string& line) {
  const std::size_t at = file.find("\n> 2020 06 25 01 00 00") + 1;
  return file.substr(0, at) + fmt::format("> {:29}4{:3}\n", "", 1) + line + file.substr(at);
}

std::string TimeLine(int hour, int minute, const char* label) {
  return HeaderLine(fmt::format("  2020     6    25{:6}{:6}    0.0000000     GPS", hour, minute), label);
}

std::string PositionLine(double east_m) {
  std::array<double, 3> p = TwoHours().receiver.position_m;
  const double level = std::hypot(p[0], p[1]);
  const double east[] = {-p[1] / level, p[0] / level, 0};
  for (std::size_t i = 0; i < 3; ++i) p[i] += east_m * east[i];
  return HeaderLine(fmt::format("{:14.4f}{:14.4f}{:14.4f}", p[0], p[1], p[2]), "APPROX POSITION XYZ");
}

/// One statement that is changed, and what must be said of it: an id with what was stated and what the data
/// say, or nothing.
struct StatementCase {
  const char* name;
  std::function<std::string(const std::string&)> change;
  const char* file_name = kName;
  const char* id = "";
  const char* stated = "";
  const char* found = "";
};

std::string Same(const std::string& file) { return file; }

std::vector<StatementCase> HeaderCases() {
  const auto line = [](const char* label, const std::string& text) {
    return [label, text](const std::string& file) { return Replaced(file, label, text); };
  };
  const auto interval = [line](const char* seconds) {
    return line("INTERVAL", HeaderLine(fmt::format("{:>10}", seconds), "INTERVAL"));
  };
  const auto last = [](int hour, int minute) {
    return
        [=](const std::string& file) { return WithLine(file, TimeLine(hour, minute, "TIME OF LAST OBS")); };
  };
  return {
      {"nothing", Same},
      {"interval 15 s", interval("15.000"), kName, "interval", "15 s", "30 s"},
      {"interval 30.2 s, within 1 %", interval("30.200")},
      {"first epoch 00:02", line("TIME OF FIRST OBS", TimeLine(0, 2, "TIME OF FIRST OBS")), kName,
       "first_epoch", "2020-06-25 00:02:00", "2020-06-25 00:00:00"},
      {"last epoch 03:00", last(3, 0), kName, "last_epoch", "2020-06-25 03:00:00", "2020-06-25 01:59:30"},
      {"last epoch 01:59, off by 30 s", last(1, 59), kName, "last_epoch", "2020-06-25 01:59:00",
       "2020-06-25 01:59:30"},
      {"position 80 m east", line("APPROX POSITION XYZ", PositionLine(80)), kName, "position"},
      {"position 30 m east, within 50 m", line("APPROX POSITION XYZ", PositionLine(30))},
  };
}

std::vector<StatementCase> NameCases() {
  return {
      {"name of another station", Same, "ESBC00DNK_R_20201770000_02H_30S_MO.rnx", "marker", "SIMU00ORS",
       "ESBC00DNK in the file name"},
      {"name with 15 s", Same, "SIMU00ORS_R_20201770000_02H_15S_MO.rnx", "file_name_interval", "15 s",
       "30 s"},
      {"name of the day after", Same, "SIMU00ORS_R_20201780000_02H_30S_MO.rnx", "file_name_start",
       "2020-06-26 00:00:00", "2020-06-25 00:00:00"},
      {"name of the day before", Same, "SIMU00ORS_R_20201760000_02H_30S_MO.rnx", "file_name_start",
       "2020-06-24 00:00:00", "2020-06-25 00:00:00"},
      {"name of one hour", Same, "SIMU00ORS_R_20201770000_01H_30S_MO.rnx", "file_name_period",
       "until 2020-06-25 01:00:00", "until 2020-06-25 01:59:30"},
      {"name of a whole day, which is not filled", Same, "SIMU00ORS_R_20201770000_01D_30S_MO.rnx"},
      {"name of no known form", Same, "observations.rnx"},
  };
}

std::vector<StatementCase> ChangeCases() {
  const auto change = [](const std::string& line) {
    return [line](const std::string& file) { return WithChange(file, line); };
  };
  const auto channel = [](const std::string& file) {
    const std::size_t at = file.find("R01  1 ");
    return at == std::string::npos ? file : file.substr(0, at) + "R01 -4 " + file.substr(at + 7);
  };
  return {
      {"GLONASS channel of R01 -4 instead of 1", channel, kName, "glonass_channel", "R01: -4", "R01: 1"},
      {"antenna changed at 01:00",
       change(HeaderLine(fmt::format("{:<20}{:<20}", "2", "LEIAR25"), "ANT # / TYPE")), kName,
       "antenna_change"},
      {"receiver changed at 01:00",
       change(HeaderLine(fmt::format("{:<20}{:<20}{:<20}", "2", "OTHER", "1"), "REC # / TYPE / VERS")), kName,
       "receiver_change"},
      {"marker changed at 01:00", change(HeaderLine("ELSEWHERE", "MARKER NAME")), kName, "marker_change",
       "SIMU00ORS", "ELSEWHERE"},
      {"the same antenna stated again at 01:00",
       change(HeaderLine(fmt::format("{:<20}{:<20}", "1", orsolva_host::kSimulatedAntenna), "ANT # / TYPE"))},
  };
}

/// A folder that goes with the object.
struct Workplace {
  std::string path =
      (std::filesystem::temp_directory_path() / fmt::format("orsolva_statements_{}", getpid())).string();
  Workplace() { std::filesystem::create_directories(path); }
  ~Workplace() { std::filesystem::remove_all(path); }
};

std::vector<Contradiction> Judged(const std::string& path, const std::string& navigation_path) {
  orsolva_host::JudgingSettings settings;
  orsolva_host::SharedNavigation navigation({navigation_path}, settings.limits);
  orsolva_host::Diagnostics diagnostics;
  return JudgeFile(path, settings, navigation, diagnostics).analysis.figures.contradictions;
}

std::string TextOf(const std::vector<Contradiction>& all) {
  std::string text;
  for (const Contradiction& one : all)
    text += fmt::format("{}{}: {}; {}", text.empty() ? "" : " / ", one.id, one.stated, one.found);
  return text.empty() ? "nothing" : text;
}

void ProveCase(const StatementCase& one, const std::string& file, const Workplace& place,
               const std::string& navigation, ProofTable& table, Proof& proof) {
  const std::string path = place.path + "/" + one.file_name;
  const std::string changed = one.change(file);
  const std::string id = one.id;
  proof.Check((changed == file) == (one.change.target<std::string (*)(const std::string&)>() != nullptr),
              std::string(one.name) + ": the file is changed");
  WriteText(path, changed);
  const std::vector<Contradiction> all = Judged(path, navigation);
  std::filesystem::remove(path);
  const std::string said = std::string(one.name) + ": " + TextOf(all);
  proof.Check(all.size() == (id.empty() ? 0U : 1U), said);
  if (!id.empty() && all.size() == 1) {
    proof.Check(all[0].id == id, said);
    proof.Check(std::string(one.stated).empty() || (all[0].stated == one.stated && all[0].found == one.found),
                said);
  }
  table.rows.push_back({one.name, id.empty() ? "nothing" : id, TextOf(all)});
}

}  // namespace

void ProveStatements(bool /*long_form*/, Proof& proof) {
  proof.figures = {"contradictions"};
  proof.injected =
      "the RINEX file of two simulated hours at 30 s with one statement changed at a time: interval, first "
      "and last "
      "epoch, marker, position, GLONASS channel, the name of the file, and header lines among the "
      "observations that "
      "change antenna, receiver or marker";
  proof.must_say =
      "of each the one contradiction with what is stated and what the data say, and none of the file as it "
      "was "
      "written, of a statement within its tolerance, of a period that is not filled or of a name of no known "
      "form";
  proof.tolerance = "none";
  proof.reason =
      "the file is read as any other; what its data are is known from the simulation: 30 s, 00:00:00 to "
      "01:59:30, "
      "R01 on channel 1, the simulated marker, antenna and receiver";
  const Workplace place;
  const orsolva_host::FileSetOptions options{place.path, false, false};
  const orsolva_host::FileSet files = FileNames(TwoHours(), options);
  WriteFileSet(TwoHours(), options, [](std::uint64_t, std::uint64_t) {});
  const std::string file = ReadText(files.observations);
  std::filesystem::remove(files.observations);
  ProofTable table{"By statement.", {"changed", "expected", "said: stated; the data"}, {}, 2};
  for (const auto& cases : {HeaderCases(), NameCases(), ChangeCases()})
    for (const StatementCase& one : cases) ProveCase(one, file, place, files.navigation, table, proof);
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
