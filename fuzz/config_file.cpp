// Any bytes as a configuration file of orsolva qc. Every value that is taken from it is one that the command
// line takes as well.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/cli/config_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orsolva_host;

/// The values set from a file, as arguments of a command line.
std::vector<std::string> AsArguments(const std::vector<GivenValue>& values) {
  std::vector<std::string> arguments = {"qc", "file.rnx"};
  for (const GivenValue& value : values) {
    const bool bare = value.option->kind == OptionKind::kReport && value.text == "-";
    arguments.push_back("--" + value.option->name + (bare ? "" : "=" + value.text));
  }
  return arguments;
}

void SetAsCommandLine(const std::vector<GivenValue>& values) {
  static const std::vector<Command> commands = AllCommands();
  try {
    const CommandLine line = ParseCommandLine(commands, AsArguments(values));
    orsolva_fuzz::Require(line.command != nullptr, "values of a file are a command line");
    SetValues(line.values);
  } catch (const UsageError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    orsolva_fuzz::Require(false, "the command line takes the values of a file");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const Command command = QcCommand();
  try {
    SetAsCommandLine(SetFromConfig(command, text, "fuzzed"));
  } catch (const ConfigError& error) {
    const std::string what = error.what();
    orsolva_fuzz::Require(what.compare(0, 7, "fuzzed:") == 0, "an error begins with file and line");
  }
  return 0;
}
