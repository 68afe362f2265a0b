#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/report/build_report.h"
#include "host/report/csv_writer.h"
#include "host/report/figure_list.h"
#include "host/report/navigation_coverage.h"
#include "host/report/notes.h"
#include "host/report/sum_writer.h"
#include "host/report/text_layout.h"
#include "host/report/text_writer.h"
#include "tests/host/sample_report.h"

namespace orsolva_host {
namespace {

using orsolva_test::SampleReport;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> Fields(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> fields;
  for (std::string field; stream >> field;) fields.push_back(field);
  return fields;
}

TEST(CsvWriter, EveryRowHasTheSixFieldsOfTheHeading) {
  EXPECT_EQ(CsvHeading(), "satellite,signal,figure,unit,value,file\n");
  const std::vector<std::string> lines = Lines(WriteCsvRows(SampleReport()));
  EXPECT_GT(lines.size(), 30U);
  for (const std::string& line : lines) EXPECT_EQ(std::count(line.begin(), line.end(), ','), 5) << line;
  EXPECT_EQ(lines[0], ",,verdict,text,fair - 2 gaps while in view,dir/station one.rnx");
}

TEST(CsvWriter, WritesRowsOfEveryScopeAndNothingForAbsentFigures) {
  const std::vector<std::string> lines = Lines(WriteCsvRows(SampleReport()));
  for (const char* row :
       {",,lost_epochs,epochs,0,dir/station one.rnx", "all,slot1,total_mp_rms_m,m,0.25,dir/station one.rnx",
        ",,completeness_ratio,1,0.9,dir/station one.rnx",
        ",,satellites_judged,satellites,1,dir/station one.rnx",
        "G,,completeness_ratio,1,0.9,dir/station one.rnx", "G,1C,mp_values,values,940,dir/station one.rnx",
        "G04,L2,mp_rms_m,m,,dir/station one.rnx",
        "G04,,navigation_covered_ratio,1,0.5,dir/station one.rnx"}) {
    EXPECT_NE(std::find(lines.begin(), lines.end(), row), lines.end()) << row;
  }
}

TEST(CsvWriter, QuotesWhatWouldBreakARow) {
  EXPECT_EQ(CsvField("plain"), "plain");
  EXPECT_EQ(CsvField("a,b"), "\"a,b\"");
  EXPECT_EQ(CsvField("a\"b\nc"), "\"a\"\"b\nc\"");
}

TEST(CsvWriter, ValuesReadBackAsTheSameNumber) {
  Report report = SampleReport();
  report.run.duration_h = 0.1 + 0.2;
  EXPECT_NE(WriteCsvRows(report).find("duration_h,h,0.30000000000000004,"), std::string::npos);
}

TEST(SumWriter, TheVerdictLeadsAndSumHasItsTenFieldsInTheirOrderAndTheFile) {
  const std::string text = WriteSum(SampleReport());
  EXPECT_EQ(Lines(text)[0], "#VERDICT dir/station%20one.rnx fair - 2 gaps while in view");
  EXPECT_EQ(Lines(text)[1], "#FINDING dir/station%20one.rnx gaps-in-view 2 gaps while in view");
  EXPECT_EQ(Lines(text)[2],
            "SUM 2020-06-25T00:00:00 2020-06-25T23:59:30 23.99 30 2000 1900 95.00 0.260 - 950 "
            "dir/station%20one.rnx");
}

TEST(SumWriter, EveryLineBeginsWithItsKeyAndEndsWithTheFile) {
  Report report = SampleReport();
  report.profile_verdict = ProfileVerdict{"network", "a title", "no data", false, {}};
  report.analysis.figures.systems.resize(2);
  report.analysis.figures.systems[1].letter = 'S';
  report.analysis.figures.signals.resize(1);
  report.analysis.figures.signals[0].code = {'1', 'C'};
  std::set<std::string> keys;
  for (const std::string& line : Lines(WriteSum(report))) {
    keys.insert(Fields(line).front());
    const std::string file = line[0] == '#' ? Fields(line)[1] : Fields(line).back();
    EXPECT_EQ(file, "dir/station%20one.rnx") << line;
  }
  EXPECT_EQ(keys, (std::set<std::string>{"#VERDICT", "#FINDING", "SUM", "=ANALYSIS", "=GPS", "=SBS", "=GPS1C",
                                         "=LIBRARY", "=LIBRARY-RUN", "=LIBRARY-ALL", "=LIBRARY-GPS",
                                         "=LIBRARY-GPS1C", "=PROFILE"}));
}

TEST(SumWriter, RowsOfOneKindHaveTheSameNumberOfFields) {
  Report report = SampleReport();
  report.systems[0].figures = Figures();
  report.signals[0].mp_m.reset();
  report.signals[0].band.clear();
  const std::vector<std::string> full = Lines(WriteSum(SampleReport()));
  const std::vector<std::string> empty = Lines(WriteSum(report));
  ASSERT_EQ(full.size(), empty.size());
  for (std::size_t i = 0; i < full.size(); ++i) EXPECT_EQ(Fields(full[i]).size(), Fields(empty[i]).size());
}

TEST(SumWriter, AFailedFileIsAComment) {
  EXPECT_EQ(WriteSumFailure("a b.rnx", "two\nlines"), "#FAILED a%20b.rnx two lines\n");
}

TEST(TextWriter, KeepsToAPhonesWidthByWritingRowUnderRow) {
  Report report = SampleReport();
  report.show_satellites = true;
  report.run.observation_file = std::string(100, 'x');
  for (const std::size_t width : {40U, 46U, 60U, 79U}) {
    const std::string text = WriteText(report, {width, false});
    for (const std::string& line : Lines(text)) EXPECT_LE(line.size(), width) << line;
    if (width < 50) {
      EXPECT_NE(text.find("Compl % 95.00"), std::string::npos) << text;
    }
  }
}

TEST(TextWriter, NumbersAreNeverCut) {
  Report report = SampleReport();
  report.signals[0].expected = 123456789;
  report.signals[0].observed = 123456788;
  const std::string text = WriteText(report);
  EXPECT_NE(text.find("123456789"), std::string::npos);
  EXPECT_NE(text.find("123456788"), std::string::npos);
  for (const std::string& line : Lines(text)) EXPECT_LE(line.size(), 80U) << line;
}

TEST(TextWriter, EscapesStandOnlyWhereColourIsAskedFor) {
  Report report = SampleReport();
  report.profile_verdict = ProfileVerdict{"p", "t", "fail", false, {}};
  EXPECT_EQ(WriteText(report, {80, false}).find('\033'), std::string::npos);
  EXPECT_NE(WriteText(report, {80, true}).find("\033[31m"), std::string::npos);
}

TEST(TextWriter, MarksStandBesideTheFiguresTheirNoteIsAbout) {
  const std::string text = WriteText(SampleReport());
  EXPECT_NE(text.find("PG slips[1]"), std::string::npos);
  EXPECT_NE(text.find("  [1] Slips count more than slips."), std::string::npos);
}

TEST(TextLayout, CountsCharactersNotBytes) {
  EXPECT_EQ(Columns("Ærø"), 3U);
  EXPECT_EQ(Fitted("ÆøåÆøåÆøåÆøå", 9), "Æøå...Æøå");
  EXPECT_EQ(Fitted("ÆøåÆ", 4), "ÆøåÆ");
}

TEST(Notes, GalileoBandsWithoutChannelAreFootnotedAndNotCountedAsZero) {
  Report report = SampleReport();
  SystemReport galileo{'E', "Galileo", {"1C", "7Q"}, {"1C", "7Q"}, orsolva_test::SampleFigures()};
  galileo.figures.observed.reset();
  galileo.figures.completeness.reset();
  report.systems.push_back(galileo);
  report.notes = NotesOf(report);
  EXPECT_TRUE(HasUncountedCode(report.systems[1]));
  EXPECT_FALSE(HasUncountedCode(report.systems[0]));
  EXPECT_EQ(report.notes[0].id, "galileo-no-channel");
  EXPECT_EQ(RowMarks(report.notes, "E", "E5b"), "[1]");
  EXPECT_EQ(RowMarks(report.notes, "E", ""), "[2]");
  EXPECT_EQ(RowMarks(report.notes, "G", "L1"), "");
  EXPECT_NE(report.notes[1].text.find("library total"), std::string::npos);
  EXPECT_NE(WriteText(report).find("90.00 %[2], "), std::string::npos) << WriteText(report);
  report.library_total.completeness.reset();
  EXPECT_EQ(NotesOf(report)[1].text.find("library total"), std::string::npos);
}

TEST(Notes, AGalileoSystemWithCountsOrWithoutEpochsHasNoNoteAboutThem) {
  Report report = SampleReport();
  report.systems.push_back({'E', "Galileo", {"1C", "7Q"}, {"1C", "7Q"}, orsolva_test::SampleFigures()});
  for (const ReportNote& note : NotesOf(report)) EXPECT_NE(note.id, "galileo-not-counted");
  report.systems[1].figures = {};
  for (const ReportNote& note : NotesOf(report)) EXPECT_NE(note.id, "galileo-not-counted");
}

TEST(TextWriter, AGroupOfTheHeadlineWithoutFiguresIsOneDash) {
  Report report = SampleReport();
  EXPECT_NE(WriteText(report).find("\nEvents            -\n"), std::string::npos) << WriteText(report);
  report.library_headline.gaps_in_view = 2;
  EXPECT_NE(WriteText(report).find("\nEvents            - geometry-free slips"), std::string::npos);
}

TEST(Notes, BdsSatellitesWithoutAKnownOrbitAreNamed) {
  Report report = SampleReport();
  for (const char* name : {"C14", "C15", "C46", "C58", "C61", "G31"}) {
    NavigationCoverage row;
    row.satellite = name;
    report.run.navigation_coverage.push_back(row);
  }
  const std::vector<ReportNote> notes = NotesOf(report);
  EXPECT_EQ(notes[0].id, "bds-no-orbit");
  EXPECT_NE(notes[0].text.find(": C15, C58."), std::string::npos) << notes[0].text;
}

TEST(Notes, TheTestThatCountsMoreThanSlipsIsFootnotedWhereSlipsAre) {
  Report report = SampleReport();
  report.notes = NotesOf(report);
  EXPECT_EQ(HeadingMarks(report.notes, "phase_geometry_slip_epochs"), "[1]");
  report.systems[0].figures.phase_geometry_slips = 0;
  EXPECT_EQ(HeadingMarks(NotesOf(report), "phase_geometry_slip_epochs"), "[1]") << "a signal has some";
  report.signals[0].phase_geometry_slips = 0;
  EXPECT_EQ(HeadingMarks(NotesOf(report), "phase_geometry_slip_epochs"), "");
}

TEST(CoverageCounter, CountsEpochsWithinTheAgeOfAHealthyRecord) {
  NavigationSet set;
  GpsEph_gbt record = {};
  record.prn = 4;
  record.toc = {100000, 0};
  set.gps.push_back(record);
  record.toc = {120000, 0};
  record.svh = 1;
  set.gps.push_back(record);
  CoverageCounter counter(set, "GREJC");
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  epoch->sat_num = 2;
  epoch->sats[0].sys = 1;
  epoch->sats[0].prn = 4;
  epoch->sats[1].sys = 32;
  epoch->sats[1].prn = 5;
  for (const std::int64_t time : {92799, 92800, 100000, 107200, 107201, 120000}) {
    epoch->time = {time, 0};
    counter.Add(*epoch);
  }
  const std::vector<NavigationCoverage> rows = counter.Rows();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].satellite, "G04");
  EXPECT_EQ(rows[0].observed_epochs, 6U);
  EXPECT_EQ(rows[0].records, 1U);
  EXPECT_EQ(rows[0].unhealthy_records, 1U);
  EXPECT_EQ(rows[0].covered_ratio, 0.5);
}

TEST(CoverageCounter, LeavesOutSystemsThatAreNotJudged) {
  NavigationSet set;
  GpsEph_gbt record = {};
  record.prn = 4;
  record.toc = {100000, 0};
  set.gps.push_back(record);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  epoch->time = {100000, 0};
  epoch->sat_num = 2;
  epoch->sats[0].sys = 1;
  epoch->sats[0].prn = 4;
  epoch->sats[1].sys = 2;
  epoch->sats[1].prn = 7;
  const auto satellites = [&](std::string_view systems) {
    CoverageCounter counter(set, systems);
    counter.Add(*epoch);
    std::string names;
    for (const NavigationCoverage& row : counter.Rows()) names += row.satellite + " ";
    return names;
  };
  EXPECT_EQ(satellites("GREJC"), "G04 R07 ");
  EXPECT_EQ(satellites("G"), "G04 ");
  EXPECT_EQ(satellites("E"), "");
}

}  // namespace
}  // namespace orsolva_host
