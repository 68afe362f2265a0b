// Any bytes as a configuration file of orsolva qc. What it is taken for has to be a command line.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "host/cli/app.h"
#include "host/cli/config_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using orsolva_host::ConfigError;

/// The command line made from the file parses, but for flags that exclude each other.
void ParseAsCommandLine(const std::vector<std::string>& arguments) {
  int ignored = 0;
  const std::unique_ptr<CLI::App> app = orsolva_host::MakeApp(ignored);
  app->get_subcommand("qc")->callback([] {});
  std::vector<std::string> reversed = {"file.rnx"};
  reversed.insert(reversed.end(), arguments.rbegin(), arguments.rend());
  reversed.emplace_back("qc");
  try {
    app->parse(reversed);
  } catch (const CLI::ExcludesError&) {
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    orsolva_fuzz::Require(false, "a file that is taken is a command line");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  try {
    ParseAsCommandLine(orsolva_host::ConfigArguments(text, "fuzzed"));
  } catch (const ConfigError& error) {
    const std::string what = error.what();
    orsolva_fuzz::Require(what.compare(0, 7, "fuzzed:") == 0, "an error begins with file and line");
  }
  return 0;
}
