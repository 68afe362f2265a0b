#include <memory>
#include <utility>

#include "host/cli/argument_texts.h"
#include "host/cli/check_files.h"
#include "host/cli/commands.h"
#include "host/cli/request.h"
#include "host/judging/selection_texts.h"
#include "host/report/profile.h"

namespace orsolva_host {
namespace {

std::vector<std::string> ProfileNames() {
  std::vector<std::string> names;
  for (int i = 0; i < kBuiltInProfileCount; ++i) names.push_back(kBuiltInProfiles[i].name);
  return names;
}

Option With(Option row, std::vector<std::string> words) {
  row.words = std::move(words);
  return row;
}

void AddFiles(QcRequest& request, std::vector<Option>& options) {
  Option files = ListOption(
      "FILES", "FILES", request.paths,
      "RINEX 2, 3 and 4 observation files, plain or Hatanaka-compressed (CRINEX 1 and "
      "3), and recordings of streams (RTCM 3, Septentrio SBF, u-blox UBX), also inside gzip, .Z, zip, "
      "bzip2, xz or zstd; folders or patterns of them; - for standard input. Navigation files among "
      "them are used for all, otherwise "
      "those next to each file");
  files.many = true;
  options.push_back(Positional(std::move(files), true));
}

void AddAnalysisOptions(QcRequest& request, std::vector<Option>& options) {
  JudgingSettings& s = request.settings;
  const std::vector<Option> rows = {
      ListOption("nav", "PATH", request.navigation, "Further navigation files or folders of them"),
      Choice("join", "RULE", {"none", "day", "all"}, request.join,
             "Judge consecutive files of one station as one span: those of a day, or all"),
      Number("elevation", "DEGREES", 0, 90, s.elevation_cutoff_deg, "Elevation cut-off in degrees"),
      Parsed("interval", "SECONDS", "auto", ParseInterval, s.interval_s,
             "Nominal interval in seconds; auto: the header's, or the data's where that is missing or wrong"),
      With(Parsed("position", "POSITION", "spp", ParsePosition, s.position,
                  "X,Y,Z in metres, header, or spp: single point positioning"),
           {"spp", "header"}),
      Parsed("systems", "LETTERS", s.systems, ParseSystems, s.systems,
             "Satellite systems: G GPS, R GLONASS, E Galileo, J QZSS, C BDS, I NavIC, S SBAS"),
      Parsed("exclude", "SATELLITES", "", ParseExcluded, s.excluded,
             "Satellites to leave out, such as G04,R12"),
      Parsed(
          "start", "TIME", "", ParseTimeLimit, s.selection.start,
          "Begin at this GPS time: 2026-01-31T06:00, 2026-031T06:00, or 06:00 on the day of the first epoch"),
      Parsed("end", "TIME", "", ParseTimeLimit, s.selection.end,
             "End before this GPS time, written likewise"),
      Parsed("sampling", "SECONDS", "", ParseSampling, s.selection.sampling_s,
             "Take only the epochs at multiples of so many seconds of GPS time"),
      Parsed("signals", "LIST", "", ParseSignals, s.selection.signals,
             "Signals to take, such as G:1C,2W,E:1C,5Q, or bands such as 1,5; of systems that are not named, "
             "all"),
      Switch("snr-from-strength", s.snr_from_strength,
             "Estimate a missing SNR from the signal strength digit of its phase"),
      Parsed("max-size", "BYTES", "8G", ParseSize, s.limits,
             "Largest size in bytes that a compressed file may expand to"),
      With(FileOption(
               "profile", "NAME|FILE", request.profile,
               "Grade the figures by limits: network, station, reference, rtk, phone, or a file of limits; "
               "history:FOLDER: by the earlier JSON reports of the station in a folder"),
           ProfileNames()),
      FileOption("compare", "FILE", request.compare,
                 "List what differs from an earlier JSON report of the station"),
      Parsed("window", "LENGTH", "", ParseWindow, s.window_s,
             "Give the figures of the analysis per window of time as well, such as 1h, 15m or 1d"),
      Switch(
          "strict", s.strict,
          "Fail a file that cannot be judged in full, such as one without navigation, instead of reporting "
          "what is there"),
  };
  for (Option row : rows) {
    row.group = "Analysis";
    row.set = [set = std::move(row.set), name = row.name, &given = request.given](const std::string& text) {
      given[name] = text;
      return set(text);
    };
    options.push_back(std::move(row));
  }
}

void AddOutputOptions(QcRequest& request, std::vector<Option>& options) {
  OutputSettings& o = request.outputs;
  const std::vector<Option> rows = {
      ReportFile("text", o.File(Format::kText), "Write the report as text, which is the default"),
      ReportFile("json", o.File(Format::kJson), "Write the report as JSON"),
      ReportFile("csv", o.File(Format::kCsv), "Write every figure as a row of CSV"),
      ReportFile("sum", o.File(Format::kSum), "Write a SUM line and =KEY rows for grep"),
      With(Parsed("figures", "WHICH", "both", ParseFigureChoice, request.settings.figures,
                  "Figures that reports show: analysis (every signal, by this program), library (its record "
                  "by the rules of archives), or both"),
           {"analysis", "library", "both"}),
      Switch("sats", request.settings.show_satellites, "Add a table per satellite"),
      FileOption("detail", "FILE", o.File(Format::kDetail),
                 "Write a CSV table of every epoch, satellite and signal (.gz: compressed)"),
      Parsed("detail-satellites", "LIST", "", ParseSatellites, o.detail.satellites,
             "Satellites or systems in the table of --detail, such as G05,R12,E"),
      Parsed("detail-signals", "LIST", "", ParseSignals, o.detail.signals,
             "Signals in the table of --detail, written as for --signals"),
      FileOption("events", "FILE", o.File(Format::kEvents),
                 "Write cycle slips, gaps and clock events one by one as CSV (.jsonl: JSON lines; .gz: "
                 "compressed); - for standard output"),
      FileOption("series", "FILE", o.File(Format::kSeries),
                 "Write figures over time by station, signal and satellite, in bins of five minutes, as CSV "
                 "(.jsonl: JSON lines; .gz: compressed); - for standard output"),
      FileOption("html", "FILE", o.File(Format::kHtml),
                 "Write the report with plots as one page that needs no network; of several files, the index "
                 "of the pages in --output"),
      FileOption("network", "FILE", o.network,
                 "Write the table with one row per file (.csv: as CSV, .html: as a page)"),
      FolderOption("output", o.folder,
                   "Write the reports of each file, and the network table, into this folder"),
      FolderOption(
          "parquet", request.parquet,
          "Write the tables of each report as Parquet files into a folder of its own in this folder; "
          "needs the Python packages orsolva and pyarrow"),
      Parsed("formats", "LIST", FormatNames(true), ParseFormats, o.formats,
             "Formats that --output writes, out of " + FormatNames()),
  };
  for (Option row : rows) {
    row.group = "Output";
    options.push_back(std::move(row));
  }
}

void AddGeneralOptions(QcRequest& request, std::vector<Option>& options) {
  std::vector<Option> rows = {
      WholeNumber("jobs", "NUMBER", 1024, request.jobs, "Files processed at the same time; 0: one per core"),
      Choice("color", "WHEN", {"auto", "always", "never"}, request.color,
             "Colours; auto: on a terminal only"),
      WholeNumber("width", "COLUMNS", 1000, request.width,
                  "Columns of the text report; 0: those of the terminal, at most 80"),
      Switch("quiet", request.outputs.quiet,
             "No progress, and no report that is not asked for; errors remain"),
      Switch("verbose", request.verbose, "List on standard error what was read and repaired"),
      FileOption("config", "FILE", request.config, "Take options from this file"),
      Switch("no-config", request.no_config, "Take no options from a configuration file"),
  };
  for (Option& row : rows) {
    row.group = "General";
    if (row.name == "verbose") row.excludes = {"quiet"};
    row.command_line_only = row.name == "config" || row.name == "no-config";
    options.push_back(std::move(row));
  }
}

}  // namespace

Command QcCommand() {
  auto request = std::make_shared<QcRequest>();
  ParseFormats(FormatNames(true), request->outputs.formats);
  Command command{"qc", "Check the quality of observation files", {}, {}};
  AddFiles(*request, command.options);
  AddAnalysisOptions(*request, command.options);
  AddOutputOptions(*request, command.options);
  AddGeneralOptions(*request, command.options);
  command.exit_codes = {kGood, kRunFailed, kWrongUsage, kVerdictFailed, kInterrupted, kTerminated};
  command.run = [request] { return CheckFiles(*request); };
  return command;
}

}  // namespace orsolva_host
