// The rows of the commands' options, and what is made from them.
#include "host/cli/option.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/cli/config_file.h"
#include "host/cli/help_text.h"
#include "tests/support/kept_table.h"

namespace {

using namespace orsolva_host;

TEST(Options, HaveAHelpOfOneSentenceAndANameOfTheirOwn) {
  for (const Command& command : AllCommands()) {
    std::set<std::string> names;
    for (const Option& row : command.options) {
      EXPECT_TRUE(names.insert(row.name).second) << command.name << " " << row.name;
      EXPECT_FALSE(row.help.empty()) << command.name << " " << row.name;
      EXPECT_NE(row.help.back(), '.') << command.name << " " << row.name;
      EXPECT_EQ(row.TakesValue(), !row.argument.empty()) << command.name << " " << row.name;
    }
  }
}

TEST(Options, TakeTheirOwnDefaults) {
  for (const Command& command : AllCommands()) {
    for (const Option& row : command.options) {
      if (row.default_text.empty()) continue;
      EXPECT_EQ(row.set(row.default_text), "") << command.name << " " << row.name;
    }
  }
}

TEST(Options, OfNumbersKeepToTheirRange) {
  double degrees = 10;
  const Option row = Number("elevation", "DEGREES", 0, 90, degrees, "h");
  EXPECT_EQ(row.HelpWithDefault(), "h (0 to 90; default: 10)");
  EXPECT_EQ(row.set("90"), "");
  EXPECT_EQ(degrees, 90);
  for (const char* wrong : {"90.1", "-1", "steep", "nan", ""}) EXPECT_NE(row.set(wrong), "") << wrong;
  EXPECT_EQ(degrees, 90);
  unsigned jobs = 0;
  const Option whole = WholeNumber("jobs", "NUMBER", 8, jobs, "h");
  EXPECT_EQ(whole.set("8"), "");
  EXPECT_EQ(jobs, 8U);
  for (const char* wrong : {"9", "-1", "1.5", "two"}) EXPECT_NE(whole.set(wrong), "") << wrong;
}

TEST(Options, TheLaterValueOverridesAndListsGrow) {
  const std::vector<Command> commands = AllCommands();
  const CommandLine line = ParseCommandLine(
      commands, {"qc", "a.rnx", "--nav", "n1", "b.rnx", "--elevation=5", "--nav=n2", "--elevation", "7"});
  ASSERT_NE(line.command, nullptr);
  std::vector<std::string> given;
  for (const GivenValue& value : line.values) given.push_back(value.option->name + "=" + value.text);
  EXPECT_EQ(given, (std::vector<std::string>{"FILES=a.rnx", "FILES=b.rnx", "nav=n1", "nav=n2", "elevation=5",
                                             "elevation=7"}));
}

TEST(Options, AMistypedEarlierValueIsRefusedToo) {
  const std::vector<Command> commands = AllCommands();
  const CommandLine line = ParseCommandLine(commands, {"qc", "a.rnx", "--elevation=x", "--elevation=7"});
  ASSERT_NE(line.command, nullptr);
  EXPECT_THROW(SetValues(line.values), UsageError);
}

TEST(Options, ThatExcludeEachOtherAreRefusedUnlessOneIsOff) {
  const Command qc = QcCommand();
  const auto check = [&qc](const char* quiet, const char* verbose) {
    CheckExclusions({{qc.Find("quiet"), quiet}, {qc.Find("verbose"), verbose}});
  };
  EXPECT_THROW(check("true", "true"), UsageError);
  EXPECT_NO_THROW(check("false", "true"));
  EXPECT_NO_THROW(check("true", "false"));
}

TEST(CommandLine, AFormatFlagTakesTheNextArgumentWithItsEnding) {
  const std::vector<std::string> joined =
      JoinFormatFiles({"qc", "--json", "r.json", "--csv", "r.json", "--html", "p.html", "--sum"});
  EXPECT_EQ(joined, (std::vector<std::string>{"qc", "--json=r.json", "--csv", "r.json", "--html", "p.html",
                                              "--sum"}));
}

TEST(Config, SetsThroughTheRows) {
  const Command qc = QcCommand();
  const std::vector<GivenValue> values =
      SetFromConfig(qc, "[qc]\nnav = ['a', 'b']\njson = true\ncsv = false\nelevation = 5\n", "c.toml");
  std::vector<std::string> given;
  for (const GivenValue& value : values) given.push_back(value.option->name + "=" + value.text);
  EXPECT_EQ(given, (std::vector<std::string>{"elevation=5", "json=-", "nav=a", "nav=b"}));
}

TEST(Config, RefusesWhatBelongsToTheCommandLine) {
  for (const char* key : {"config = 'a'", "no-config = true", "help = true", "FILES = 'a'"}) {
    EXPECT_THROW(SetFromConfig(QcCommand(), std::string("[qc]\n") + key + "\n", "c.toml"), ConfigError)
        << key;
  }
}

TEST(Config, PrintsTheRangesAndWordsOfItsKeys) {
  const std::string text = DefaultConfig(QcCommand());
  EXPECT_NE(text.find("(0 to 90)\n#elevation = 10\n"), std::string::npos) << text;
  EXPECT_NE(text.find("(auto, always, never)\n#color = \"auto\"\n"), std::string::npos) << text;
}

TEST(Help, KeepsToEightyColumns) {
  std::vector<std::string> texts = {ProgramHelp(AllCommands())};
  for (const Command& command : AllCommands()) texts.push_back(CommandHelp(command));
  for (const std::string& text : texts) {
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
      end = std::min(text.find('\n', begin), text.size());
      EXPECT_LE(end - begin, 80U) << text.substr(begin, end - begin);
    }
  }
}

TEST(Help, ListsTheExitCodesThatTheCommandCanReturn) {
  const auto codes = [](const Command& command) {
    std::istringstream lines(CommandHelp(command).substr(CommandHelp(command).find("Exit codes:\n") + 12));
    std::vector<int> found;
    for (std::string line; std::getline(lines, line);) found.push_back(std::stoi(line));
    return found;
  };
  EXPECT_EQ(codes(QcCommand()), (std::vector<int>{0, 1, 2, 3, 130, 143}));
  EXPECT_EQ(codes(SimulateCommand()), (std::vector<int>{0, 1, 2, 130, 143}));
  EXPECT_EQ(codes(InspectCommand()), (std::vector<int>{0, 1, 2}));
}

TEST(Help, NamesTheCompressionOfObservations) {
  const std::string help = CommandHelp(QcCommand());
  EXPECT_NE(help.find("CRINEX"), std::string::npos);
  EXPECT_NE(help.find("Hatanaka"), std::string::npos);
}

/// A text in a cell of a table.
std::string Cell(std::string text) {
  for (std::size_t at = text.find('|'); at != std::string::npos; at = text.find('|', at + 2))
    text.insert(at, "\\");
  return text;
}

TEST(OptionsPage, ListsTheOptionsOfEveryCommand) {
  std::string page = "\n";
  for (const Command& command : AllCommands()) {
    if (command.options.size() == 1) continue;  // --help alone
    page += "### orsolva " + command.name + "\n\n" + command.description +
            ".\n\n| option | meaning |\n|---|---|\n";
    for (const Option& row : command.options) {
      page += "| `" + Cell(row.Usage()) + "` | " + Cell(row.HelpWithDefault()) + " |\n";
    }
    page += "\n";
  }
  orsolva_test::HoldTable(std::string(ORSOLVA_SOURCE_DIR) + "/docs/user/command.md",
                          "<!-- options begin -->\n", "<!-- options end -->", page);
}

}  // namespace
