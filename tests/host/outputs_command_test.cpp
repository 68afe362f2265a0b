// Where the outputs of orsolva qc go.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host/judging/output_settings.h"
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

TEST(Outputs, EveryFormatGoesToItsFileWithOrWithoutEqualsSign) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder out;
  const Answer a = Orsolva("qc --no-config " + Quarter() + " --json " + (out / "r.json") +
                           " --csv=" + (out / "r.csv") + " --sum");
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(a.out.find("#VERDICT "), 0U) << a.out;
  EXPECT_NE(a.out.find("\nSUM 2021-03-19T12:00:00 2021-03-19T12:14:59 0.25 1 "), std::string::npos) << a.out;
  EXPECT_EQ(out.Names(), (std::set<std::string>{"r.json", "r.csv"}));
  EXPECT_TRUE(json::accept(ReadText(out / "r.json")));
}

TEST(Outputs, ThatCannotBeWrittenFailTheRunAndLeaveNothing) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder out;
  EXPECT_EQ(Orsolva("qc --no-config " + Quarter() + " --json=" + (out / "none/r.json")).code, 1);
  EXPECT_EQ(Orsolva("qc --no-config " + Quarter() + " --json --csv").code, 2);
  EXPECT_TRUE(out.Names().empty());
}

TEST(Outputs, ColoursAreForTerminalsUnlessAskedFor) {
  ORSOLVA_NEED_FILE(Quarter());
  EXPECT_EQ(Orsolva("qc --no-config " + Quarter()).out.find('\033'), std::string::npos);
  EXPECT_NE(Orsolva("qc --no-config --color always " + Quarter()).out.find('\033'), std::string::npos);
}

TEST(Outputs, OfOneFileGoBothToTheFolderAndToTheNameGiven) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder out;
  const Answer a =
      Orsolva("qc --no-config --quiet " + Quarter() + " --output " + (out / "all") +
              " --formats html,detail --html " + (out / "p.html") + " --detail " + (out / "d.csv"));
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(ReadText(out / "p.html"), ReadText(out / "all/SEPT078M.21O.html"));
  EXPECT_EQ(ReadText(out / "d.csv"), ReadText(out / "all/SEPT078M.21O.detail.csv"));
  EXPECT_GT(ReadText(out / "p.html").size(), 100000U);
}

TEST(Outputs, OfOneNameAreRefusedBeforeAnythingIsRead) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string out = (folder / "out");
  for (const std::string& options :
       {"--json=" + out + "/a --csv=" + out + "/./a",
        "--output " + out + " --formats html --html " + out + "/SEPT078M.21O.html",
        "--output " + out + " --formats json --json=" + out + "/SEPT078M.21O.json"}) {
    const Answer a = Orsolva("qc --no-config " + Quarter() + " " + options);
    EXPECT_EQ(a.code, 2) << options;
    EXPECT_NE(a.err.find("two outputs of this run have this name"), std::string::npos) << a.err;
  }
  EXPECT_FALSE(std::filesystem::exists(out));
  EXPECT_EQ(Orsolva("qc --no-config " + Quarter() + " --json=/dev/null --csv=/dev/null").code, 0);
}

TEST(Outputs, NeverReplaceAnInput) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  std::filesystem::copy_file(Quarter(), (folder / "a.21O"));
  const Answer a = Orsolva("qc --no-config " + (folder / "a.21O") + " --json=" + (folder / "a.21O"));
  EXPECT_EQ(a.code, 2);
  EXPECT_NE(a.err.find("would be replaced by an output"), std::string::npos) << a.err;
  EXPECT_EQ(ReadText((folder / "a.21O")), ReadText(Quarter()));
}

TEST(Outputs, AStreamMayLieInTheFolderThatTheRunMakes) {
  ORSOLVA_NEED_FILE(Quarter());
  const Folder folder;
  const std::string out = (folder / "out");
  const Answer a =
      Orsolva("qc --no-config --quiet " + Quarter() + " --output " + out + " --sum=" + out + "/all.sum");
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_FALSE(ReadText(out + "/all.sum").empty());
}

/// The hour at 30 s has events below the cut-off.
std::string Hour() { return DataFile("KMS300DNK_R_20221591000_01H_30S_MO.crx"); }

std::size_t LinesOf(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(Events, AreTheSameInEveryForm) {
  ORSOLVA_NEED_FILE(Hour());
  const Folder folder;
  const std::string run = "qc --no-config --quiet " + Hour() + " --events ";
  const std::string csv = folder / "e.csv", lines = folder / "e.jsonl";
  ASSERT_EQ(Orsolva(run + csv).code, 0);
  ASSERT_EQ(Orsolva(run + lines).code, 0);
  const std::string table = ReadText(csv);
  EXPECT_EQ(table.substr(0, table.find('\n')),
            "time_gpst,satellite,elevation_deg,kind,signals,size_cycles,sure,score,margin,gap_s,loss_of_lock,"
            "evidence");
  EXPECT_GT(LinesOf(table), 1U);
  EXPECT_EQ(LinesOf(ReadText(lines)) + 1, LinesOf(table));
  EXPECT_EQ(Orsolva(run + "-").out, table);
  const std::string out = folder / "out";
  ASSERT_EQ(Orsolva("qc --no-config --quiet " + Hour() + " --output " + out + " --formats events").code, 0);
  EXPECT_EQ(ReadText(out + "/KMS300DNK_R_20221591000_01H_30S_MO.events.csv"), table);
}

TEST(Events, OfSeveralFilesNeedAFolder) {
  const Answer a = Orsolva("qc --no-config a.rnx b.rnx --events e.csv");
  EXPECT_EQ(a.code, 2);
  EXPECT_NE(a.err.find("--output FOLDER --formats events"), std::string::npos) << a.err;
  const Answer both = Orsolva("qc --no-config a.rnx --events - --json");
  EXPECT_EQ(both.code, 2);
}

TEST(Series, AreTheSameInEveryForm) {
  ORSOLVA_NEED_FILE(Hour());
  const Folder folder;
  const std::string run = "qc --no-config --quiet " + Hour() + " --series ";
  const std::string csv = folder / "s.csv", lines = folder / "s.jsonl";
  ASSERT_EQ(Orsolva(run + csv).code, 0);
  ASSERT_EQ(Orsolva(run + lines).code, 0);
  const std::string table = ReadText(csv);
  EXPECT_EQ(table.substr(0, table.find(',')), "time_gpst");
  std::size_t bins = 0;
  for (std::size_t at = 0; (at = table.find("0.000,,,,,", at)) != std::string::npos; ++at) ++bins;
  EXPECT_EQ(bins, 2U) << "the station has a row in every five of the ten minutes";
  EXPECT_EQ(LinesOf(ReadText(lines)) + 1, LinesOf(table));
  EXPECT_EQ(Orsolva(run + "-").out, table);
  const std::string out = folder / "out";
  ASSERT_EQ(Orsolva("qc --no-config --quiet " + Hour() + " --output " + out + " --formats series").code, 0);
  EXPECT_EQ(ReadText(out + "/KMS300DNK_R_20221591000_01H_30S_MO.series.csv"), table);
}

TEST(Outputs, StemsOfManyFilesLeaveTheNamesOfTheTablesFree) {
  EXPECT_EQ(orsolva_host::OutputStems({"index.rnx", "network.21O", "network.rnx"}),
            (std::vector<std::string>{"index-2", "network.21O", "network-2"}));
  EXPECT_EQ(orsolva_host::OutputStems({"index.rnx"}), (std::vector<std::string>{"index"}));
}

TEST(Outputs, StemsLoseCompressionAndStayDistinct) {
  EXPECT_EQ(orsolva_host::OutputStems({"a/X.crx.gz", "b/X.rnx", "Y.21O.Z", "-"}),
            (std::vector<std::string>{"X", "X-2", "Y.21O", "stdin"}));
}

}  // namespace
