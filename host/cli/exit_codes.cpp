#include "host/cli/exit_codes.h"

#include <fmt/format.h>

#include <algorithm>

namespace orsolva_host {

const ExitCode kExitCodes[] = {
    {kGood, "success"},
    {kRunFailed, "a file could not be processed, or an output could not be written"},
    {kWrongUsage, "wrong usage: an option, a profile or a configuration file"},
    {kVerdictFailed, "every file was processed, and at least one verdict failed (--profile)"},
    {kInterrupted, "interrupted (SIGINT); finished output files stay"},
    {kTerminated, "terminated (SIGTERM); finished output files stay"},
};

const int kExitCodeCount = sizeof(kExitCodes) / sizeof(kExitCodes[0]);

std::string ExitCodeLines(const std::vector<int>& only) {
  std::string lines;
  for (const ExitCode& row : kExitCodes) {
    if (!only.empty() && std::find(only.begin(), only.end(), row.code) == only.end()) continue;
    lines += fmt::format("  {:<5}{}\n", row.code, row.meaning);
  }
  return lines;
}

}  // namespace orsolva_host
