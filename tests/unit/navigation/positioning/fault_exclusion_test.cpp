#include "navigation/positioning/fault_exclusion.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/trace_recorder.h"

namespace gnssqctoolkit {
namespace {

using orsolva_test::TraceRecorder;

// GPS satellites 1 to n; the observation's range is its number, so that a solver knows which one is
// missing.
SppEpoch Epoch(int n) {
  SppEpoch epoch;
  epoch.Time = {1599134400, 0.125};
  for (int prn = 1; prn <= n; ++prn) {
    SppObservation o;
    o.Satellite = {kGps, prn};
    o.Pseudorange = prn;
    epoch.Observations.push_back(o);
  }
  return epoch;
}

int Missing(const SppEpoch& rest) {
  int sum = 0;
  for (const auto& o : rest.Observations) sum += o.Satellite.prn;
  const int n = static_cast<int>(rest.Observations.size()) + 1;
  return n * (n + 1) / 2 - sum;
}

// A solver whose solution without satellite k has the residual rms[k - 1] for every satellite; negative
// fails.
SppSolver Scripted(std::vector<double> rms, int valid = 99) {
  return
      [rms, valid](const SppEpoch& rest, const SPPOption&, SPPResult& result, std::vector<SppMark>& marks) {
        const int missing = Missing(rest);
        const double one = rms[static_cast<std::size_t>(missing - 1)];
        if (one < 0.0) return false;
        marks.assign(rest.Observations.size(), SppMark{});
        for (std::size_t i = 0; i < marks.size(); ++i) {
          marks[i] = {static_cast<int>(i) < valid, {0.1 * rest.Observations[i].Satellite.prn, 0.5}, one};
        }
        result.Rr[0] = missing;
        result.Status = 1;
        return true;
      };
}

bool Search(const SppEpoch& epoch, const SppSolver& solver, SPPResult& result, std::vector<SppMark>& marks) {
  return ExcludeFault(epoch, SPPOption(), SPPResult(), result, marks, solver);
}

TEST(ExcludeFault, KeepsTheSmallestRms) {
  SPPResult result;
  std::vector<SppMark> marks;
  ASSERT_TRUE(Search(Epoch(8), Scripted({9, 8, 3, 7, 6, 5, 4, 20}), result, marks));
  EXPECT_EQ(result.Rr[0], 3);
  ASSERT_EQ(marks.size(), 8u);
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(marks[i].Valid, i != 2);
    if (i != 2) {
      EXPECT_EQ(marks[i].Residual, 3.0);
      EXPECT_DOUBLE_EQ(marks[i].AzimuthElevation[0], 0.1 * static_cast<double>(i + 1));
    }
  }
}

TEST(ExcludeFault, ExcludesTheLaterOfTwoWithEqualRms) {
  SPPResult result;
  std::vector<SppMark> marks;
  ASSERT_TRUE(Search(Epoch(8), Scripted({9, 2, 9, 9, 9, 2, 9, 9}), result, marks));
  EXPECT_EQ(result.Rr[0], 6);
}

TEST(ExcludeFault, FailsWhenEveryRmsIsAboveAHundredMetres) {
  SPPResult result;
  std::vector<SppMark> marks;
  EXPECT_FALSE(Search(Epoch(8), Scripted(std::vector<double>(8, 100.01)), result, marks));
  EXPECT_EQ(result.Rr[0], 0);
  EXPECT_EQ(result.Status, 0);
  EXPECT_TRUE(Search(Epoch(8), Scripted(std::vector<double>(8, 100.0)), result, marks));
}

TEST(ExcludeFault, NeverKeepsASolutionWithFourValidResiduals) {
  SPPResult result;
  std::vector<SppMark> marks;
  EXPECT_FALSE(Search(Epoch(8), Scripted(std::vector<double>(8, 1.0), 4), result, marks));
  EXPECT_TRUE(Search(Epoch(8), Scripted(std::vector<double>(8, 1.0), 5), result, marks));
}

TEST(ExcludeFault, NeverKeepsAnRmsThatIsNotANumber) {
  SPPResult result;
  std::vector<SppMark> marks;
  EXPECT_FALSE(Search(Epoch(8), Scripted(std::vector<double>(8, std::nan(""))), result, marks));
}

TEST(ExcludeFault, TriesEveryObservationHoweverFew) {
  int runs = 0;
  const SppSolver counting = [&runs](const SppEpoch&, const SPPOption&, SPPResult&, std::vector<SppMark>&) {
    ++runs;
    return false;
  };
  SPPResult result;
  std::vector<SppMark> marks;
  EXPECT_FALSE(Search(Epoch(2), counting, result, marks));
  EXPECT_EQ(runs, 2);
}

TEST(ExcludeFault, StartsEachCandidateFromTheSamePlace) {
  const SppSolver solver = [](const SppEpoch&, const SPPOption&, SPPResult& r, std::vector<SppMark>&) {
    EXPECT_EQ(r.Rr[0], 123.0);
    r.Rr[0] = 0.0;
    return false;
  };
  SPPResult start, result;
  start.Rr[0] = 123.0;
  std::vector<SppMark> marks;
  EXPECT_FALSE(ExcludeFault(Epoch(3), SPPOption(), start, result, marks, solver));
}

TEST(ExcludeFault, WordsItsSteps) {
  TraceRecorder trace;
  SPPResult result;
  std::vector<SppMark> marks;
  ASSERT_TRUE(Search(Epoch(6), Scripted({-1, 12.3456, 7, 99, 99, 99}), result, marks));
  ASSERT_EQ(trace.Texts.size(), 7u);
  EXPECT_EQ(trace.Texts[0], "raim_fde: exsat= 1 (G01)\n");
  EXPECT_EQ(trace.Texts[1], "raim_fde: exsat= 2 rms=  12.346\n");
  EXPECT_EQ(trace.Texts[6], "2020/09/03 12:00:00.125: G03 excluded by raim\n");
  trace.Texts.clear();
  EXPECT_FALSE(Search(Epoch(6), Scripted(std::vector<double>(6, 1.0), 3), result, marks));
  EXPECT_EQ(trace.Texts[0], "raim_fde: exsat= 1 lack of satellites nvsat= 3\n");
}

}  // namespace
}  // namespace gnssqctoolkit
