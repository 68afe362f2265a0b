#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/judging/run_error.h"
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
  // Missing rows would look like faults that were not detected.
  if (diagnostics.Incomplete()) throw FileError(*diagnostics.Incomplete());
  return text;
}

int Compare(const CompareSettings& settings) {
  try {
    const std::string text = Compared(settings);
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (written && std::fflush(stdout) == 0) return kGood;
    PrintError("the comparison could not be written to standard output");
  } catch (const std::exception& error) {
    PrintError(ErrorText(error));
  }
  return kRunFailed;
}

}  // namespace

Command CompareCommand() {
  auto settings = std::make_shared<CompareSettings>();
  std::vector<Option> options = {
      Positional(FileOption("REPORT", "REPORT", settings->report, "Report written by orsolva qc --json"),
                 true),
      Positional(FileOption("TRUTH", "TRUTH", settings->truth, "truth.json written by orsolva simulate"),
                 true),
      FileOption("detail", "FILE", settings->detail,
                 "Table written by orsolva qc --detail: adds which faults were detected, and as what"),
  };
  return {"compare", "Compare a report with the truth of simulated data", std::move(options),
          [settings] { return Compare(*settings); }};
}

}  // namespace orsolva_host
