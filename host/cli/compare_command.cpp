#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/rinex/text_file.h"
#include "host/simulator/comparison.h"
#include "host/simulator/fault_detection.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

struct CompareSettings {
  std::string report;
  std::string truth;
  std::string detail;
};

/// @throws FileError when the file cannot be read
NamedText ReadNamed(const std::string& path) { return {path, TextOfFile(path, kLargestReport_bytes)}; }

std::string Compared(const CompareSettings& settings) {
  const NamedText report = ReadNamed(settings.report), truth = ReadNamed(settings.truth);
  if (settings.detail.empty()) return ComparisonText(report, truth);
  Diagnostics diagnostics;
  LineReader lines(OpenBytes(settings.detail, diagnostics));
  const DetailTable detail{settings.detail, lines};
  std::string text = ComparisonText(report, truth, &detail);
  // Rows that are missing would look like faults that were not told.
  if (diagnostics.Incomplete()) throw FileError(*diagnostics.Incomplete());
  return text;
}

int DoCompare(const CompareSettings& settings) {
  try {
    const std::string text = Compared(settings);
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (written && std::fflush(stdout) == 0) return kGood;
    PrintError("the comparison could not be written to standard output");
  } catch (const std::exception& error) {
    PrintError(TextOf(error));
  }
  return kRunFailed;
}

}  // namespace

void AddCompareCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("compare", "Lay a report beside the truth of simulated data");
  auto settings = std::make_shared<CompareSettings>();
  command->add_option("REPORT", settings->report, "What orsolva qc --json wrote")->required();
  command->add_option("TRUTH", settings->truth, "The truth.json of orsolva simulate")->required();
  command
      ->add_option("--detail", settings->detail,
                   "What orsolva qc --detail wrote: tell which slips and jumps it has")
      ->type_name("FILE");
  command->callback([settings, &exit_code] { exit_code = DoCompare(*settings); });
}

}  // namespace orsolva_host
