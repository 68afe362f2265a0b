// Where the outputs of orsolva qc go.
#include <gtest/gtest.h>

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
  EXPECT_EQ(a.out.find("SUM 2021-03-19T12:00:00 2021-03-19T12:14:59 0.25 1 "), 0U) << a.out;
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
