// orsolva: judges the quality of GNSS observation files.
#include <cstdio>
#include <exception>

#include "host/cli/app.h"
#include "host/cli/config_file.h"
#include "host/cli/exit_codes.h"
#include "host/platform/platform.h"

int main(int argc, char** argv) {
  using namespace orsolva_host;
  PrepareStreams();
  int exit_code = kWrongUsage;
  const std::unique_ptr<CLI::App> app = MakeApp(exit_code);
  try {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    arguments = WithConfigFile(JoinFormatFiles(arguments));
    app->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app->exit(error) == 0 ? kGood : kWrongUsage;
  } catch (const ConfigError& error) {
    std::fprintf(stderr, "orsolva: %s\n", error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orsolva: %s\n", error.what());
    return kRunFailed;
  }
  return exit_code;
}
