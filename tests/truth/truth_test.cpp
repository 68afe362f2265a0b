// The proofs in their short form, and the page that shows the long one.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "host/report/figure_tables.h"
#include "host/report/figures.h"
#include "tests/support/sanitized.h"
#include "tests/support/text_file.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

std::string CommittedPage() {
  return ReadText(std::string(ORSOLVA_SOURCE_DIR) + "/docs/internals/validation.md");
}

/// Runs a proof in its short form, leaves its tables in <build>/validation and holds the page against them;
/// with a sanitizer some proofs have fewer cases, and the page is left to the ordinary build.
void Hold(const std::string& id, std::size_t least_checks) {
  const Proof proof = Prove(id, false);
  for (const std::string& failure : proof.Failures()) ADD_FAILURE() << failure;
  EXPECT_EQ(proof.Failed(), 0u);
  EXPECT_GE(proof.Checks(), kSanitized ? 1 : least_checks);
  if (kSanitized) return;
  const std::filesystem::path folder = std::filesystem::path(ORSOLVA_BINARY_DIR) / "validation";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / (id + ".md")) << proof.Markdown();
  for (const std::string& lack : proof.MissingFrom(SectionOf(id, CommittedPage()))) {
    ADD_FAILURE() << "docs/internals/validation.md lacks " << lack;
  }
}

TEST(Truth, CompletenessEpochsAndDurationAreExact) { Hold("completeness", 1000); }
TEST(Truth, SnrFiguresAreExactToTheArithmetic) { Hold("snr", 1000); }
TEST(Truth, MultipathIsTheInjectedNoiseLessItsMovingMean) { Hold("multipath-noise", 2000); }
TEST(Truth, MultipathHoldsThePhaseNoiseOfItsPairTimesItsWeights) { Hold("multipath-phase", 50); }
TEST(Truth, MultipathRestartsAboveTheThresholdOfTheBandOnly) { Hold("multipath-jumps", 1500); }
TEST(Truth, MultipathRestartsAfterGapsAboveSixHundredSeconds) { Hold("multipath-gaps", 5000); }
TEST(Truth, SlipTestsReportWhatTheirRulesSay) { Hold("slips", 1000000); }
TEST(Truth, PositionsAreNearTheTruthAndExclusionsMeetTheFaultySatellite) { Hold("position", 500); }
TEST(Truth, BestCombinationsAndMergedResultsFollowFromTheSatellites) { Hold("results", 20000); }
TEST(Truth, LawsHoldOnTroubledSkies) { Hold("laws", 800); }
TEST(Truth, DetectorFindsInjectedSlipsAndNoOthers) { Hold("detected-slips", 30); }
TEST(Truth, DetectorNamesClocksGlitchesAndFlagsAndNoSlips) { Hold("detected-clocks", 20); }
TEST(Truth, AnalysisCountsEpochsGapsAndCompletenessExactly) { Hold("counted-epochs", 1500); }
TEST(Truth, AnalysisFindsArcsAndInterruptionsByCause) { Hold("tracking", 1000); }
TEST(Truth, CodeFiguresAreTheInjectedNoiseAndMultipath) { Hold("code-figures", 150); }
TEST(Truth, PositionAndReceiverClockAreTheInjectedOnes) { Hold("receiver-figures", 45); }
TEST(Truth, StrengthPhaseNoiseAndIonosphericRateAreTheInjectedOnes) { Hold("signal-figures", 150); }
TEST(Truth, PositionsScatterAsGeometryAndNoiseSay) { Hold("point-figures", 60); }
TEST(Truth, WideLanesAndDisturbedMinutesAreTheInjectedOnes) { Hold("pooled-figures", 90); }
TEST(Truth, AnalysisCountsSlipsStepsFlagsAndInterruptionsExactly) { Hold("slip-counts", 5000); }
TEST(Truth, WrongStatementsOfHeaderAndNameAreNamedAlone) { Hold("statements", 60); }

/// The keys of the figures of the analysis.
std::set<std::string> AnalysisKeys() {
  std::set<std::string> keys;
  const auto add = [&keys](const auto& rows) {
    for (const auto& row : rows) keys.insert(row.key);
  };
  const orsolva_host::FigureTables& all = orsolva_host::AllFigures();
  add(all.analysis);
  add(all.analysis_system);
  add(all.analysis_signal);
  add(all.analysis_satellite);
  add(all.wide_lane);
  return keys;
}

TEST(ValidationPage, HasAProofOfEveryFigureOfTheAnalysis) {
  const std::string page = CommittedPage();
  const std::set<std::string> keys = AnalysisKeys();
  ASSERT_GE(keys.size(), 90u);
  std::set<std::string> proved;
  for (const ProofEntry& entry : AllProofs()) {
    for (const std::string& key : FiguresIn(SectionOf(entry.id, page))) {
      EXPECT_NE(orsolva_host::FindFigure(key), nullptr)
          << entry.id << " proves " << key << ", which is no figure";
      proved.insert(key);
    }
  }
  for (const std::string& key : keys) EXPECT_EQ(proved.count(key), 1u) << key << " has no proof";
}

TEST(ValidationPage, ShowsEveryProofInItsLongFormWithTheCommand) {
  const std::string page = CommittedPage();
  EXPECT_NE(page.find("build/bin/truth_report --long --write docs/internals/validation.md"),
            std::string::npos);
  for (const ProofEntry& entry : AllProofs()) {
    const std::string section = SectionOf(entry.id, page);
    EXPECT_NE(section.find("- **Form:** long\n"), std::string::npos) << entry.id;
    EXPECT_NE(section.find(", 0 failed."), std::string::npos) << entry.id;
    EXPECT_NE(section.find("| --- |"), std::string::npos) << entry.id << " has no table";
  }
}

TEST(ValidationPage, OnlyWhatStandsBetweenTheMarkersIsReplaced) {
  std::string page = "a\n<!-- proof:x -->\nold\n<!-- /proof:x -->\nb\n";
  ASSERT_TRUE(ReplaceSection("x", "new\n", page));
  EXPECT_EQ(page, "a\n<!-- proof:x -->\nnew\n<!-- /proof:x -->\nb\n");
  EXPECT_FALSE(ReplaceSection("y", "new\n", page));
}

TEST(ValidationPage, TableWithoutARowOfTheSameKeysIsNoticed) {
  Proof proof;
  proof.tables.push_back({"Caption.", {"size", "rate"}, {{"1", "50"}, {"2", "60"}}});
  const std::string page = proof.Markdown();
  EXPECT_TRUE(proof.MissingFrom(page).empty());
  proof.tables[0].rows[1] = {"2", "61"};
  EXPECT_TRUE(proof.MissingFrom(page).empty()) << "figures of the short form may differ";
  proof.tables[0].rows[1] = {"3", "60"};
  EXPECT_EQ(proof.MissingFrom(page).size(), 1u);
  proof.tables[0].columns[1] = "share";
  EXPECT_EQ(proof.MissingFrom(page).size(), 1u);
}

TEST(ValidationPage, ListsTheFiguresOfAProof) {
  Proof proof;
  EXPECT_TRUE(FiguresIn(proof.Markdown()).empty());
  proof.figures = {"arcs", "pdop_p95"};
  const std::string page = proof.Markdown();
  EXPECT_EQ(FiguresIn(page), proof.figures);
  EXPECT_TRUE(proof.MissingFrom(page).empty());
  proof.figures.pop_back();
  EXPECT_EQ(proof.MissingFrom(page).size(), 1u);
}

TEST(Proof, CountsWhatDoesNotHold) {
  Proof proof;
  proof.Check(true, "one");
  proof.Check(false, "two");
  EXPECT_EQ(proof.Checks(), 2u);
  EXPECT_EQ(proof.Failed(), 1u);
  EXPECT_EQ(proof.Failures().at(0), "two");
}

}  // namespace
}  // namespace orsolva_test
