#include "host/cli/exit_codes.h"

#include <fmt/format.h>

namespace orsolva_host {

const ExitCode kExitCodes[] = {
    {kGood, "good: every file was judged, and no verdict failed"},
    {kRunFailed, "at least one file could not be judged, or an output could not be written"},
    {kWrongUsage, "wrong usage: an option, a profile or a configuration file"},
    {kVerdictFailed, "every file was judged, and at least one verdict failed (--profile)"},
    {kInterrupted, "interrupted (SIGINT); finished output files stay"},
    {kTerminated, "terminated (SIGTERM); finished output files stay"},
};

const int kExitCodeCount = sizeof(kExitCodes) / sizeof(kExitCodes[0]);

std::string ExitCodeLines() {
  std::string lines;
  for (const ExitCode& row : kExitCodes) lines += fmt::format("  {:<5}{}\n", row.code, row.meaning);
  return lines;
}

}  // namespace orsolva_host
