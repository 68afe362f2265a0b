#include "measures/driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/unit/measures/synthetic_run.h"

namespace {
long g_allocations = 0;
}

// Counts every allocation of this program, so that a test can see which calls make none.
__attribute__((noinline)) void* operator new(std::size_t size) {
  ++g_allocations;
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace orsolva {
namespace {

using orsolva_test::kL1;
using orsolva_test::kL2;
using orsolva_test::kReferenceTime;
using orsolva_test::Observation;
using orsolva_test::RecordingObserver;
using orsolva_test::SyntheticRun;

// Every statistic of every satellite, bit for bit.
std::string Bits(const IonSlipAndMultipath& measures) {
  std::ostringstream text;
  text << std::hexfloat;
  for (int number = 1; number <= 208; ++number) {
    for (int slot = 0; slot < kBandSlots; ++slot) {
      for (int i = 0; i < measures.Multipath(number).Count[slot]; ++i) {
        const AbsoluteMp& mp = *measures.Multipath(number).Pairs[slot][i];
        const IodDetect& iod = *measures.Ionosphere(number).Pairs[slot][i];
        text << number << ' ' << mp.Code << ' ' << mp.Partner << ' ' << mp.SumOfSquares << ' ' << mp.Count
             << ' ' << mp.LastEpoch.Seconds << ' ' << mp.LastEpoch.Fraction << ' ' << mp.Values.Mean() << ' '
             << mp.Residuals.Mean() << ' ' << mp.RestartTimes.Size() << ' ' << iod.SlipCount << ' '
             << iod.SlipTimes.Size() << ' ' << iod.GeometryFree << ' ' << iod.PreviousEpoch.Seconds << ' '
             << iod.PhaseMinusGeometry << ' ' << iod.Difference << ' ' << iod.SlipFlag << ' '
             << iod.WideLaneMean << ' ' << iod.WideLaneVariance << ' ' << iod.WideLaneCount << ' '
             << iod.LongestArcCount << ' ' << iod.LongestArcVariance << ' ' << iod.LastPseudorange << ' '
             << iod.LastPhase << '\n';
      }
    }
  }
  return text.str();
}

// A busy series: slips, code noise, outages, satellites coming and going, changes of records.
QcEpochData BusyEpoch(const SyntheticRun& run, int prn, int i) {
  std::mt19937 random(static_cast<std::uint32_t>(prn * 10007 + i));
  const auto unit = [&] { return static_cast<double>(random()) / 4294967296.0; };
  Observation change;
  change.CodeError = 4.0 * unit() - 2.0;
  change.Slip1 = (prn * 3 + i) / 11 * 2.0;
  change.Slip2 = (prn * 5 + i) / 17 * 1.0;
  if (unit() < 0.02) change.CodeError += 80.0;
  QcEpochData epoch = run.Epoch(prn, run.Interval * i, change);
  if (unit() < 0.1) epoch.Slots[1].Count = 0;
  if (unit() < 0.1) epoch.Slots[0].Signals[0].phase = 0.0;
  return epoch;
}

bool Missing(int prn, int i) { return (prn + i / 7) % 5 == 0 || (prn == 3 && i % 90 > 40 && i % 90 < 65); }

std::string RunInBatches(const std::vector<int>& ends) {
  SyntheticRun run(30.0, 8);
  for (int prn = 1; prn <= 8; ++prn) run.Records.Gps().Add(orsolva_test::GpsRecord(prn, 3600.0));
  int first = 0;
  for (int end : ends) {
    for (int prn = 1; prn <= 8; ++prn) {
      for (int i = first; i < end; ++i) {
        if (!Missing(prn, i))
          run.Measures.AddSatelliteEpoch(prn, BusyEpoch(run, prn, i), (prn + i / 30) % 6 != 0);
      }
    }
    run.Pass();
    first = end;
  }
  return Bits(run.Measures);
}

TEST(Driver, AnySplitIntoBatchesGivesTheSameBits) {
  constexpr int kEpochs = 180;
  const std::string whole = RunInBatches({kEpochs});
  EXPECT_NE(std::string::npos, whole.find("0x1."));
  std::vector<int> one_by_one;
  for (int i = 1; i <= kEpochs; ++i) one_by_one.push_back(i);
  EXPECT_EQ(whole, RunInBatches(one_by_one));
  std::mt19937 random(7);
  for (int trial = 0; trial < 8; ++trial) {
    std::vector<int> ends;
    for (int end = 0; end < kEpochs;) {
      end = std::min(kEpochs, end + 1 + static_cast<int>(random() % 40));
      ends.push_back(end);
    }
    EXPECT_EQ(whole, RunInBatches(ends));
  }
}

TEST(Driver, BatchOfOneEpochAllocatesNothingOnceWarm) {
  SyntheticRun run(1.0, 4);
  std::vector<std::vector<QcEpochData>> epochs;
  constexpr int kWarm = 2000, kMeasured = 2000;
  for (int i = 0; i < kWarm + kMeasured; ++i) {
    epochs.emplace_back();
    for (int prn = 1; prn <= 4; ++prn) epochs.back().push_back(run.Epoch(prn, i));
  }
  long before = 0;
  for (int i = 0; i < kWarm + kMeasured; ++i) {
    if (i == kWarm) before = g_allocations;
    for (int prn = 1; prn <= 4; ++prn) {
      run.Measures.AddSatelliteEpoch(
          prn, epochs[static_cast<std::size_t>(i)][static_cast<std::size_t>(prn - 1)], true);
    }
    run.Pass();
    ASSERT_EQ(i > 0 ? 1 : 0, run.Measures.Multipath(1).Count[0]);
  }
  EXPECT_EQ(before, g_allocations);
  EXPECT_EQ(kWarm + kMeasured, run.Mp(1)->Count);
}

TEST(Driver, ObserverChangesNoBitAndGetsEveryPairOncePerEpoch) {
  SyntheticRun silent, watched;
  RecordingObserver observer;
  for (SyntheticRun* run : {&silent, &watched}) {
    for (int prn = 1; prn <= 5; ++prn) {
      for (int i = 0; i < 40; ++i) run->Measures.AddSatelliteEpoch(prn, BusyEpoch(*run, prn, i), true);
    }
  }
  silent.Pass();
  watched.Pass(&observer);
  EXPECT_EQ(Bits(silent.Measures), Bits(watched.Measures));
  int slips = 0, restarts = 0;
  std::size_t at = 0;
  for (int i = 0; i < 40; ++i) {
    for (int prn = 1; prn <= 5; ++prn) {
      const int codes = BusyEpoch(silent, prn, i).Slots[1].Count + 1;
      for (int k = 0; k < codes; ++k, ++at) {
        ASSERT_LT(at, observer.Pairs.size());
        const PairEpochDetail& detail = observer.Pairs[at];
        EXPECT_EQ(prn, detail.number);
        EXPECT_EQ(prn, detail.satellite.prn);
        EXPECT_EQ(kReferenceTime + 30 * i, detail.time.time);
        EXPECT_EQ(k == 0 ? kL1 : kL2, detail.code);
        slips += detail.geometry_slip != GeometrySlipReason::kNone ? 1 : 0;
        const bool event =
            detail.restart == RestartReason::kJump || detail.restart == RestartReason::kIonosphereSlip;
        restarts += event ? 1 : 0;
      }
    }
  }
  EXPECT_EQ(at, observer.Pairs.size());
  int counted = 0, recorded = 0;
  for (int prn = 1; prn <= 5; ++prn) {
    for (int slot : {0, 1}) {
      counted += static_cast<int>(silent.Iod(prn, slot)->SlipCount);
      recorded += silent.Mp(prn, slot)->RestartTimes.Size();
    }
  }
  EXPECT_GT(counted, 0);
  EXPECT_GT(recorded, 0);
  EXPECT_EQ(counted, slips);
  EXPECT_EQ(recorded, restarts);
}

TEST(Driver, DetailNamesTheChangeOfRecords) {
  SyntheticRun run;
  for (int prn = 1; prn <= 3; ++prn) {
    for (int i = 0; i < 10; ++i) run.Measures.AddSatelliteEpoch(prn, run.Epoch(prn, 30.0 * i), true);
  }
  run.Records.Gps().Add(orsolva_test::GpsRecord(2, 270.0));
  RecordingObserver observer;
  run.Pass(&observer);
  int changes = 0;
  for (const PairEpochDetail& detail : observer.Pairs) {
    if (!detail.new_ephemeris) continue;
    EXPECT_EQ(2, detail.number);
    EXPECT_EQ(GeometrySlipReason::kNewEphemeris, detail.geometry_slip);
    EXPECT_GT(std::fabs(detail.excess_m), detail.geometry_threshold_m);
    ++changes;
  }
  EXPECT_EQ(2, changes);
}

TEST(Driver, CountsNoMoreThanWasFedForAbsurdInput) {
  SyntheticRun run;
  const double absurd[] = {1e308,
                           -1e308,
                           1e-320,
                           5e-12,
                           std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN(),
                           0.0};
  const std::int64_t times[] = {0,
                                -1,
                                std::numeric_limits<std::int64_t>::min(),
                                std::numeric_limits<std::int64_t>::max(),
                                4102444800,
                                kReferenceTime};
  const double fractions[] = {0.0, 0.5, -1e300, 1e300, 7.25, std::numeric_limits<double>::quiet_NaN()};
  std::mt19937 random(3);
  for (int batch = 0; batch < 200; ++batch) {
    for (int prn = 1; prn <= 4; ++prn) {
      for (int i = 0; i < 5; ++i) {
        QcEpochData epoch = run.Epoch(prn, 30.0 * i);
        epoch.Time = {times[random() % 6] + 0, fractions[random() % 6]};
        Signal_QC_gbt& signal = epoch.Slots[random() % 2].Signals[0];
        (random() % 2 == 0 ? signal.phase : signal.pseudorange) = absurd[random() % 7];
        run.Measures.AddSatelliteEpoch(prn, epoch, random() % 2 == 0);
      }
    }
    const double intervals[] = {1e-300, 1e-9, 30.0, 1e300, 0.0, std::numeric_limits<double>::quiet_NaN()};
    run.Interval = intervals[random() % 6];
    run.Pass();
  }
  constexpr int kFed = 200 * 5;  // epochs a satellite
  std::int64_t values = 0;
  for (int prn = 1; prn <= 4; ++prn) {
    for (int slot : {0, 1}) {
      const AbsoluteMp* mp = run.Mp(prn, slot);
      const IodDetect* iod = run.Iod(prn, slot);
      ASSERT_TRUE(mp != nullptr && iod != nullptr) << prn;
      values += mp->Count;
      EXPECT_LE(mp->Count, kFed) << prn;
      EXPECT_LE(mp->RestartTimes.Size(), kFed) << prn;
      EXPECT_LE(mp->Values.Count(), mp->WindowLength) << prn;
      EXPECT_EQ(static_cast<int>(iod->SlipCount), iod->SlipTimes.Size()) << prn;
      EXPECT_LE(iod->SlipCount, 2U * kFed) << prn;
      EXPECT_LE(iod->WideLaneCount, kFed) << prn;
      EXPECT_GE(iod->WideLaneCount, 0) << prn;
    }
  }
  EXPECT_GT(values, 0);
}

}  // namespace
}  // namespace orsolva
