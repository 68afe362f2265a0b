// orsolva qc over many files, its outputs, profiles and configuration, and the other commands.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/cli/commands.h"
#include "host/cli/config_file.h"
#include "host/cli/exit_codes.h"
#include "host/judging/inputs.h"
#include "host/terminal/progress_line.h"
#include "tests/host/folder.h"
#include "tests/host/program.h"
#include "tests/support/json_reader.h"

namespace {

namespace fs = std::filesystem;
using json = orsolva_test::Json;
using orsolva_test::Answer;
using orsolva_test::DataFile;
using orsolva_test::Folder;
using orsolva_test::Orsolva;
using orsolva_test::ReadText;

std::string Quarter() { return DataFile("SEPT078M.21O"); }
std::string QuarterNavigation() { return DataFile("SEPT078M.21P"); }

/// Three stations: two good ones and a broken one.
void FillNetwork(const Folder& folder) {
  fs::copy_file(Quarter(), folder / "SEPA078M.21O");
  fs::copy_file(Quarter(), folder / "SEPB078M.21O");
  std::ofstream(folder / "SEPC078M.21O") << "nothing of RINEX\n";
  fs::copy_file(QuarterNavigation(), folder / "SEPT078M.21P");
}

TEST(ManyFiles, AFailingFileStopsNoOtherAndIsListedWithItsError) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  const Answer a = Orsolva("qc --no-config " + folder.Path() + " --jobs 3");
  EXPECT_EQ(a.code, 1);
  EXPECT_NE(a.out.find("NETWORK (3 files, 2 read, 1 failed; worst first)"), std::string::npos) << a.out;
  const std::size_t table = a.out.find("NETWORK");
  EXPECT_LT(a.out.find("SEPC078M.21O", table), a.out.find("SEPA078M.21O", table));
  EXPECT_NE(a.err.find("SEPC078M.21O"), std::string::npos) << a.err;
}

TEST(ManyFiles, OutputIsTheSameForAnyNumberOfJobs) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  const std::string pattern = " '" + (folder / "SEP?078M.21O") + "' ";
  const Answer one = Orsolva("qc --no-config --csv --jobs 1" + pattern);
  const Answer many = Orsolva("qc --no-config --csv --jobs 4" + pattern);
  EXPECT_EQ(one.out, many.out);
  EXPECT_EQ(one.err, many.err);
  EXPECT_NE(one.out.find("SEPB078M.21O"), std::string::npos);
}

TEST(ManyFiles, AFolderGetsEveryFormatAndNoHalfFiles) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  const Folder out;
  const std::string into = out / "new/reports";
  const Answer a = Orsolva("qc --no-config --quiet " + folder.Path() + " --output " + into);
  EXPECT_EQ(a.code, 1);
  EXPECT_TRUE(a.out.empty());
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(into)) names.insert(entry.path().filename().string());
  EXPECT_EQ(names, (std::set<std::string>{"SEPA078M.21O.json", "SEPA078M.21O.sum", "SEPA078M.21O.txt",
                                          "SEPB078M.21O.json", "SEPB078M.21O.sum", "SEPB078M.21O.txt",
                                          "network.csv", "network.txt"}));
  EXPECT_EQ(json::parse(ReadText(into + "/SEPA078M.21O.json"))["run"]["epochs"], 900);
}

TEST(ManyFiles, HaveAnIndexOfTheirPages) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  const Folder out;
  const std::string files = " --quiet " + folder.Path() + " --output " + (out / "pages");
  EXPECT_EQ(Orsolva("qc --no-config --formats html" + files).code, 1);
  const std::string beside = ReadText(out / "pages/index.html");
  EXPECT_NE(beside.find("\"page\": \"SEPA078M.21O.html\""), std::string::npos);
  EXPECT_TRUE(fs::exists(out / "pages/SEPA078M.21O.html"));
  EXPECT_FALSE(fs::exists(out / "pages/SEPC078M.21O.html"));
  fs::remove_all(out / "pages");
  EXPECT_EQ(Orsolva("qc --no-config --formats sum --html " + (out / "all.html") + files).code, 1);
  const std::string above = ReadText(out / "all.html");
  EXPECT_NE(above.find("\"page\": \"pages/SEPA078M.21O.html\""), std::string::npos);
  EXPECT_TRUE(fs::exists(out / "pages/SEPA078M.21O.html"));
  EXPECT_FALSE(fs::exists(out / "pages/index.html"));
}

TEST(ManyFiles, AnIndexNeedsAFolderForThePagesAndANameOfItsOwn) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  const Folder out;
  const std::string many = "qc --no-config " + folder.Path() + " --html ";
  EXPECT_EQ(Orsolva(many + (out / "index.html")).code, 2);
  EXPECT_EQ(Orsolva(many + (out / "SEPA078M.21O.html") + " --output " + out.Path()).code, 2);
  EXPECT_EQ(Orsolva("qc --no-config " + folder.Path() + " --detail " + (out / "d.csv")).code, 2);
  EXPECT_TRUE(out.Names().empty());
}

TEST(Network, IsAPageWithoutLinksWhereNoPagesAreWritten) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  const Folder out;
  EXPECT_EQ(Orsolva("qc --no-config --quiet " + folder.Path() + " --network " + (out / "n.html")).code, 1);
  const std::string page = ReadText(out / "n.html");
  EXPECT_NE(page.find("SEPA078M.21O"), std::string::npos);
  EXPECT_EQ(page.find("\"page\": \""), std::string::npos);
}

TEST(Navigation, ThatWasFoundIsNamedInANoticeAndThatNamedIsNot) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  fs::copy_file(Quarter(), folder / "SEPT078M.21O");
  fs::copy_file(QuarterNavigation(), folder / "SEPT078M.21P");
  const auto notices = [&folder](const std::string& named) {
    const json report =
        json::parse(Orsolva("qc --no-config --json " + (folder / "SEPT078M.21O") + named).out);
    EXPECT_EQ(report["run"]["navigation_files"], json::array({folder / "SEPT078M.21P"}));
    std::string files;
    for (const json& notice : report["notices"]) {
      const auto text = notice["text"].get<std::string>();
      if (text.find("no navigation file is named") != std::string::npos)
        files += notice["file"].get<std::string>();
    }
    return files;
  };
  EXPECT_EQ(notices(""), folder / "SEPT078M.21P");
  EXPECT_EQ(notices(" " + (folder / "SEPT078M.21P")), "");
}

TEST(ManyFiles, ShareNavigationFromStandardInputAndTheNoticesAboutIt) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  // A line too short for its record: a notice of the reader, in every report.
  std::ofstream(folder / "odd.21P") << ReadText(QuarterNavigation()) << "G99 short\n";
  const std::string files = " '" + (folder / "SEP[AB]078M.21O") + "'";
  const json reports = json::parse(Orsolva("qc --no-config --json --nav -" + files, folder / "odd.21P").out);
  ASSERT_EQ(reports.size(), 2U);
  const auto alone = [&](const std::string& file) {
    return json::parse(Orsolva("qc --no-config --json --nav - " + (folder / file), folder / "odd.21P").out);
  };
  EXPECT_EQ(reports[0], alone("SEPA078M.21O"));
  EXPECT_EQ(reports[1], alone("SEPB078M.21O"));
  EXPECT_FALSE(reports[1]["notices"].empty());
}

TEST(ManyFiles, AllHaveTheErrorOfNavigationThatCannotBeRead) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  FillNetwork(folder);
  std::ofstream(folder / "such.nav") << "nothing of RINEX\n";
  const Answer a =
      Orsolva("qc --no-config --sum '" + (folder / "SEP[AB]078M.21O") + "' --nav " + (folder / "such.nav"));
  EXPECT_EQ(a.code, 1);
  for (const char* file : {"SEPA078M.21O", "SEPB078M.21O"}) {
    const std::size_t line = a.out.find("#FAILED " + (folder / file));
    ASSERT_NE(line, std::string::npos) << a.out;
    EXPECT_NE(a.out.find("/such.nav", line), std::string::npos);
  }
  const std::string heading = "orsolva: 2 files: " + (folder / "such.nav") + ":1: ";
  EXPECT_NE(a.err.find(heading), std::string::npos) << a.err;
}

TEST(ManyFiles, AreListedBelowTheCauseThatTheyShare) {
  const Folder folder;
  for (const char* name : {"a.rnx", "b.rnx"}) std::ofstream(folder / name) << "nothing of RINEX\n";
  std::ofstream(folder / "c.rnx");
  const Answer a =
      Orsolva("qc --no-config --quiet " + folder / "a.rnx" + " " + folder / "c.rnx" + " " + folder / "b.rnx");
  EXPECT_EQ(a.code, 1);
  const std::string files =
      "\n  " + (folder / "a.rnx") + "\n  " + (folder / "b.rnx") + "\norsolva: " + (folder / "c.rnx") + ":";
  EXPECT_EQ(a.err.find("orsolva: 2 files: found \"nothing of RINEX\", expected "), 0U) << a.err;
  EXPECT_NE(a.err.find(files), std::string::npos) << a.err;
}

TEST(StandardInput, IsTakenOnceOnly) {
  ORSOLVA_NEED_FILE(Quarter());
  for (const char* twice : {"- --nav -", "- -", "a.rnx --nav - --nav -"}) {
    const Answer a = Orsolva(std::string("qc --no-config ") + twice, Quarter());
    EXPECT_EQ(a.code, 2) << twice;
    EXPECT_NE(a.err.find("standard input can be read once only"), std::string::npos) << a.err;
    EXPECT_TRUE(a.out.empty());
  }
  EXPECT_EQ(Orsolva("qc --no-config --quiet - --nav " + QuarterNavigation(), Quarter()).code, 0);
  EXPECT_EQ(Orsolva("qc --no-config --quiet --nav - " + Quarter(), QuarterNavigation()).code, 0);
}

TEST(Coverage, HoldsTheJudgedSystemsOnly) {
  ORSOLVA_NEED_FILE(Quarter());
  const std::string files = " " + Quarter() + " " + QuarterNavigation();
  const auto letters = [&files](const std::string& options) {
    const json run = json::parse(Orsolva("qc --no-config --json " + options + files).out)["run"];
    std::set<std::string> found;
    for (const json& row : run["navigation_coverage"])
      found.insert(row["satellite"].get<std::string>().substr(0, 1));
    return found;
  };
  EXPECT_GT(letters("").size(), 1U);
  EXPECT_EQ(letters("--systems G"), std::set<std::string>{"G"});
}

TEST(Verdicts, AFailedOneIsThree) {
  ORSOLVA_NEED_FILE(Quarter());
  EXPECT_EQ(Orsolva("qc --no-config --quiet --profile network " + Quarter()).code, 0);
  const Folder folder;
  std::ofstream(folder / "hard.toml")
      << "name='hard'\ntitle='t'\n[[criterion]]\nname='strong'\nfigure='snr'\n"
         "scope='system'\nsystems='G'\nsignals=['L1']\n"
         "at_least={good=70,fair=60}\nsource='s'\n";
  const Answer a = Orsolva("qc --no-config --profile " + (folder / "hard.toml") + " " + Quarter());
  EXPECT_EQ(a.code, 3) << a.err;
  EXPECT_NE(a.out.find("fail G L1 strong: "), std::string::npos) << a.out;
  EXPECT_NE(a.out.find("below the limit of 60.000 dB-Hz"), std::string::npos) << a.out;
  EXPECT_EQ(Orsolva("qc --no-config --profile nonesuch " + Quarter()).code, 2);
}

TEST(Config, FlagsOverrideTheFileAndTheFileOverridesDefaults) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string file = folder / "c.toml";
  std::ofstream(file) << "[qc]\nelevation = 20\ninterval = 5\nsystems = \"GE\"\njson = true\n";
  const Answer a = Orsolva("qc --config " + file + " --elevation 15 " + Quarter());
  ASSERT_EQ(a.code, 0) << a.err;
  const json run = json::parse(a.out)["run"];
  EXPECT_EQ(run["elevation_cutoff_deg"], 15);
  EXPECT_EQ(run["interval_s"], 5);
  EXPECT_EQ(run["systems"], "GE");
}

TEST(Config, MistakesAreNamedWithTheirLineAndAreTwo) {
  const Folder folder;
  const std::string file = folder / "c.toml";
  for (const char* wrong : {"[qc]\nelevatoin = 20\n", "[qc]\nelevation = \"steep\"\n",
                            "[oc]\nelevation = 20\n", "[qc]\nelevation = \n", "[qc]\nsystems = [[1]]\n"}) {
    std::ofstream(file) << wrong;
    const Answer a = Orsolva("qc --config " + file + " a.rnx");
    EXPECT_EQ(a.code, 2) << wrong;
    const std::string line = std::string(wrong).find("[oc]") == 0 ? ":1: " : ":2: ";
    EXPECT_NE(a.err.find(file + line), std::string::npos) << a.err;
  }
  EXPECT_EQ(Orsolva("qc --config " + (folder / "none.toml") + " a.rnx").code, 2);
}

TEST(Config, AKeyOfManyPartsIsRefusedBeforeItUsesUpTheStack) {
  std::string text = "[qc]\n";
  for (int i = 0; i < 300000; ++i) text += "a.";
  EXPECT_THROW(orsolva_host::SetFromConfig(orsolva_host::QcCommand(), text + "a = 1\n", "c.toml"),
               orsolva_host::ConfigError);
}

TEST(Config, OptionsThatExcludeEachOtherAreRefusedWhereverTheyAreSet) {
  const Folder folder;
  const std::string file = folder / "c.toml";
  std::ofstream(file) << "[qc]\nquiet = true\n";
  const Answer a = Orsolva("qc --config " + file + " --verbose a.rnx");
  EXPECT_EQ(a.code, 2);
  EXPECT_NE(a.err.find("--verbose excludes --quiet"), std::string::npos) << a.err;
  std::ofstream(file) << "[qc]\nquiet = false\n";
  EXPECT_EQ(Orsolva("qc --config " + file + " --verbose /no/such.rnx").code, 1);
}

TEST(Config, ThePrintedDefaultsAreTakenAndChangeNothing) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  std::istringstream lines(Orsolva("config").out);
  std::ofstream file(folder / "c.toml");
  int keys = 0;
  for (std::string line; std::getline(lines, line);) {
    const bool key = line.size() > 1 && line[0] == '#' && line[1] != ' ';
    keys += key ? 1 : 0;
    file << (key ? line.substr(1) : line) << "\n";
  }
  file.close();
  EXPECT_GT(keys, 20);
  EXPECT_EQ(Orsolva("qc --config " + (folder / "c.toml") + " " + Quarter()).out,
            Orsolva("qc --no-config " + Quarter()).out);
}

TEST(Explain, GivesFormulaWindowResetCutoffDenominatorAndSource) {
  const Answer a = Orsolva("explain mp1");
  EXPECT_EQ(a.code, 0);
  for (const char* part : {"Formula ", "Window ", "Reset ", "Cut-off ", "Denominator ", "Source "}) {
    EXPECT_NE(a.out.find(std::string("\n") + part), std::string::npos) << part;
  }
  EXPECT_NE(Orsolva("explain").out.find("completeness_ratio"), std::string::npos);
  const Answer wrong = Orsolva("explain completness");
  EXPECT_EQ(wrong.code, 2);
  EXPECT_NE(wrong.err.find("completeness_ratio"), std::string::npos);
}

TEST(Inspect, NeedsNoNavigation) {
  ORSOLVA_NEED_FILE(DataFile("GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz"));
  const Answer a = Orsolva("inspect " + DataFile("GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz"));
  EXPECT_EQ(a.code, 0) << a.err;
  for (const char* part : {"Hatanaka-compressed (CRINEX) observations", "Marker", "First epoch", "GPS ",
                           "signals 1C=", "Notices"}) {
    EXPECT_NE(a.out.find(part), std::string::npos) << part << a.out;
  }
  EXPECT_EQ(Orsolva("inspect /no/such/file").code, 1);
}

/// "--name" of every flag in a help text.
std::set<std::string> FlagsIn(const std::string& help) {
  std::set<std::string> flags;
  for (std::size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2)) {
    const std::size_t end = help.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at);
    if (end > at + 3) flags.insert(help.substr(at, end - at));
  }
  return flags;
}

TEST(ShellTexts, HoldEveryCommandAndEveryFlag) {
  std::string manual = Orsolva("manual").out;
  manual.erase(std::remove(manual.begin(), manual.end(), '\\'), manual.end());
  const std::string bash = Orsolva("completion bash").out;
  const std::string zsh = Orsolva("completion zsh").out;
  const std::string fish = Orsolva("completion fish").out;
  const std::string help = Orsolva("--help").out;
  std::istringstream commands(help.substr(help.find("Commands:")));
  std::string line;
  std::getline(commands, line);
  int count = 0;
  while (std::getline(commands, line) && line.compare(0, 2, "  ") == 0) {
    const std::string command = line.substr(2, line.find(' ', 2) - 2);
    if (command.empty()) continue;
    ++count;
    EXPECT_NE(manual.find(".SS " + command + "\n"), std::string::npos) << command;
    for (const std::string& flag : FlagsIn(Orsolva(command + " --help").out)) {
      EXPECT_NE(manual.find(".B " + flag), std::string::npos) << flag;
      EXPECT_NE(bash.find(flag), std::string::npos) << flag;
      EXPECT_NE(zsh.find(flag), std::string::npos) << flag;
      EXPECT_NE(fish.find("-l " + flag.substr(2) + " "), std::string::npos) << flag;
    }
  }
  EXPECT_GE(count, 8);
  EXPECT_EQ(Orsolva("completion tcsh").code, 2);
}

TEST(ShellTexts, BashCompletesCommandsFlagsAndChoices) {
  const Folder folder;
  std::ofstream(folder / "c.bash") << Orsolva("completion bash").out;
  const auto completed = [&folder](const std::string& words) {
    const std::string out = folder / "out";
    const std::string script = "source " + (folder / "c.bash") + "; COMP_WORDS=(" + words +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _orsolva; echo ${COMPREPLY[*]}";
    const int status = std::system(("bash -c '" + script + "' >" + out).c_str());
    return status == 0 ? ReadText(out) : "failed";
  };
  EXPECT_EQ(completed("orsolva ins"), "inspect\n");
  EXPECT_EQ(completed("orsolva qc --elev"), "--elevation\n");
  EXPECT_EQ(completed("orsolva qc --profile netw"), "network\n");
  EXPECT_EQ(completed("orsolva explain mp_rm"), "mp_rms_m\n");
}

TEST(ExitCodes, AreListedInHelpManualAndDocumentation) {
  const std::string help = Orsolva("--help").out;
  const std::string manual = Orsolva("manual").out;
  const std::string page = ReadText(std::string(ORSOLVA_SOURCE_DIR) + "/docs/user/command.md");
  for (int i = 0; i < orsolva_host::kExitCodeCount; ++i) {
    const orsolva_host::ExitCode& row = orsolva_host::kExitCodes[i];
    EXPECT_NE(help.find(row.meaning), std::string::npos) << row.code;
    EXPECT_NE(page.find("| " + std::to_string(row.code) + " | " + row.meaning + " |"), std::string::npos)
        << row.code;
    EXPECT_NE(manual.find(".B " + std::to_string(row.code) + "\n"), std::string::npos) << row.code;
  }
}

TEST(Progress, TheLineHasPartRateAndTimeLeft) {
  orsolva_host::ProgressState s;
  s.files = 8;
  s.files_done = 3;
  s.epochs = 3000;
  s.bytes = 50;
  s.bytes_of = 200;
  s.seconds = 10;
  EXPECT_EQ(orsolva_host::ProgressLine(s),
            "[#####---------------]  25 %  3/8 files  3000 epochs  300 epochs/s  0:30 left");
  s.bytes_of = 0;
  EXPECT_EQ(orsolva_host::ProgressLine(s), "3/8 files  3000 epochs  300 epochs/s");
}

TEST(Inputs, AMistypedNavigationFileIsNotReplacedByAnother) {
  const orsolva_host::RunInputs inputs =
      orsolva_host::InputsOf({"/no/a.rnx", "/no/b.20o", "/no/typo.nav"}, {"n"});
  EXPECT_EQ(inputs.observations, (std::vector<std::string>{"/no/a.rnx", "/no/b.20o"}));
  EXPECT_EQ(inputs.navigation, (std::vector<std::string>{"/no/typo.nav", "n"}));
}

TEST(Explain, SaysOfAProfileWhereEveryLimitComesFrom) {
  for (const std::string name : {"network", "station", "reference", "rtk", "phone"}) {
    const Answer a = Orsolva("explain " + name);
    EXPECT_EQ(a.code, 0) << a.err;
    EXPECT_EQ(a.out.find(name + "  [profile]\n"), 0U) << a.out;
    EXPECT_NE(a.out.find("good at "), std::string::npos) << a.out;
  }
  const Answer rtk = Orsolva("explain rtk");
  EXPECT_NE(rtk.out.find("completeness: cutoff_completeness_ratio of each system\n"
                         "  good at least 0.98, fair at least 0.9\n  Own choice: "),
            std::string::npos)
      << rtk.out;
  EXPECT_NE(Orsolva("explain phone")
                .out.find("code_noise_m of each signal of G, E, C: 1C, 2I\n"
                          "  good at most 3, fair at most 8 m\n"),
            std::string::npos);
}

}  // namespace
