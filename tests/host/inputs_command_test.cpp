// Input files as people have them: from pipes and archives, cut off, in pieces.
#include <archive.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/host/compressed_text.h"
#include "tests/host/folder.h"
#include "tests/host/program.h"
#include "tests/support/json_reader.h"

namespace {

namespace fs = std::filesystem;
using json = orsolva_test::Json;
using orsolva_test::Answer;
using orsolva_test::DataFile;
using orsolva_test::Filtered;
using orsolva_test::Folder;
using orsolva_test::HeaderLine;
using orsolva_test::Orsolva;
using orsolva_test::ReadText;

std::string Quarter() { return DataFile("SEPT078M.21O"); }
std::string QuarterNavigation() { return DataFile("SEPT078M.21P"); }

TEST(Inspect, ReadsFromAPipeWhatItReadsFromAFile) {
  for (const char* name :
       {"SEPT078M.21O", "KMS300DNK_R_20221591000_01H_30S_MO.crx", "SEPT078M.21P",
        "KMS300DNK_R_20221591000_01H_MN.rnx.gz", "GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz"}) {
    const std::string path = DataFile(name);
    ORSOLVA_NEED_FILE(path);
    const auto contents = [](const Answer& a) {
      // Without the name, which a pipe does not have, and what it contradicts.
      return a.out.substr(a.out.find("\nKind"), a.out.find("\nContradiction") - a.out.find("\nKind"));
    };
    const Answer file = Orsolva("inspect " + path), pipe = Orsolva("inspect -", path);
    EXPECT_EQ(pipe.code, 0) << pipe.err;
    EXPECT_EQ(contents(pipe), contents(file)) << name;
  }
}

TEST(Inspect, ShowsGapsAndWhatTheNameContradicts) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string text = ReadText(Quarter());
  const std::size_t first = text.find("> 2021 03 19 12 05  0.0"), next = text.find("> 2021 03 19 12 06  0.0");
  ASSERT_NE(next, std::string::npos);
  std::ofstream(folder / "ABCD00XYZ_R_20210790000_01D_30S_MO.rnx")
      << text.substr(0, first) << text.substr(next);
  const Answer a = Orsolva("inspect " + (folder / "ABCD00XYZ_R_20210790000_01D_30S_MO.rnx"));
  EXPECT_EQ(a.code, 0) << a.err;
  for (const char* part :
       {"Gaps              1 gap, 60 epochs missing\n", "12:04:59.000 to 12:06:00.000, 60 epochs\n",
        "file_name_interval: stated 30 s, found 1 s", "marker: stated SEPT",
        "file_name_start: stated 2021-03-20"}) {
    EXPECT_NE(a.out.find(part), std::string::npos) << part << "\n" << a.out;
  }
  for (std::size_t at = 0; at < a.out.size(); at = a.out.find('\n', at) + 1)
    EXPECT_LE(a.out.find('\n', at) - at, 80U) << a.out.substr(at, 100);
}

TEST(Inspect, ShowsSpansSatellitesAndMessagesOfNavigation) {
  ORSOLVA_NEED_FILE(DataFile("KMS300DNK_R_20221591000_01H_MN.rnx.gz"));
  const Folder folder;
  fs::copy_file(DataFile("KMS300DNK_R_20221591000_01H_MN.rnx.gz"),
                folder / "KMS300DNK_R_20221601000_01H_MN.rnx.gz");
  const Answer a = Orsolva("inspect " + (folder / "KMS300DNK_R_20221601000_01H_MN.rnx.gz"));
  EXPECT_EQ(a.code, 0) << a.err;
  for (const char* part :
       {"navigation, RINEX 4.00", "First reference   2022-06-07", "GPS               ", " LNAV=30",
        " I/NAV=", " FDMA=24", "longest step", "the file name says 2022-06-09, and no reference"}) {
    EXPECT_NE(a.out.find(part), std::string::npos) << part << "\n" << a.out;
  }
}

TEST(CutOff, PlainFilesEndWithTheErrorOfDamageAndAReport) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string text = ReadText(Quarter());
  std::ofstream(folder / "SEPT078M.21O") << text.substr(0, text.size() / 2);
  fs::copy_file(QuarterNavigation(), folder / "SEPT078M.21P");
  const Answer a = Orsolva("qc --no-config --json " + (folder / "SEPT078M.21O"));
  EXPECT_EQ(a.code, 1);
  EXPECT_NE(a.err.find("SEPT078M.21O:"), std::string::npos) << a.err;
  EXPECT_NE(a.err.find(": the file ends within a"), std::string::npos) << a.err;
  EXPECT_GT(json::parse(a.out)["run"]["epochs"].get<int>(), 400);
  EXPECT_EQ(Orsolva("inspect " + (folder / "SEPT078M.21O")).code, 1);

  const std::string records = ReadText(QuarterNavigation());
  std::ofstream(folder / "cut.21P") << records.substr(0, records.size() - 105);
  const Answer cut = Orsolva("qc --no-config " + Quarter() + " " + (folder / "cut.21P"));
  EXPECT_EQ(cut.code, 1);
  EXPECT_NE(cut.err.find("the file ends within a record"), std::string::npos) << cut.err;
}

TEST(Join, MakesOneReportOfTheFilesOfADay) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string text = ReadText(Quarter());
  const std::size_t body = text.find("\n>") + 1, middle = text.find("> 2021 03 19 12 08  0.0");
  std::ofstream(folder / "sept078m00.21O") << text.substr(0, middle);
  std::ofstream(folder / "SEPT078m08.21O") << text.substr(0, body) << text.substr(middle);
  fs::copy_file(QuarterNavigation(), folder / "SEPT078M.21P");
  const json whole = json::parse(Orsolva("qc --no-config --json " + Quarter()).out);
  const Answer a = Orsolva("qc --no-config --json --join day " + folder.Path());
  ASSERT_EQ(a.code, 0) << a.err;
  const json joined = json::parse(a.out);
  EXPECT_EQ(joined["run"]["epochs"], whole["run"]["epochs"]);
  EXPECT_EQ(joined["analysis"]["signals"], whole["analysis"]["signals"]);
  const Answer refused =
      Orsolva("qc --no-config --join day " + folder.Path() + " --json=" + (folder / "SEPT078m08.21O"));
  EXPECT_EQ(refused.code, 2) << "an output would replace the second file of the span";
}

/// The records of one system of a RINEX 3 file.
std::string RecordsOf(char system, const std::string& text) {
  std::istringstream lines(text);
  std::string kept;
  bool header = true, taken = false;
  for (std::string line; std::getline(lines, line);) {
    if (!header && line[0] != ' ') taken = line[0] == system;
    if (header || taken) kept += line + "\n";
    header = header && line.find("END OF HEADER") == std::string::npos;
  }
  return kept;
}

std::string WithoutLine(std::string text, const std::string& label) {
  const std::size_t begin = text.rfind('\n', text.find(label)) + 1;
  return text.erase(begin, text.find('\n', begin) + 1 - begin);
}

TEST(Archives, FilesOfEveryOldHabitGiveTheFiguresOfTheGoodFile) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string good = ReadText(Quarter()), records = ReadText(QuarterNavigation());
  // No position; an event with header lines, and a splice: the file goes on with a whole header.
  std::string text = WithoutLine(good, "APPROX POSITION XYZ");
  const std::string header = text.substr(0, text.find("\n>") + 1);
  const std::string event = ">                              4  1\n" + HeaderLine("a remark", "COMMENT");
  text.insert(text.find("> 2021 03 19 12 05  0.0"), event);
  text.insert(text.find("> 2021 03 19 12 08  0.0"), header);
  const auto put = [&folder](const std::string& name, const std::string& bytes) {
    std::ofstream(folder / name, std::ios::binary) << bytes;
  };
  put("sEPT078m.21o.Z", Filtered(archive_write_add_filter_compress, text));
  put("Sept0780.21N.z", Filtered(archive_write_add_filter_compress, RecordsOf('G', records)));
  put("SEPT0780.21l.gz", Filtered(archive_write_add_filter_gzip, RecordsOf('E', records)));
  put("sept0780.21Q", RecordsOf('J', records));
  const Answer a = Orsolva("qc --no-config --json " + (folder / "sEPT078m.21o.Z"));
  ASSERT_EQ(a.code, 0) << a.err;
  const json report = json::parse(a.out);
  const json whole = json::parse(Orsolva("qc --no-config --json " + Quarter()).out);
  EXPECT_EQ(report["run"]["navigation_files"].size(), 3U);
  EXPECT_EQ(report["analysis"]["signals"], whole["analysis"]["signals"]);
}

}  // namespace
