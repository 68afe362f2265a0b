// The analysis gives the same events and figures however its epochs come: one, seven or all of them between
// two looks at what it has found.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

#include "tests/support/analysis_sky.h"
#include "tests/support/value_digest.h"

namespace orsolva_test {
namespace {

using orsolva_host::analysis::AnalysisResult;
using orsolva_host::analysis::Event;
using orsolva_host::analysis::EventKind;

/// A sky in which everything goes wrong.
AnalysisSky TroubledSky(double interval_s, int epochs) {
  SkyOptions options;
  options.Interval = interval_s;
  options.Epochs = epochs;
  options.MissingShare = 0.02;
  options.LowestElevation = 0.2;
  AnalysisSky sky{SimulatedSky(options)};
  AddTroubles(sky, 5);
  return sky;
}

void HoldsInEverySplit(const AnalysisSky& sky, bool with_records) {
  const auto records = with_records ? sky.Records : orsolva_host::BroadcastRecords();
  const AnalysisOutcome whole = Analysed(sky, records, sky.Epochs.size());
  std::set<EventKind> kinds;
  for (const Event& event : whole.Events) kinds.insert(event.kind);
  EXPECT_GT(whole.Events.size(), 50U);
  EXPECT_GT(kinds.size(), 5U);
  for (const std::size_t share : {std::size_t{1}, std::size_t{7}}) {
    const AnalysisOutcome split = Analysed(sky, records, share);
    EXPECT_EQ(DigestOf(split.Events), DigestOf(whole.Events)) << share << " epochs per call";
    EXPECT_EQ(DigestOf(split.Figures), DigestOf(whole.Figures)) << share << " epochs per call";
  }
}

TEST(AnalysisSplit, EightHoursGiveTheSameBitsInAnySplit) { HoldsInEverySplit(TroubledSky(120, 240), true); }

TEST(AnalysisSplit, SoDoTheyWithoutNavigation) { HoldsInEverySplit(TroubledSky(120, 240), false); }

TEST(AnalysisSplit, SoDoOneSecondEpochs) { HoldsInEverySplit(TroubledSky(1, 600), true); }

TEST(AnalysisSplit, ADigestTakesInEveryMember) {
  AnalysisResult figures;
  const std::uint64_t empty = DigestOf(figures);
  figures.position.scatter_enu_m = {0, 0, 0};
  EXPECT_NE(DigestOf(figures), empty);
  figures = AnalysisResult();
  figures.without_record.push_back({'G', 1});
  EXPECT_NE(DigestOf(figures), empty);
  Event a, b;
  b.evidence = "2W";
  EXPECT_NE(DigestOf(a), DigestOf(b));
}

}  // namespace
}  // namespace orsolva_test
