#include "host/cli/exit_codes.h"

#include <fmt/format.h>

namespace orsolva_host {

const ExitCode kExitCodes[] = {
    {kGood, "success: every file was processed, and no verdict failed"},
    {kRunFailed, "a file could not be processed, or an output could not be written"},
    {kWrongUsage, "wrong usage: an option, a profile or a configuration file"},
    {kVerdictFailed, "every file was processed, and at least one verdict failed (--profile)"},
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
