#include "qc/run_facts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "tests/unit/qc/process_runs.h"

namespace {

using namespace orsolva;
using namespace orsolva_test;

class Facts : public testing::Test {
 protected:
  std::vector<GpsEph_gbt> records_ = sky::Records(0.0, 14400.0);
  gnssqctoolkit::Ephemeris ephemeris_ = sky::Store(records_);
  std::vector<ObsEpoch_QC_gbt> epochs_ = sky::Epochs(ephemeris_, 0, 120, 30);

  static const SatelliteFacts& Of(const RunFacts& facts, std::uint8_t sys, int prn) {
    return *std::find_if(facts.satellites.begin(), facts.satellites.end(),
                         [sys, prn](const SatelliteFacts& s) { return s.sys == sys && s.prn == prn; });
  }
};

TEST_F(Facts, OfARunAreItsSettings) {
  const auto process = Process(sky::Config(), records_);
  ASSERT_EQ(Take(*process, epochs_), GNSSQC_OK);
  const RunFacts facts = CollectRunFacts(*process);
  EXPECT_TRUE(facts.valid);
  EXPECT_EQ(facts.averaging_window_epochs, 10);
  EXPECT_EQ(facts.interval_s, 30.0);
  EXPECT_EQ(facts.epochs, 120U);
  EXPECT_TRUE(facts.position_known);
  EXPECT_EQ(facts.thresholds.elevation_cutoff_rad, process->Config.ElevationMask);
  EXPECT_TRUE(facts.systems[0].enabled && facts.systems[0].merged);
  EXPECT_TRUE(facts.systems[5].enabled);
  EXPECT_FALSE(facts.systems[5].merged);
  EXPECT_EQ(facts.systems[0].code_count, 2);
  EXPECT_EQ(facts.systems[0].codes[0], 1);
  EXPECT_EQ(facts.systems[0].codes[1], 16);
  EXPECT_TRUE(facts.systems[0].bands[0] && facts.systems[0].bands[1]);
  EXPECT_FALSE(facts.systems[0].bands[2]) << "no code of the third band";
}

TEST_F(Facts, NameTheCodesBehindTheFigures) {
  const auto process = Process(sky::Config(), records_);
  ASSERT_EQ(Take(*process, epochs_), GNSSQC_OK);
  const RunFacts facts = CollectRunFacts(*process);
  const int prn = epochs_[0].sats[0].prn;
  for (const ChosenCombination* chosen :
       {&facts.systems[0].combination, &facts.total, &Of(facts, 1, prn).combination}) {
    EXPECT_EQ(chosen->codes[0], 1);
    EXPECT_EQ(chosen->codes[1], 16);
    EXPECT_EQ(chosen->codes[2], 0);
    EXPECT_EQ(chosen->mp_codes[0], 1);
    EXPECT_EQ(chosen->mp_partners[0], 16);
    EXPECT_EQ(chosen->mp_codes[1], 16);
    EXPECT_EQ(chosen->mp_partners[1], 1);
  }
  EXPECT_EQ(facts.systems[1].combination.codes[0], 0);
}

TEST_F(Facts, OfASatelliteOfOneBandAreItsOwn) {
  const int prn = epochs_[0].sats[0].prn;
  for (ObsEpoch_QC_gbt& epoch : epochs_) {
    for (Satellite_gbt& satellite : epoch.sats) {
      if (satellite.prn == prn) satellite.signals[0].code = 0;
    }
  }
  const auto process = Process(sky::Config(), records_);
  ASSERT_EQ(Take(*process, epochs_), GNSSQC_OK);
  const RunFacts facts = CollectRunFacts(*process);
  EXPECT_EQ(Of(facts, 1, prn).combination.codes[0], 0);
  EXPECT_EQ(Of(facts, 1, prn).combination.codes[1], 16);
  EXPECT_EQ(facts.systems[0].combination.codes[0], 1);
}

TEST_F(Facts, SayWhatWasDoneWithEverySatellite) {
  const int excluded = epochs_[0].sats[0].prn;
  const int unhealthy = epochs_[0].sats[1].prn;
  const int without = epochs_[0].sats[2].prn;
  const int used = epochs_[0].sats[3].prn;
  config_qct host = sky::Config();
  host.include_satellite[0][excluded - 1] = 0;
  host.enable_system[1] = 0;
  std::vector<GpsEph_gbt> records;
  for (GpsEph_gbt record : records_) {
    if (record.prn == unhealthy) record.svh = 1;
    if (record.prn != without) records.push_back(record);
  }
  const auto process = Process(host, records);
  ASSERT_EQ(Take(*process, epochs_), GNSSQC_OK);
  const RunFacts facts = CollectRunFacts(*process);
  EXPECT_EQ(Of(facts, 1, excluded).use, SatelliteUse::kExcluded);
  EXPECT_EQ(Of(facts, 1, unhealthy).use, SatelliteUse::kUnhealthy);
  EXPECT_EQ(Of(facts, 1, without).use, SatelliteUse::kNoRecord);
  EXPECT_EQ(Of(facts, 1, without).records, 0);
  EXPECT_TRUE(Of(facts, 1, without).observed);
  EXPECT_EQ(Of(facts, 1, used).use, SatelliteUse::kUsed);
  EXPECT_EQ(Of(facts, 1, used).records, 3);
  EXPECT_EQ(Of(facts, 1, 35).use, SatelliteUse::kNotObserved);
  EXPECT_EQ(Of(facts, 2, 1).use, SatelliteUse::kSystemDisabled);
  EXPECT_EQ(Of(facts, 8, 1).use, SatelliteUse::kNotObserved);
}

TEST_F(Facts, TellASatelliteBelowTheCutoffFromOneWithoutAPosition) {
  config_qct host = sky::Config();
  host.elevation = 89.9;
  const auto process = Process(host, records_);
  ASSERT_EQ(Take(*process, epochs_), GNSSQC_OK);
  const int prn = epochs_[0].sats[0].prn;
  EXPECT_EQ(Of(CollectRunFacts(*process), 1, prn).use, SatelliteUse::kBelowCutoff);
  std::vector<GpsEph_gbt> old = records_;
  for (GpsEph_gbt& record : old) {
    record.week -= 1;
    record.toc.time -= 604800;
  }
  const auto aged = Process(sky::Config(), old);
  ASSERT_EQ(Take(*aged, epochs_), GNSSQC_OK);
  EXPECT_EQ(Of(CollectRunFacts(*aged), 1, prn).use, SatelliteUse::kNoElevation);
}

TEST_F(Facts, ChangeNoBit) {
  const auto asked = Process(sky::Config(), records_);
  const auto quiet = Process(sky::Config(), records_);
  for (int part = 0; part < 2; ++part) {
    const std::vector<ObsEpoch_QC_gbt> batch(epochs_.begin() + part * 60, epochs_.begin() + part * 60 + 60);
    Take(*asked, batch);
    CollectRunFacts(*asked);
    Take(*quiet, batch);
  }
  const auto a = std::make_unique<result_qct>(), b = std::make_unique<result_qct>();
  std::memset(a.get(), 0, sizeof *a);
  std::memset(b.get(), 0, sizeof *b);
  asked->WholePeriodResult(*a);
  quiet->WholePeriodResult(*b);
  EXPECT_EQ(std::memcmp(a.get(), b.get(), sizeof *a), 0);
}

TEST_F(Facts, HoldTheThresholdsOfTheTests) {
  const RunFacts facts = CollectRunFacts(*Process(sky::Config()));
  const RunThresholds& thresholds = facts.thresholds;
  EXPECT_NEAR(thresholds.elevation_split_rad, std::asin(0.5), 1e-15);
  for (const double gap : {0.5, 1.0, 10.0, 15.0, 20.0, 30.0, 45.0, 60.0, 90.0}) {
    const auto row = std::find_if(thresholds.phase_geometry.begin(), thresholds.phase_geometry.end(),
                                  [gap](const GapThreshold& one) { return gap <= one.gap_s; });
    ASSERT_NE(row, thresholds.phase_geometry.end());
    EXPECT_EQ(row->threshold_m, SlipThreshold(gap)) << gap;
  }
  for (const BandThreshold& row : thresholds.multipath) {
    double expected = -1.0;
    EXPECT_TRUE(MpJumpThreshold(row.sys, row.band, expected));
    EXPECT_EQ(row.threshold_m, expected) << int{row.sys} << " " << row.band;
  }
  EXPECT_GT(thresholds.multipath.size(), 15U);
  EXPECT_EQ(thresholds.record_ages[2].sys, 4);
  EXPECT_EQ(thresholds.record_ages[2].elevations_s, 21600.0);
  EXPECT_EQ(thresholds.record_ages[2].measures_s, 7200.0);
  EXPECT_EQ(thresholds.record_ages[4].elevations_s, 7200.0);
}

TEST_F(Facts, HoldTheLimitsOfTheRecords) {
  const RunFacts facts = CollectRunFacts(*Process(sky::Config()));
  EXPECT_EQ(facts.limits.satellites_per_epoch,
            static_cast<int>(sizeof(ObsEpoch_QC_gbt::sats) / sizeof(Satellite_gbt)));
  EXPECT_EQ(facts.limits.signals_per_satellite,
            static_cast<int>(sizeof(Satellite_gbt::signals) / sizeof(Signal_QC_gbt)));
  EXPECT_EQ(facts.limits.codes_per_system,
            static_cast<int>(sizeof(code_qc_block::entries) / sizeof(code_qc_entry)));
  EXPECT_EQ(facts.limits.leap_seconds, 18);
  EXPECT_EQ(facts.limits.gps_minus_bds_s, 14.0);
  EXPECT_EQ(facts.averaging_window_epochs, 50) << "before the first batch";
}

}  // namespace
