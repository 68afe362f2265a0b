// orsolva: checks the quality of GNSS observation files.
#include <exception>
#include <string>
#include <vector>

#include "host/cli/archive_command.h"
#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/cli/config_file.h"
#include "host/cli/exit_codes.h"
#include "host/judging/run_error.h"
#include "host/platform/platform.h"
#include "host/terminal/standard_streams.h"

namespace {

using namespace orsolva_host;

int RunCommand(std::vector<std::string> arguments) {
  if (!arguments.empty() && arguments.front() == "archive") return RunArchive(arguments);
  const std::vector<Command> commands = AllCommands();
  if (!arguments.empty() && arguments.front() == "--version") arguments.front() = "version";
  const CommandLine line = ParseCommandLine(commands, JoinFormatFiles(arguments));
  if (line.command == nullptr) return line.exit_code;
  // The configuration file first, so that the command line overrides it.
  std::vector<GivenValue> values = SetFromConfig(line);
  SetValues(line.values);
  values.insert(values.end(), line.values.begin(), line.values.end());
  CheckExclusions(values);
  return line.command->run();
}

int Run(int argc, char** argv) {
  try {
    return RunCommand({argv + (argc > 0 ? 1 : 0), argv + argc});
  } catch (const UsageError& error) {
    PrintError(error.what() + std::string("\nRun with --help for more information."));
  } catch (const ConfigError& error) {
    PrintError(error.what());
  } catch (const std::exception& error) {
    PrintError(ErrorText(error));
    return kRunFailed;
  }
  return kWrongUsage;
}

}  // namespace

int main(int argc, char** argv) {
  KeepFreedMemory();
  PrepareStreams();
  const int exit_code = Run(argc, argv);
  if (FlushStandardOutput()) return exit_code;
  if (IsOutputClosed()) return EndAsByClosedPipe();
  if (exit_code != kGood) return exit_code;
  PrintError("standard output could not be written. Check the room on the disk and what reads it.");
  return kRunFailed;
}
