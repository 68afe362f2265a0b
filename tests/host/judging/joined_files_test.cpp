// Files of one station judged as one span.
#include "host/judging/joined_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/judging/judge_file.h"
#include "tests/host/folder.h"
#include "tests/host/judging/simulated_files.h"
#include "tests/host/shared_data.h"

namespace {

using namespace orsolva_host;
using orsolva_test::ReadText;
using orsolva_test::SettingsOfSimulatedHour;
using orsolva_test::SimulatedFiles;

using Spans = std::vector<JoinedFiles>;

TEST(SpansOf, JoinsByStationIntervalAndDayInTheOrderOfTime) {
  const std::string a = "AAAA00XXX_R_2021001", s = "30S_MO.rnx";
  const std::vector<std::string> files = {a + "0100_01H_" + s, "bbbb001a.21o", a + "0000_01H_" + s,
                                          a + "0000_01H_01S_MO.crx.gz", "AAAA00XXX_R_20210020000_01H_" + s};
  EXPECT_EQ(SpansOf(files, JoinRule::kDay),
            (Spans{{files[2], files[0]}, {files[1]}, {files[3]}, {files[4]}}));
  EXPECT_EQ(SpansOf(files, JoinRule::kAll), (Spans{{files[2], files[0], files[4]}, {files[1]}, {files[3]}}));
  EXPECT_EQ(SpansOf(files, JoinRule::kNone).size(), files.size());
}

TEST(SpansOf, LeavesAloneWhatCannotBePlaced) {
  EXPECT_EQ(SpansOf({"-", "/no/such.obs", "/no/other.obs"}, JoinRule::kAll),
            (Spans{{"-"}, {"/no/such.obs"}, {"/no/other.obs"}}));
}

TEST(SpansOf, ReadsTheHeaderWhereTheNameSaysNothing) {
  const SimulatedFiles files;
  EXPECT_EQ(SpansOf({files.Path("b.rnx"), files.Path("a.rnx")}, JoinRule::kDay),
            (Spans{{files.Path("a.rnx"), files.Path("b.rnx")}}));
}

/// The simulated hour in pieces: the header and the epochs from one to before another.
class Pieces {
 public:
  Pieces() {
    const std::string text = ReadText(files_.Path("a.rnx"));
    const std::size_t body = text.find('\n', text.find("END OF HEADER")) + 1;
    header_ = text.substr(0, body);
    for (std::size_t at = body; at < text.size();) {
      const std::size_t next = text.find("\n>", at);
      const std::size_t end = next == std::string::npos ? text.size() : next + 1;
      epochs_.push_back(text.substr(at, end - at));
      at = end;
    }
  }
  std::string Write(const std::string& name, std::size_t from, std::size_t to,
                    const std::string& marker = "") {
    std::string header = header_;
    const std::size_t line = header.rfind('\n', header.find("MARKER NAME")) + 1;
    if (!marker.empty()) header.replace(line, marker.size(), marker);
    std::ofstream out(files_.Path(name));
    out << header;
    for (std::size_t i = from; i < to; ++i) out << epochs_.at(i);
    return files_.Path(name);
  }
  Report Judged(const JoinedFiles& parts) {
    const JudgingSettings settings = SettingsOfSimulatedHour();
    SharedNavigation navigation({files_.Path("nav.rnx")}, settings.limits);
    Diagnostics diagnostics;
    return JudgeFiles(parts, settings, navigation, diagnostics);
  }
  std::string Path(const std::string& name) const { return files_.Path(name); }
  std::size_t Count() const { return epochs_.size(); }

 private:
  SimulatedFiles files_;
  std::string header_;
  std::vector<std::string> epochs_;
};

long CountOf(const Report& report, const std::string& part) {
  for (const ReportNotice& notice : report.notices) {
    if (notice.text.find(part) != std::string::npos) return notice.count;
  }
  return 0;
}

TEST(JoinedFiles, GiveTheFiguresOfTheWholeFile) {
  Pieces pieces;
  ASSERT_EQ(pieces.Count(), 120U);
  const Report whole = pieces.Judged({pieces.Path("a.rnx")});
  const Report joined = pieces.Judged(
      {pieces.Write("1.rnx", 0, 40), pieces.Write("2.rnx", 40, 90), pieces.Write("3.rnx", 90, 120)});
  EXPECT_EQ(joined.run.epochs, whole.run.epochs);
  EXPECT_EQ(joined.run.observation_file, pieces.Path("1.rnx"));
  EXPECT_EQ(joined.library_total.observed, whole.library_total.observed);
  ASSERT_EQ(joined.analysis.figures.signals.size(), whole.analysis.figures.signals.size());
  for (std::size_t i = 0; i < whole.analysis.figures.signals.size(); ++i) {
    EXPECT_EQ(joined.analysis.figures.signals[i].multipath.moving_m,
              whole.analysis.figures.signals[i].multipath.moving_m);
  }
  EXPECT_EQ(joined.analysis.figures.span.gaps.size(), 0U);
  EXPECT_EQ(CountOf(joined, "judged as one span with 2 files more, the last of them 3.rnx"), 1);
}

TEST(JoinedFiles, SkipWhatTheFilesBeforeHoldAndSayHowMuch) {
  Pieces pieces;
  const Report joined = pieces.Judged({pieces.Write("1.rnx", 0, 60), pieces.Write("2.rnx", 50, 120)});
  EXPECT_EQ(joined.run.epochs, 120U);
  EXPECT_EQ(CountOf(joined, "files before already hold"), 10);
  EXPECT_EQ(joined.analysis.figures.span.disordered_epochs.value_or(0), 0U);
}

TEST(JoinedFiles, WithAHoleBetweenThemHaveAGap) {
  Pieces pieces;
  const Report joined = pieces.Judged({pieces.Write("1.rnx", 0, 60), pieces.Write("2.rnx", 70, 120)});
  ASSERT_EQ(joined.analysis.figures.span.gaps.size(), 1U);
  EXPECT_EQ(joined.analysis.figures.span.gaps[0].missing_epochs, 10U);
}

TEST(JoinedFiles, NameWhatChangesFromHeaderToHeader) {
  Pieces pieces;
  const Report joined = pieces.Judged({pieces.Write("1.rnx", 0, 60), pieces.Write("2.rnx", 60, 120, "NEWN")});
  EXPECT_EQ(CountOf(joined, "marker changes from"), 1);
  bool changed = false;
  for (const auto& c : joined.analysis.figures.contradictions) changed = changed || c.id == "marker_change";
  EXPECT_TRUE(changed);
}

TEST(JoinedFiles, ThatCannotBeReadAreLeftOutAndFailTheRunAtItsEnd) {
  Pieces pieces;
  const Report joined = pieces.Judged({pieces.Write("1.rnx", 0, 60), pieces.Path("broken.rnx"),
                                       "/no/such.rnx", pieces.Write("2.rnx", 60, 120)});
  EXPECT_EQ(joined.run.epochs, 120U);
  EXPECT_NE(joined.read_error.find("broken.rnx"), std::string::npos) << joined.read_error;
  EXPECT_EQ(CountOf(joined, "left out: found no such file"), 1);
  const JudgingSettings settings;
  Diagnostics diagnostics;
  EXPECT_THROW(OpenJoined({"/no/such.rnx", "/no/other.rnx"}, settings, diagnostics), FileError);
}

TEST(JoinedFiles, CutOffInTheMiddleKeepTheOthers) {
  Pieces pieces;
  pieces.Write("1.rnx", 0, 60);
  std::string text = ReadText(pieces.Path("1.rnx"));
  text.resize(text.size() - 200);
  std::ofstream(pieces.Path("1.rnx")) << text;
  const Report joined = pieces.Judged({pieces.Path("1.rnx"), pieces.Write("2.rnx", 60, 120)});
  EXPECT_EQ(joined.run.epochs, 120U);
  EXPECT_NE(joined.read_error.find("the file ends within"), std::string::npos) << joined.read_error;
}

TEST(JoinedFiles, WithOneNoticeInCommonCountIt) {
  Diagnostics first, second, all;
  first.Add("a", 3, "oddity");
  second.Add("b", 5, "oddity");
  second.Add("b", 6, "another");
  all.Join(first);
  all.Join(second);
  ASSERT_EQ(all.Notices().size(), 2U);
  EXPECT_EQ(all.Notices()[0].file, "a");
  EXPECT_EQ(all.Notices()[0].count, 2);
  EXPECT_EQ(all.Total(), 3);
}

}  // namespace
