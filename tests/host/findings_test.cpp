// What to look at first: when each finding is said, in which order, and the line that they add up to.
#include "host/report/findings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "host/report/finding_limits.h"
#include "host/report/headline.h"
#include "tests/host/sample_report.h"

namespace orsolva_host {
namespace {

using analysis::Event;
using analysis::EventKind;

constexpr std::int64_t kMidnight_ns = 1593043200 * kNanosecondsPerSecond;

/// A day of GPS without anything wrong: two satellites, one signal.
Report CleanDay() {
  Report report = orsolva_test::SampleReport();
  analysis::AnalysisResult& r = report.analysis.figures;
  r.with_orbits = true;
  r.elevation_cutoff_deg = 10;
  r.span.interval_s = 30;
  r.span.expected_epochs = r.span.present_epochs = r.span.usable_epochs = 2880;
  r.span.lost_epochs = 0;
  analysis::SystemFigures system;
  system.satellites_observed = 2;
  system.cutoff = {4000, 4000, 1.0};
  system.slips.sure = system.slips.unsure = system.slips.half_cycles = system.slips.unknown_size = 0;
  system.slips.tested_steps = 4000;
  r.systems.push_back(system);
  analysis::SignalFigures signal;
  signal.code = {'1', 'C'};
  signal.cutoff = system.cutoff;
  signal.slips = system.slips;
  signal.multipath.moving_m = 0.25;
  signal.multipath.values = 4000;
  r.signals.push_back(signal);
  for (const std::uint8_t number : {4, 5}) {
    analysis::SatelliteFigures satellite;
    satellite.id = {'G', number};
    satellite.observed_epochs = 2000;
    satellite.has_record = true;
    r.satellites.push_back(satellite);
  }
  return report;
}

std::vector<Finding> Found(Report& report) {
  report.headline = HeadlineOf(report.analysis.figures);
  report.findings = FindingsOf(report);
  report.verdict = VerdictOf(report);
  return report.findings;
}

std::vector<std::string> IdsOf(const std::vector<Finding>& findings) {
  std::vector<std::string> ids;
  for (const Finding& finding : findings) ids.push_back(finding.id);
  return ids;
}

Finding Only(Report report, const std::string& id) {
  const std::vector<Finding> findings = Found(report);
  const auto found =
      std::find_if(findings.begin(), findings.end(), [&id](const Finding& f) { return f.id == id; });
  return found == findings.end() ? Finding{} : *found;
}

/// Slips of both satellites, all on the one signal.
void Slip(Report& report, Count of_first, Count of_second, bool half = false) {
  analysis::AnalysisResult& r = report.analysis.figures;
  const auto put = [half](analysis::SlipFigures& slips, Count count) {
    (half ? slips.half_cycles : slips.sure) = count;
  };
  put(r.satellites[0].slips, of_first);
  put(r.satellites[1].slips, of_second);
  put(r.systems[0].slips, of_first + of_second);
  put(r.signals[0].slips, of_first + of_second);
}

TEST(Findings, OfACleanDaySayThatNothingIsWrong) {
  Report report = CleanDay();
  EXPECT_EQ(IdsOf(Found(report)),
            (std::vector<std::string>{"worst-multipath", "no-slips", "nothing-missing"}));
  EXPECT_EQ(report.verdict.grade, "good");
  EXPECT_EQ(report.verdict.text,
            "2880 epochs, none missing, 100.00 % complete, no cycle slip, all 2 satellites judged");
}

TEST(Findings, ComeInTheOrderOfHarmAndTheVerdictNamesTheWorst) {
  Report report = CleanDay();
  analysis::AnalysisResult& r = report.analysis.figures;
  report.read_error = "f.rnx:9: found \"x\".";
  r.systems.push_back({});
  r.systems[1].letter = 'R';
  r.systems[1].satellites_observed = 1;
  r.without_record = {{'R', 11}};
  r.contradictions = {
      {"interval", "15 s", "30 s"}, {"position", "there", "here"}, {"marker", "ABCD", "ESBC"}};
  r.position.distance_to_header_m = 2109;
  r.position.residual_rms_m = 1.5;
  r.span.lost_epochs = 12;
  r.span.gaps = {{kMidnight_ns, kMidnight_ns + 390 * kNanosecondsPerSecond, 12}};
  Slip(report, 3, 1);
  EXPECT_EQ(
      IdsOf(Found(report)),
      (std::vector<std::string>{"damaged", "not-judged", "position-far", "wrong-interval", "statements",
                                "missing-epochs", "cycle-slips", "worst-multipath", "nothing-missing"}));
  EXPECT_EQ(report.verdict.grade, "poor");
  EXPECT_EQ(
      report.verdict.text,
      "Damaged file; 1 of 3 satellites not judged; Position 2109 m from the header's; Interval 30 s, header "
      "says 15 s; and 3 more");
}

TEST(Findings, SatellitesWithoutOrbitAreNamedAndWeighed) {
  Report report = CleanDay();
  report.analysis.figures.without_record = {{'G', 5}};
  Finding finding = Only(report, "not-judged");
  EXPECT_EQ(finding.title, "1 of 2 satellites not judged");
  EXPECT_EQ(finding.text, "No orbit, hence no elevation and no completeness: GPS 1 of 2 (G05).");
  EXPECT_EQ(finding.severity, "warning");
  report.analysis.figures.systems[0].satellites_observed = 20;
  EXPECT_EQ(Only(report, "not-judged").severity, "info");
  report.analysis.figures.systems[0].satellites_observed = 1;
  EXPECT_EQ(Only(report, "not-judged").severity, "error");
}

TEST(Findings, WithoutOrbitsTheVerdictIsNotJudged) {
  Report report = CleanDay();
  report.analysis.figures.with_orbits = false;
  report.analysis.figures.without_record = {{'G', 4}, {'G', 5}};
  report.run.library_absence = LibraryAbsence{"no-navigation", "Name a file."};
  EXPECT_EQ(Found(report)[0].id, "no-navigation");
  EXPECT_EQ(report.verdict.grade, "not judged");
  EXPECT_EQ(report.verdict.text, "No broadcast records");
}

TEST(Findings, CodesThatFitNoPositionAreWorseThanAWrongHeader) {
  Report report = CleanDay();
  analysis::PositionFigures& position = report.analysis.figures.position;
  position.residual_rms_m = 135;
  position.distance_to_header_m = 306;
  report.analysis.figures.contradictions = {{"position", "there", "here"}};
  EXPECT_EQ(IdsOf(Found(report))[0], "position-unusable");
  EXPECT_EQ(report.findings[0].title,
            "Codes do not fit a position: residuals 135 m, 306 m from the header's");
  EXPECT_EQ(report.verdict.grade, "poor");
}

TEST(Findings, AMovingAntennaFarFromTheHeadersPositionIsAWarning) {
  Report report = CleanDay();
  report.analysis.figures.position.moving = true;
  EXPECT_EQ(Only(report, "antenna-moves").severity, "info");
  report.run.distance_from_header_m = 2109;
  EXPECT_EQ(Only(report, "antenna-moves").severity, "warning");
  EXPECT_EQ(Only(report, "antenna-moves").title, "Antenna moves, 2109 m from the header's position");
}

TEST(Findings, APositionThatTheAnalysisDoesNotContradictIsNoWarning) {
  Report report = CleanDay();
  report.analysis.figures.position.distance_to_header_m = 9;
  EXPECT_EQ(Only(report, "position-off").id, "");
  report.analysis.figures.position.distance_to_header_m = 25;
  EXPECT_EQ(Only(report, "position-far").id, "");
  EXPECT_EQ(Only(report, "position-off").title, "Position 25 m from the header's");
  Found(report);
  EXPECT_EQ(report.verdict.grade, "good");
  EXPECT_NE(report.verdict.text.find("; Position 25 m"), std::string::npos) << report.verdict.text;
}

TEST(Findings, AGivenPositionFarFromTheDatasIsAWarning) {
  Report report = CleanDay();
  report.analysis.figures.position.distance_to_given_m = 49;
  EXPECT_EQ(Only(report, "given-position-far").id, "");
  report.analysis.figures.position.distance_to_given_m = 479450;
  EXPECT_EQ(Only(report, "given-position-far").severity, "warning");
  report.analysis.figures.position.residual_rms_m = 135;
  EXPECT_EQ(Only(report, "given-position-far").id, "");
}

TEST(Findings, PhasesThatDoNotGoOnAreSaidAndWeighed) {
  Report report = CleanDay();
  EXPECT_EQ(Only(report, "receiver-restarts").id, "");
  Count& restarts = report.analysis.figures.receiver_clock.restarts.emplace(1);
  report.analysis.figures.span.present_epochs = 2880;
  EXPECT_EQ(Only(report, "receiver-restarts").severity, "info");
  restarts = 100;
  EXPECT_EQ(Only(report, "receiver-restarts").severity, "warning");
  restarts = 2879;
  EXPECT_EQ(Only(report, "receiver-restarts").severity, "error");
  EXPECT_EQ(Only(report, "receiver-restarts").title, "Phases do not go on at 2879 of 2879 steps");
}

TEST(Findings, AFileThatIsMostlyMissingIsPoor) {
  Report report = CleanDay();
  report.analysis.figures.span.expected_epochs = 2880;
  report.analysis.figures.span.lost_epochs = 1440;
  EXPECT_EQ(Only(report, "missing-epochs").severity, "warning");
  report.analysis.figures.span.lost_epochs = 1441;
  EXPECT_EQ(Only(report, "missing-epochs").severity, "error");
}

TEST(Findings, OneMissingEpochOfADayIsNoWarning) {
  Report report = CleanDay();
  report.analysis.figures.span.lost_epochs = 1;
  report.analysis.figures.span.gaps = {{kMidnight_ns, kMidnight_ns + 60 * kNanosecondsPerSecond, 1}};
  const Finding finding = Only(report, "missing-epochs");
  EXPECT_EQ(finding.severity, "info");
  EXPECT_EQ(finding.title, "1 of 2880 epochs missing");
  EXPECT_EQ(finding.text, "1 epoch after 2020-06-25 00:00:00.");
}

TEST(Findings, SlipsNameTheSignalAndTheSatelliteOfMost) {
  Report report = CleanDay();
  Slip(report, 3, 1);
  const Finding finding = Only(report, "cycle-slips");
  EXPECT_EQ(finding.severity, "warning");  // 4 in 4,000 steps
  EXPECT_EQ(finding.title, "4 cycle slips, most on G 1C, most of G04");
  EXPECT_EQ(finding.text, "By signal G 1C (4); by satellite G04 (3), G05 (1).");
  EXPECT_EQ(finding.satellites, (std::vector<std::string>{"G04", "G05"}));
  Slip(report, 1, 0);
  EXPECT_EQ(Only(report, "cycle-slips").severity, "info");
  EXPECT_EQ(Only(report, "cycle-slips").title, "1 cycle slip");
}

TEST(Findings, HalfCyclesAreAlsoTheirOwn) {
  Report report = CleanDay();
  Slip(report, 2, 2, true);
  EXPECT_EQ(Only(report, "half-cycles").title, "4 of the cycle slips by half cycles");
  EXPECT_EQ(Only(report, "half-cycles").severity, "warning");
}

TEST(Findings, SlipsOfManySatellitesAtOnceAreThoseOfTheReceiver) {
  Report report = CleanDay();
  for (const std::uint8_t number : {1, 2, 3, 4}) {
    Event event;
    event.time_ns = kMidnight_ns + 90 * kNanosecondsPerSecond;
    event.satellite = {'G', number};
    report.analysis.events.push_back(event);
  }
  EXPECT_EQ(Only(report, "receiver-slips").text,
            "Many satellites slipped at once at 2020-06-25 00:01:30: look for an outage or a reset.");
  report.analysis.events.pop_back();
  EXPECT_EQ(Only(report, "receiver-slips").id, "");
}

TEST(Findings, PowerFailuresAreThoseThatTheFileFlags) {
  Report report = CleanDay();
  Event event;
  event.time_ns = kMidnight_ns;
  event.kind = EventKind::kPowerFailure;
  report.analysis.events = {event};
  EXPECT_EQ(Only(report, "power-failures").title, "1 power failure");
}

TEST(Findings, ADropOfOneBandIsInterferenceAndOneOfAllBandsTheAntenna) {
  Report report = CleanDay();
  analysis::StrengthDrop drop{kMidnight_ns, kMidnight_ns + 1800 * kNanosecondsPerSecond, 8, 10, false};
  report.analysis.figures.signals[0].strength.drops = {drop};
  Finding finding = Only(report, "strength-drops");
  EXPECT_EQ(finding.text,
            "G 1C 8.0 dB for 30 min from 2020-06-25 00:00:00. Other bands did not: look for interference.");
  EXPECT_EQ(finding.signal, "G 1C");
  report.analysis.figures.signals[0].strength.drops[0].other_bands = true;
  finding = Only(report, "strength-drops");
  EXPECT_NE(finding.text.find("look at antenna"), std::string::npos) << finding.text;
}

TEST(Findings, ASignalWeakInTheOpenSkyIsNamedAndSemiCodelessTrackingIsNot) {
  Report report = CleanDay();
  analysis::SignalFigures weak = report.analysis.figures.signals[0];
  weak.code = {'5', 'Q'};
  weak.strength.mean_by_elevation = {{10, 15, 20, 1000}, {45, 50, 36, 100}, {50, 55, 38, 100}};
  report.analysis.figures.signals.push_back(weak);
  EXPECT_EQ(Only(report, "weak-signals").text, "Mean strength from 45 degrees up in dB-Hz: G 5Q 37.0.");
  report.analysis.figures.signals.back().code = {'2', 'W'};
  EXPECT_EQ(Only(report, "weak-signals").id, "");
}

TEST(Findings, AnIncompleteSystemIsAWarning) {
  Report report = CleanDay();
  report.analysis.figures.systems[0].cutoff = {4000, 3400, 0.85};
  EXPECT_EQ(Only(report, "incomplete").title, "GPS 85.00 % complete");
}

TEST(Findings, ObservationsMissingInEpochsThatAreThereAreCounted) {
  Report report = CleanDay();
  analysis::AnalysisResult& r = report.analysis.figures;
  r.span.present_epochs = 1440;  // half of the observations go with their epochs
  r.systems[0].cutoff = r.signals[0].cutoff = {4000, 1990, 0.4975};
  const Finding finding = Only(report, "missing-observations");
  EXPECT_EQ(finding.title, "10 observations missing, most on G 1C");
  EXPECT_EQ(finding.severity, "info");
  r.systems[0].cutoff = r.signals[0].cutoff = {4000, 1799, 0.44975};
  EXPECT_EQ(Only(report, "missing-observations").severity, "warning");
  r.systems[0].cutoff = r.signals[0].cutoff = {4000, 1997, 0.49925};
  EXPECT_EQ(Only(report, "missing-observations").id, "");
}

TEST(Findings, AFairVerdictAlsoCountsTheSlips) {
  Report report = CleanDay();
  Slip(report, 1, 0);
  report.analysis.figures.contradictions = {{"marker", "ABCD", "ESBC"}};
  Found(report);
  EXPECT_EQ(report.verdict.text, "Marker: stated ABCD, found ESBC; 1 cycle slip");
}

TEST(Findings, ALongListOfNamesIsCut) {
  Report report = CleanDay();
  for (std::uint8_t number = 11; number <= 23; ++number) {
    report.analysis.figures.without_record.push_back({'C', number});
  }
  EXPECT_NE(Only(report, "not-judged").text.find("C20 and 3 more"), std::string::npos);
}

TEST(Findings, ADisturbedIonosphereIsNamed) {
  Report report = CleanDay();
  report.analysis.figures.systems[0].ionosphere.p95_roti = 5;
  EXPECT_EQ(Only(report, "ionosphere").title, "Ionosphere disturbed: ROTI 5.0 TECU/min");
}

}  // namespace
}  // namespace orsolva_host
