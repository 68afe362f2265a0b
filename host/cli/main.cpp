// orsolva: judges the quality of GNSS observation files.
#include <exception>

#include "host/cli/app.h"
#include "host/cli/config_file.h"
#include "host/cli/exit_codes.h"
#include "host/platform/platform.h"
#include "host/terminal/standard_streams.h"

namespace {

using namespace orsolva_host;

int Run(int argc, char** argv) {
  int exit_code = kWrongUsage;
  const std::unique_ptr<CLI::App> app = MakeApp(exit_code);
  try {
    std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    arguments = WithConfigFile(JoinFormatFiles(arguments));
    app->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app->exit(error) == 0 ? kGood : kWrongUsage;
  } catch (const ConfigError& error) {
    PrintError(error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    PrintError(TextOf(error));
    return kRunFailed;
  }
  return exit_code;
}

}  // namespace

int main(int argc, char** argv) {
  KeepFreedMemory();
  PrepareStreams();
  const int exit_code = Run(argc, argv);
  if (FlushStandardOutput() || exit_code != kGood) return exit_code;
  PrintError("standard output could not be written. Check the room on the disk and what reads it.");
  return kRunFailed;
}
