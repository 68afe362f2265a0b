#include "host/report/profile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host/report/verdict_text.h"
#include "tests/host/sample_report.h"

namespace orsolva_host {
namespace {

using orsolva_test::SampleReport;

std::string CriterionText(const std::string& limits) {
  return "name='n'\ntitle='t'\n[[criterion]]\nname='c'\nfigure='mp1'\nscope='system'\n" + limits +
         "\nsource='s'\n";
}

std::string GradeAt(double completeness) {
  Report report = SampleReport();
  report.systems[0].figures.completeness = completeness;
  return Judge(report, LoadProfile("network")).grade;
}

std::string Complaint(const std::string& text) {
  try {
    ParseProfile(text, "p.toml");
  } catch (const ProfileError& error) {
    return error.what();
  }
  return {};
}

TEST(Profile, NetworkIsGoodAbove90FairTo80AndFailsBelow) {
  EXPECT_EQ(GradeAt(0.95), "good");
  EXPECT_EQ(GradeAt(0.9), "fair");
  EXPECT_EQ(GradeAt(0.8), "fair");
  EXPECT_EQ(GradeAt(0.7999), "fail");
}

TEST(Profile, StationHoldsMultipathAndObservationsPerSlipOfGps) {
  Report report = SampleReport();
  report.systems[0].figures.bands[1].mp_m = 0.75;
  EXPECT_EQ(Judge(report, LoadProfile("station")).grade, "good");
  report.systems[0].figures.bands[1].mp_m = 0.8;
  report.systems[0].figures.obs_per_restart = 150;
  const ProfileVerdict v = Judge(report, LoadProfile("station"));
  EXPECT_EQ(v.grade, "fail");
  EXPECT_FALSE(v.passed);
  ASSERT_EQ(v.outcomes.size(), 3U);
  EXPECT_EQ(v.outcomes[0].criterion, "MP2");
  EXPECT_NEAR(v.outcomes[0].missed_by.value(), 0.05, 1e-12);
  EXPECT_EQ(v.outcomes[1].grade, "fair");
  EXPECT_EQ(v.outcomes[2].grade, "good");
}

TEST(Profile, TheTextNamesEachFailedCriterionAndByHowMuch) {
  Report report = SampleReport();
  report.systems[0].figures.completeness = 0.7;
  const std::string text = VerdictText(Judge(report, LoadProfile("network")), {});
  EXPECT_NE(text.find("fail G completeness: 70.00 %, 10.00 % below the limit of 80.00 %"), std::string::npos)
      << text;
}

TEST(Profile, FiguresWithoutDataFailOnlyWhenNothingCanBeJudged) {
  Report report = SampleReport();
  SystemReport other{'E', "Galileo", {}, {}, {}};
  report.systems.push_back(other);
  const ProfileVerdict some = Judge(report, LoadProfile("network"));
  EXPECT_TRUE(some.passed);
  EXPECT_EQ(some.outcomes.front().grade, "fair");
  EXPECT_EQ(some.outcomes.back().grade, "no data");
  report.systems.clear();
  const ProfileVerdict none = Judge(report, LoadProfile("network"));
  EXPECT_EQ(none.grade, "no data");
  EXPECT_FALSE(none.passed);
  ASSERT_EQ(none.outcomes.size(), 1U);
}

/// A day on which so many satellites of Galileo and of GPS were observed, and GPS has no orbits.
Report GalileoOnly(Count galileo, Count gps) {
  Report report = SampleReport();
  report.systems[0].letter = 'E';
  report.systems[0].figures.completeness = 0.9998;
  analysis::SystemFigures system;
  if (gps > 0) {
    system.letter = 'G';
    system.satellites_observed = system.satellites_without_record = gps;
    report.analysis.figures.systems.push_back(system);
  }
  system.letter = 'E';
  system.satellites_observed = galileo;
  system.satellites_without_record = 0;
  report.analysis.figures.systems.push_back(system);
  report.headline.satellites_tracked = galileo + gps;
  report.headline.satellites_with_orbit = galileo;
  return report;
}

TEST(Profile, WhatWasNotJudgedIsNeverGood) {
  const ProfileVerdict most = Judge(GalileoOnly(23, 96), LoadProfile("network"));
  EXPECT_EQ(most.grade, "no data");
  EXPECT_FALSE(most.passed);
  EXPECT_EQ(most.satellites_judged, Count{23});
  EXPECT_NE(VerdictText(most, {}).find("23 of 119"), std::string::npos) << VerdictText(most, {});
  const ProfileVerdict some = Judge(GalileoOnly(23, 10), LoadProfile("network"));
  EXPECT_EQ(some.grade, "fair");
  ASSERT_EQ(some.outcomes.size(), 2U);
  EXPECT_EQ(some.outcomes[0].subject, "G");
  EXPECT_EQ(some.outcomes[0].grade, "no data");
  EXPECT_EQ(Judge(GalileoOnly(23, 0), LoadProfile("network")).grade, "good");
}

TEST(Profile, EveryBuiltInProfileIsWholeAndNamesItsSources) {
  EXPECT_GE(kBuiltInProfileCount, 2);
  for (int i = 0; i < kBuiltInProfileCount; ++i) {
    const Profile profile = LoadProfile(kBuiltInProfiles[i].name);
    EXPECT_EQ(profile.name, kBuiltInProfiles[i].name);
    for (const Criterion& c : profile.criteria) EXPECT_FALSE(c.source.empty());
  }
}

TEST(Profile, AFileOfAUserIsRead) {
  const std::string path = testing::TempDir() + "orsolva_profile.toml";
  std::ofstream(path) << CriterionText("at_most = { good = 0.2, fair = 0.3 }");
  EXPECT_EQ(Judge(SampleReport(), LoadProfile(path)).outcomes.front().grade, "fair");
}

TEST(Profile, AShortNameMeansTheFigureOfItsScope) {
  const auto figure = [](const char* name, const char* scope) {
    const std::string text = std::string("name='n'\ntitle='t'\n[[criterion]]\nname='c'\nsource='s'\n") +
                             "at_most={good=1,fair=2}\nfigure='" + name + "'\nscope='" + scope + "'\n";
    return ParseProfile(text, "p.toml").criteria[0].figure;
  };
  EXPECT_EQ(figure("MP1", "headline"), "mp1_rms_m");
  EXPECT_EQ(figure("MP1", "signal"), "mp_rms_m");
  EXPECT_EQ(figure("slips", "headline"), "geometry_free_slips");
  EXPECT_EQ(figure("slips", "system"), "phase_geometry_slip_epochs");
  EXPECT_EQ(figure("jumps", "satellite"), "mp_restart_epochs");
}

TEST(Profile, MistakesAreNamedWithTheirLine) {
  EXPECT_EQ(Complaint("name = ").find("p.toml:1: "), 0U);
  EXPECT_NE(Complaint("name='n'\ntitle='t'\n").find("[[criterion]]"), std::string::npos);
  EXPECT_NE(Complaint(CriterionText("")).find("at_least or at_most"), std::string::npos);
  EXPECT_NE(Complaint(CriterionText("at_most={good=2,fair=1}")).find("easier"), std::string::npos);
  EXPECT_NE(Complaint(CriterionText("at_most={good=nan,fair=1}")).find("number"), std::string::npos);
  EXPECT_NE(Complaint(CriterionText("at_most={good=1,fair=1}\nodd=1")).find("p.toml:8: 'odd'"),
            std::string::npos);
  EXPECT_NE(Complaint("name='n'\ntitle='t'\ncriterion=[1]\n").find("p.toml:3"), std::string::npos);
  try {
    LoadProfile("/no/such/profile");
    ADD_FAILURE() << "a profile that is not there was read";
  } catch (const ProfileError& error) {
    EXPECT_NE(std::string(error.what()).find("neither a built-in profile (network"), std::string::npos)
        << error.what();
  }
}

std::string DeepKey() {
  std::string text = "name = 'n'\n# a comment may hold dots: " + std::string(200, '.') + "\n";
  for (int i = 0; i < 300000; ++i) text += "a.";
  return text + "a = 1\n";
}

TEST(Profile, AKeyOfManyPartsIsRefusedBeforeItUsesUpTheStack) {
  EXPECT_EQ(Complaint(DeepKey()), "p.toml:3: a key of more than 100 parts");
}

}  // namespace
}  // namespace orsolva_host
