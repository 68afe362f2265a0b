#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <memory>

#include "host/cli/commands.h"
#include "host/cli/detail_outputs.h"
#include "host/cli/exit_codes.h"
#include "host/cli/qc_run.h"
#include "host/cli/qc_settings.h"
#include "host/report/json_writer.h"
#include "host/report/text_writer.h"

namespace orsolva_host {
namespace {

int DoQc(const QcSettings& settings) {
  Diagnostics diagnostics;
  try {
    DetailOutputs outputs(settings.detail_file, settings.html_file);
    const Report report = RunQc(settings, diagnostics, outputs.Sink());
    outputs.Finish(report);
    const std::string text = settings.json ? WriteJson(report) : WriteText(report);
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!written || std::fflush(stdout) != 0) {
      std::fputs("orsolva: the report could not be written\n", stderr);
    } else if (report.read_error.empty()) {
      return kGood;
    } else {
      std::fprintf(stderr, "orsolva: %s The report covers what stands before.\n", report.read_error.c_str());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orsolva: %s\n", error.what());
    for (const Notice& notice : diagnostics.Notices()) {
      if (notice.recovered) continue;
      std::fprintf(stderr, "  %s:%ld: %s (%ld)\n", notice.file.c_str(), notice.line, notice.text.c_str(),
                   notice.count);
    }
  }
  return kRunFailed;
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

}  // namespace

void AddQcCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("qc", "Judge the observations of a file");
  auto settings = std::make_shared<QcSettings>();
  auto texts = std::make_shared<std::array<std::string, 4>>();
  command
      ->add_option("OBS", settings->observation_file,
                   "RINEX observation file, plain or compact, packed or not; - is standard input")
      ->required();
  command->add_option("NAV", settings->navigation_files,
                      "RINEX navigation files of the same time, or folders of them (default: beside OBS)");
  command->add_flag("--json", settings->json, "Write the report as JSON");
  command->add_flag("--sats", settings->satellites, "Add a table per satellite");
  command->add_option("--html", settings->html_file,
                      "Write the report with plots to this file, one page that needs no network");
  command->add_option("--detail", settings->detail_file,
                      "Write a CSV table of every epoch, satellite and signal to this file (.gz packs it)");
  command->add_option("--elevation", settings->elevation_deg, "Elevation cut-off in degrees")
      ->check(Number(0, 90))
      ->capture_default_str();
  command->add_option("--interval", settings->interval_s, "Interval in seconds (default: header, else data)")
      ->check(Number(1e-3, 86400));
  command->add_option("--position", (*texts)[0], "X,Y,Z in metres, header or spp (computed; the default)")
      ->check(Parsed(ParsePosition, settings->position));
  command->add_option("--systems", (*texts)[1], "Systems to judge, letters out of GREJC (default: all)")
      ->check(Parsed(ParseSystems, settings->systems));
  command->add_option("--exclude", (*texts)[2], "Satellites to leave out, such as G04,R12")
      ->check(Parsed(ParseExcluded, settings->excluded));
  command->add_flag("--snr-from-strength", settings->snr_from_strength,
                    "Estimate a missing SNR from the signal strength digit of its phase");
  command->add_option("--max-size", (*texts)[3], "Most bytes a packed file may unpack to (default: 8G)")
      ->check(Parsed(ParseSize, settings->limits));
  command->callback([settings, texts, &exit_code] { exit_code = DoQc(*settings); });
}

}  // namespace orsolva_host
