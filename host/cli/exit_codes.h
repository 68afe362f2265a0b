// Exit codes of the program.
#ifndef ORSOLVA_CLI_EXIT_CODES_H
#define ORSOLVA_CLI_EXIT_CODES_H

#include <string>
#include <vector>

namespace orsolva_host {

constexpr int kGood = 0;
constexpr int kRunFailed = 1;
constexpr int kWrongUsage = 2;
constexpr int kVerdictFailed = 3;
constexpr int kInterrupted = 130;  ///< 128 and the number of the signal, as in shells
constexpr int kTerminated = 143;

struct ExitCode {
  int code;
  const char* meaning;
};

/// The one table of exit codes; help and manual show it.
extern const ExitCode kExitCodes[];
extern const int kExitCodeCount;

/// One line per code. @param only  the codes to list; empty for all
std::string ExitCodeLines(const std::vector<int>& only = {});

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_EXIT_CODES_H
