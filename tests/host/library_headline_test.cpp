// The figures a file is known by: each observed satellite in one count, completeness over counted systems
// only.
#include "host/report/library_headline.h"

#include <gtest/gtest.h>

#include <string>

#include "host/report/build_report.h"
#include "host/report/run_events.h"
#include "tests/host/sample_report.h"

namespace orsolva_host {
namespace {

NavigationCoverage Observed(const char* name, Count records, Count unhealthy_records) {
  NavigationCoverage row;
  row.satellite = name;
  row.observed_epochs = 10;
  row.records = records;
  row.unhealthy_records = unhealthy_records;
  return row;
}

TEST(LibraryHeadline, EveryObservedSatelliteIsInExactlyOneCount) {
  Report report = orsolva_test::SampleReport();
  report.run.navigation_coverage = {Observed("G04", 11, 0), Observed("G05", 11, 0), Observed("G06", 0, 0),
                                    Observed("G07", 0, 3),  Observed("G08", 5, 2),  Observed("G09", 11, 0),
                                    Observed("C58", 11, 0)};
  report.states = {{"G04", "judged"},    {"G05", "below_cutoff"}, {"G06", "no_record"}, {"G07", "unhealthy"},
                   {"G08", "unhealthy"}, {"G09", "excluded"},     {"G10", "judged"}};
  const LibraryHeadline h = LibraryHeadlineOf(report, nullptr);
  EXPECT_EQ(h.satellites_observed, Count{7});
  EXPECT_EQ(h.satellites_judged, Count{1});
  EXPECT_EQ(h.satellites_below_cutoff, Count{1});
  EXPECT_EQ(h.satellites_without_record, Count{1});
  EXPECT_EQ(h.satellites_unhealthy, Count{2});
  EXPECT_EQ(h.satellites_excluded, Count{1});
  EXPECT_EQ(h.satellites_without_position, Count{1});
}

TEST(LibraryHeadline, ASystemWithoutCountedObservationsStaysOutOfBothSums) {
  Report report = orsolva_test::SampleReport();
  SystemReport galileo{'E', "Galileo", {"1C", "7Q"}, {"1C", "7Q"}, orsolva_test::SampleFigures()};
  galileo.figures.observed.reset();
  galileo.figures.completeness.reset();
  report.systems.push_back(galileo);
  const LibraryHeadline h = LibraryHeadlineOf(report, nullptr);
  EXPECT_EQ(h.expected, Count{1000});
  EXPECT_EQ(h.completeness, 0.9);
  EXPECT_EQ(h.obs_per_restart, 300.0);
}

TEST(LibraryHeadline, ObservationsPerRestartIsTheCountItselfWithoutARestart) {
  Report report = orsolva_test::SampleReport();
  report.systems[0].figures.mp_restarts = 0;
  EXPECT_EQ(LibraryHeadlineOf(report, nullptr).obs_per_restart, 900.0);
  report.systems[0].figures.mp_restarts = 7;
  EXPECT_EQ(LibraryHeadlineOf(report, nullptr).obs_per_restart, 128.0);
}

TEST(LibraryHeadline, MultipathIsThatOfTheLibrarysBandSlots) {
  Report report = orsolva_test::SampleReport();
  report.library_total.bands[0].mp_m = 0.31;
  EXPECT_EQ(LibraryHeadlineOf(report, nullptr).mp1_m, 0.31);
  EXPECT_FALSE(LibraryHeadlineOf(report, nullptr).mp2_m);
}

TEST(LibraryHeadline, CountsOfEventsAreAbsentWhenTheyWereNotCollected) {
  EXPECT_FALSE(LibraryHeadlineOf(orsolva_test::SampleReport(), nullptr).code_jumps);
  const RunEvents none;
  EXPECT_EQ(LibraryHeadlineOf(orsolva_test::SampleReport(), &none).code_jumps, Count{0});
}

TEST(Notes, OfASatelliteWithoutAKnownOrbitAreThereWhenTheReportIsConcluded) {
  Report report = orsolva_test::SampleReport();
  report.run.navigation_coverage.push_back(Observed("C58", 3, 0));
  Conclude(report, nullptr);
  ASSERT_FALSE(report.notes.empty());
  EXPECT_EQ(report.notes[0].id, "bds-no-orbit");
}

}  // namespace
}  // namespace orsolva_host
