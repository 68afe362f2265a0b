#include <CLI/CLI.hpp>
#include <array>
#include <exception>
#include <memory>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/cli/qc_check.h"
#include "host/cli/qc_settings.h"
#include "host/report/profile.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

int DoQc(const QcRequest& request) {
  try {
    return CheckFiles(request);
  } catch (const ProfileError& error) {
    PrintError(error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    PrintError(TextOf(error));
    return kRunFailed;
  }
}

/// Hands an option's text to a parser and its complaint to the caller.
template <typename Target>
CLI::Validator Parsed(std::string (*parse)(const std::string&, Target&), Target& target) {
  return CLI::Validator([parse, &target](std::string& text) { return parse(text, target); }, "");
}

CLI::Validator Number(double low, double high) {
  return CLI::Validator(
      [low, high](std::string& text) {
        double number = 0;
        return ParseNumber(text, low, high, number);
      },
      "");
}

/// Options that stand for a text which a parser takes apart.
struct Texts {
  std::string interval, position, systems, exclude, size, formats, config;
  bool no_config = false;
};

void AddJudging(CLI::App& command, QcRequest& request, Texts& texts) {
  QcSettings& s = request.settings;
  command.add_option("--nav", request.navigation, "Further navigation files or folders of them")
      ->type_name("PATH")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_option("--elevation", s.elevation_deg, "Elevation cut-off in degrees")
      ->check(Number(0, 90))
      ->type_name("DEGREES")
      ->take_last()
      ->capture_default_str();
  command
      .add_option("--interval", texts.interval, "Interval in seconds; auto: the header's, else the data's")
      ->check(Parsed(ParseInterval, s.interval_s))
      ->type_name("SECONDS")
      ->take_last()
      ->default_str("auto");
  command.add_option("--position", texts.position, "X,Y,Z in metres, header, or spp (computed)")
      ->check(Parsed(ParsePosition, s.position))
      ->type_name("POSITION")
      ->take_last()
      ->default_str("spp");
  command.add_option("--systems", texts.systems, "Systems to judge, letters from GREJC")
      ->check(Parsed(ParseSystems, s.systems))
      ->type_name("LETTERS")
      ->take_last()
      ->default_str("GREJC");
  command.add_option("--exclude", texts.exclude, "Satellites to leave out, such as G04,R12")
      ->check(Parsed(ParseExcluded, s.excluded))
      ->type_name("SATELLITES")
      ->take_last();
  command.add_flag("--snr-from-strength", s.snr_from_strength,
                   "Estimate a missing SNR from the signal strength digit of its phase");
  command.add_option("--max-size", texts.size, "Largest size in bytes that a compressed file may expand to")
      ->check(Parsed(ParseSize, s.limits))
      ->type_name("BYTES")
      ->take_last()
      ->default_str("8G");
  command
      .add_option("--profile", request.profile,
                  "Hold the figures against limits: network, station, or a file of limits")
      ->type_name("NAME|FILE")
      ->take_last();
}

void AddOutputs(CLI::App& command, QcRequest& request, Texts& texts) {
  command.add_flag("--text{-}", request.text, "Write the report as text, which is the default");
  command.add_flag("--json{-}", request.json, "Write the report as JSON");
  command.add_flag("--csv{-}", request.csv, "Write every figure as a row of CSV");
  command.add_flag("--sum{-}", request.sum, "Write a SUM line and =KEY rows for grep");
  command.add_flag("--sats", request.settings.satellites, "Add a table per satellite");
  command
      .add_option("--detail", request.detail,
                  "Write a CSV table of every epoch, satellite and signal to this file (compressed when it "
                  "ends in .gz)")
      ->type_name("FILE")
      ->take_last();
  command
      .add_option("--html", request.html,
                  "Write the report with plots to this file, one page that needs no network; of many "
                  "files the index of the pages in --output")
      ->type_name("FILE")
      ->take_last();
  command
      .add_option("--network", request.network,
                  "Write the table with a row per file here (.csv: as CSV, .html: as a page)")
      ->type_name("FILE")
      ->take_last();
  command
      .add_option("--output", request.output,
                  "Write the reports of each file, and the network table, into this folder")
      ->type_name("FOLDER")
      ->take_last();
  command
      .add_option("--formats", texts.formats, "What --output writes, out of text,json,csv,sum,html,detail")
      ->check(Parsed(ParseFormats, request.formats))
      ->type_name("LIST")
      ->take_last()
      ->default_str(request.formats);
}

void AddManners(CLI::App& command, QcRequest& request, Texts& texts) {
  command.add_option("--jobs", request.jobs, "Files judged at the same time; 0: one a core")
      ->check(Number(0, 1024))
      ->type_name("NUMBER")
      ->take_last()
      ->capture_default_str();
  command.add_option("--color", request.color, "Colours: auto (on a terminal), always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN")
      ->take_last()
      ->capture_default_str();
  command.add_option("--width", request.width, "Columns of the text report; 0: the terminal's, at most 80")
      ->check(Number(0, 1000))
      ->type_name("COLUMNS")
      ->take_last()
      ->capture_default_str();
  CLI::Option* quiet = command.add_flag("--quiet", request.quiet,
                                        "No progress and no report but those asked for; errors remain");
  command.add_flag("--verbose", request.verbose, "Say on standard error what was read and repaired")
      ->excludes(quiet);
  command.add_option("--config", texts.config, "Take options from this file")->type_name("FILE")->take_last();
  command.add_flag("--no-config", texts.no_config, "Take no options from a configuration file");
}

}  // namespace

void AddQcCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("qc", "Judge the observations of files");
  auto request = std::make_shared<QcRequest>();
  auto texts = std::make_shared<Texts>();
  command
      ->add_option(
          "FILES", request->paths,
          "RINEX observation files, compressed or not, and folders or patterns of them, - for standard "
          "input; navigation files among them serve all, else those beside each file")
      ->required();
  AddJudging(*command, *request, *texts);
  AddOutputs(*command, *request, *texts);
  AddManners(*command, *request, *texts);
  // The options write into both as long as the command lives, whatever becomes of its callback.
  command->preparse_callback([request, texts](std::size_t) {});
  command->callback([request, texts, &exit_code] { exit_code = DoQc(*request); });
}

}  // namespace orsolva_host
