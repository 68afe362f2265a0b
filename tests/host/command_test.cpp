// The built program, as a user or a script calls it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>

#include "tests/host/folder.h"
#include "tests/host/program.h"
#include "tests/host/shared_data.h"
#include "tests/support/json_reader.h"

namespace {

using json = orsolva_test::Json;
using orsolva_test::Answer;
using orsolva_test::DataFile;
using orsolva_test::Orsolva;
using orsolva_test::ReadText;

std::string StationDay() {
  return DataFile("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz") + " " +
         DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz");
}

std::string QuarterHour() { return DataFile("SEPT078M.21O") + " " + DataFile("SEPT078M.21P"); }

TEST(Command, VersionPrintsTheBanner) {
  const Answer a = Orsolva("version");
  EXPECT_EQ(a.code, 0);
  EXPECT_EQ(a.out.find("library    name: libOrsolva_cbb\nlibrary version: V1.2.9\n"), 0U);
  EXPECT_TRUE(a.err.empty());
}

TEST(Command, VersionIsAlsoAnOption) {
  const Answer a = Orsolva("--version");
  EXPECT_EQ(a.code, 0);
  EXPECT_EQ(a.out, Orsolva("version").out);
}

TEST(Command, HelpIsGoodAndWrongUsageIsTwo) {
  EXPECT_EQ(Orsolva("--help").code, 0);
  EXPECT_EQ(Orsolva("qc --help").code, 0);
  for (const char* wrong :
       {"", "frobnicate", "qc", "qc a.rnx --no-such-option", "qc a.rnx --elevation steep",
        "qc a.rnx --elevation 91", "qc a.rnx --interval 0", "qc a.rnx --interval nan",
        "qc a.rnx --position here", "qc a.rnx --position 1,2", "qc a.rnx --position 1,2,3",
        "qc a.rnx --position 4e6,nan,4e6", "qc a.rnx --systems GX", "qc a.rnx --systems GG",
        "qc a.rnx --exclude G99", "qc a.rnx --exclude Gxx", "qc a.rnx --max-size 0", "qc a.rnx --max-size 8X",
        "qc a.rnx --max-size 99999999T"}) {
    const Answer a = Orsolva(wrong);
    EXPECT_EQ(a.code, 2) << wrong;
    EXPECT_FALSE(a.err.empty()) << wrong;
    EXPECT_TRUE(a.out.empty()) << wrong;
  }
}

TEST(Command, WrongUsageIsNamedInTheWordsOfTheProgram) {
  const auto said = [](const std::string& arguments) { return Orsolva(arguments).err; };
  const std::string more = "\nRun with --help for more information.\n";
  EXPECT_EQ(said("qc"), "orsolva: the argument FILES is missing" + more);
  EXPECT_EQ(said("qc --bogus"), "orsolva: there is no option '--bogus'" + more);
  EXPECT_EQ(said("qc a.rnx --bogus=3"), "orsolva: there is no option '--bogus=3'" + more);
  EXPECT_EQ(said("--bogus"), "orsolva: there is no option '--bogus'" + more);
  EXPECT_EQ(said("qc a.rnx --elevation"), "orsolva: --elevation needs a value" + more);
  EXPECT_EQ(said("qc a.rnx --nav"), "orsolva: --nav needs a value" + more);
  EXPECT_EQ(said("qc a.rnx --elevation --sats"), "orsolva: --elevation needs a value" + more);
  EXPECT_EQ(said("qc a.rnx --html --sats"), "orsolva: --html needs a value" + more);
  EXPECT_EQ(said("version now"), "orsolva: 'now' is one argument too many" + more);
  EXPECT_EQ(said("qc a.rnx --elevation 91"),
            "orsolva: --elevation: '91' is not a number from 0 to 90" + more);
}

TEST(Command, FailedRunsAreOneAndSayWhatToDo) {
  const Answer missing = Orsolva("qc /nonexistent.rnx /nonexistent.nav");
  EXPECT_EQ(missing.code, 1);
  EXPECT_NE(missing.err.find("/nonexistent.nav: no such file. Check the name"), std::string::npos)
      << missing.err;
  EXPECT_TRUE(missing.out.empty());
}

TEST(Command, AMistypedNameIsNoSuchFileWhateverTheFileWasToHold) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  for (const char* name : {"/no/such.nav", "/no/BRDC00IGS_R_20210780000_01D_MN.rnx.gz", "/no/brdc0780.21n"}) {
    const Answer a = Orsolva("qc --no-config " + DataFile("SEPT078M.21O") + " " + name);
    EXPECT_EQ(a.code, 1);
    EXPECT_EQ(a.err, std::string("orsolva: ") + name + ": no such file. Check the name and the folder.\n");
    EXPECT_EQ(a.out, "") << "no other navigation takes its place";
  }
}

TEST(Command, ARunWithoutNavigationSaysSo) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "orsolva_alone";
  std::filesystem::create_directories(folder);
  const std::filesystem::path alone = folder / "SEPT078M.21O";
  std::filesystem::copy_file(DataFile("SEPT078M.21O"), alone,
                             std::filesystem::copy_options::overwrite_existing);
  const Answer a = Orsolva("qc " + alone.string());
  const Answer strict = Orsolva("qc --strict " + alone.string());
  std::filesystem::remove_all(folder);
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_NE(a.out.find("BRDC00IGS_R_20210780000_01D_MN.rnx.gz"), std::string::npos) << a.out;
  EXPECT_EQ(strict.code, 1);
  EXPECT_NE(strict.err.find("No navigation file is named"), std::string::npos) << strict.err;
}

TEST(Command, NavigationBesideTheObservationsIsFoundAndNamed) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc --json " + DataFile("SEPT078M.21O"));
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_NE(a.out.find("SEPT078M.21P"), std::string::npos);
  EXPECT_NE(a.out.find("next to the observation file"), std::string::npos);
}

TEST(Command, NavigationMayBeNamedByItsFolder) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const orsolva_test::Folder folder;
  for (const char* name : {"SEPT078M.21P", "KMS300DNK_R_20221591000_01H_MN.rnx.gz"})
    std::filesystem::copy_file(DataFile(name), folder / name);
  const Answer a = Orsolva("qc --json " + DataFile("SEPT078M.21O") + " " + folder.Path());
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(json::parse(a.out)["run"]["navigation_files"].size(), 2U);
}

TEST(Command, ObservationsMayComeFromStandardInput) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc --json - " + DataFile("SEPT078M.21P"), DataFile("SEPT078M.21O"));
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(json::parse(a.out)["run"]["epochs"], 900);
}

TEST(Command, ACompressedFileBeyondTheLimitIsRefusedAndAFlagRaisesTheLimit) {
  ORSOLVA_NEED_FILE(DataFile("KMS300DNK_R_20221591000_01H_MN.rnx.gz"));
  const std::string run = "qc " + DataFile("KMS300DNK_R_20221591000_01H_30S_MO.crx") + " " +
                          DataFile("KMS300DNK_R_20221591000_01H_MN.rnx.gz");
  const Answer refused = Orsolva(run + " --max-size 10K");
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("--max-size"), std::string::npos) << refused.err;
  EXPECT_EQ(Orsolva(run + " --max-size 1M").code, 0);
}

TEST(Command, FilesMayStandInAnyOrder) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc --sum " + DataFile("SEPT078M.21O") + " " + DataFile("SEPT078M.21P"));
  const Answer b = Orsolva("qc --sum " + DataFile("SEPT078M.21P") + " " + DataFile("SEPT078M.21O"));
  EXPECT_EQ(b.code, 0) << b.err;
  EXPECT_EQ(a.out, b.out);
}

TEST(Command, NavigationOfAnotherDayNamesTheOneThatIsMissing) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a =
      Orsolva("qc " + DataFile("SEPT078M.21O") + " " + DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz"));
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_NE(a.out.find("hold no record of the time"), std::string::npos) << a.out;
  EXPECT_NE(a.out.find("BRDC00IGS_R_20210780000_01D_MN.rnx.gz"), std::string::npos) << a.out;
}

TEST(Command, AnIntervalLongerThanTheDatasThinsThemOut) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc --json " + QuarterHour() + " --interval 5");
  ASSERT_EQ(a.code, 0) << a.err;
  const json j = json::parse(a.out);
  EXPECT_EQ(j["run"]["epochs"], 900);
  EXPECT_EQ(j["library"]["run"]["judged_epochs"], 180);
  EXPECT_EQ(j["run"]["interval_source"], "option");
}

TEST(Command, AnIntervalThatGivesNoPlausibleResultIsExplained) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc " + QuarterHour() + " --interval 1.0009");
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_NE(a.out.find("No record by the library"), std::string::npos) << a.out;
  EXPECT_NE(a.out.find("--interval"), std::string::npos) << a.out;
  EXPECT_EQ(Orsolva("qc --strict " + QuarterHour() + " --interval 1.0009").code, 1);
}

TEST(Command, TheStationDayMeetsWhatIsKnownOfIt) {
  ORSOLVA_NEED_FILE(DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz"));
  const Answer a = Orsolva("qc --json " + StationDay());
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_TRUE(a.err.empty()) << a.err;
  const json j = json::parse(a.out);
  EXPECT_EQ(j["run"]["epochs"], 2880);
  EXPECT_EQ(j["library"]["run"]["lost_epochs"], 0);
  EXPECT_EQ(j["library"]["run"]["position_source"], "computed");
  EXPECT_LT(j["library"]["run"]["distance_from_header_position_m"].get<double>(), 5.0);
  EXPECT_EQ(j["library"]["systems"][0]["name"], "GPS");
  EXPECT_GT(j["library"]["systems"][0]["completeness_ratio"].get<double>(), 0.95);
  int bands = 0;
  for (const json& system : j["library"]["systems"]) {
    for (const json& band : system["bands"]) {
      ++bands;
      if (!band["mp_rms_m"].is_null()) {
        EXPECT_GT(band["mp_rms_m"].get<double>(), 0.05);
        EXPECT_LT(band["mp_rms_m"].get<double>(), 1.5);
      }
      if (!band["snr_mean_dbhz"].is_null()) {
        EXPECT_GT(band["snr_mean_dbhz"].get<double>(), 25);
        EXPECT_LT(band["snr_mean_dbhz"].get<double>(), 60);
      }
    }
  }
  EXPECT_GE(bands, 12);
}

TEST(Command, TextKeepsTo80Columns) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc --sats " + QuarterHour());
  ASSERT_EQ(a.code, 0) << a.err;
  std::istringstream lines(a.out);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_NE(a.out.find("SATELLITES"), std::string::npos);
  EXPECT_EQ(a.out.find("nan"), std::string::npos);
}

TEST(Command, OptionsReachTheRun) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva(
      "qc --json --sats --systems GJ --exclude G04,J02 --elevation 15 --position header " + QuarterHour());
  ASSERT_EQ(a.code, 0) << a.err;
  const json j = json::parse(a.out);
  EXPECT_EQ(j["run"]["elevation_cutoff_deg"], 15);
  EXPECT_EQ(j["library"]["run"]["position_source"], "header");
  EXPECT_EQ(j["library"]["run"]["distance_from_header_position_m"], 0);
  ASSERT_EQ(j["library"]["systems"].size(), 2U);
  EXPECT_EQ(j["library"]["systems"][1]["name"], "QZSS");
  bool any = false;
  for (const json& satellite : j["library"]["satellites"]) {
    any = true;
    const bool excluded = satellite["satellite"] == "G04" || satellite["satellite"] == "J02";
    if (excluded) {
      EXPECT_EQ(satellite["state"], "excluded");
    }
  }
  EXPECT_TRUE(any);
}

TEST(Command, APositionMayBeGivenWithNegativeCoordinates) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a = Orsolva("qc --json --position -3962108.4557,3381308.8777,3668678.1749 " + QuarterHour());
  ASSERT_EQ(a.code, 0) << a.err;
  const json j = json::parse(a.out);
  EXPECT_EQ(j["library"]["run"]["position_source"], "option");
  EXPECT_EQ(j["library"]["run"]["position_ecef_m"][0], -3962108.4557);
}

TEST(Command, TheIntervalIsFoundInTheDataWhenTheHeaderHasNone) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  std::string text = ReadText(DataFile("SEPT078M.21O"));
  const std::size_t label = text.find("INTERVAL\n");
  ASSERT_NE(label, std::string::npos);
  text.replace(label, 8, "COMMENT ");
  const std::string path = testing::TempDir() + "orsolva_no_interval.21O";
  std::ofstream(path, std::ios::binary) << text;
  const Answer a = Orsolva("qc --json " + path + " " + DataFile("SEPT078M.21P"));
  std::filesystem::remove(path);
  ASSERT_EQ(a.code, 0) << a.err;
  const json j = json::parse(a.out);
  EXPECT_EQ(j["run"]["interval_source"], "data");
  EXPECT_EQ(j["run"]["interval_s"], 1);
}

TEST(Command, AFileOfMoreThanOneBatchIsStreamed) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const std::string text = ReadText(DataFile("SEPT078M.21O"));
  const std::size_t body = text.find("END OF HEADER\n") + 14;
  std::string hour = text.substr(0, body);
  for (int quarter = 0; quarter < 4; ++quarter) {
    std::istringstream lines(text.substr(body));
    for (std::string line; std::getline(lines, line); hour += line + "\n") {
      if (line[0] == '>')
        line.replace(16, 2, std::to_string(100 + std::stoi(line.substr(16, 2)) + 15 * quarter), 1, 2);
    }
  }
  const std::string path = testing::TempDir() + "orsolva_hour.21O";
  std::ofstream(path, std::ios::binary) << hour;
  const Answer a = Orsolva("qc --json --position header " + path + " " + DataFile("SEPT078M.21P"));
  std::filesystem::remove(path);
  ASSERT_EQ(a.code, 0) << a.err;
  const json j = json::parse(a.out);
  EXPECT_EQ(j["run"]["epochs"], 3600);
  EXPECT_EQ(j["library"]["run"]["judged_epochs"], 3600);
  EXPECT_EQ(j["library"]["run"]["lost_epochs"], 0);
  EXPECT_EQ(j["run"]["last_epoch_gpst"], "2021-03-19 12:59:59.000");
}

/// A copy of the quarter of an hour with one text replaced; gone with the test.
class Changed {
 public:
  Changed(const std::string& name, const std::string& from, const std::string& to)
      : path_(testing::TempDir() + name) {
    std::string text = ReadText(DataFile("SEPT078M.21O"));
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos);
    if (place != std::string::npos) text.replace(place, from.size(), to);
    std::ofstream(path_, std::ios::binary) << text;
  }
  ~Changed() { std::filesystem::remove(path_); }
  Changed(const Changed&) = delete;
  Changed& operator=(const Changed&) = delete;
  std::string Run() const { return "qc --json " + path_ + " " + DataFile("SEPT078M.21P"); }

 private:
  std::string path_;
};

TEST(Command, AHeaderThatSaysAnotherIntervalThanTheDataHaveIsNamed) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Changed file("orsolva_interval.21O", "     1.000 ", "     5.000 ");
  const Answer a = Orsolva(file.Run());
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_NE(a.out.find("an interval of 5 s and the data have 1 s"), std::string::npos);
}

TEST(Command, WhatStandsBeforeAnErrorIsJudgedAndTheErrorIsTheAnswer) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  std::string header = "     2.11           OBSERVATION DATA    M";
  header.resize(60, ' ');
  const std::string epoch = "> 2021 03 19 12 10  0.0000000";
  const Changed file("orsolva_two_forms.21O", epoch, header + "RINEX VERSION / TYPE\n" + epoch);
  const Answer a = Orsolva(file.Run());
  EXPECT_EQ(a.code, 1);
  EXPECT_NE(a.err.find("a second header of another form without observation types"), std::string::npos)
      << a.err;
  EXPECT_EQ(json::parse(a.out)["run"]["epochs"], 600);
}

}  // namespace
