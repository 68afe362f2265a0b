#include "qc/observations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "tests/support/sky.h"
#include "toolkit/signals.h"

namespace {

using namespace orsolva;

struct SlotCase {
  int System;
  int Band;
  int Slot;
};

// Frequency slot by system and frequency number; everything else is dropped.
constexpr SlotCase kSlots[] = {
    {1, 1, 0}, {1, 2, 1}, {1, 5, 2}, {2, 1, 0},  {2, 2, 1},  {2, 3, 2},  {4, 1, 3},  {4, 5, 1},
    {4, 6, 2}, {4, 7, 4}, {4, 8, 5}, {4, 21, 0}, {4, 27, 1}, {4, 36, 2}, {8, 1, 0},  {8, 5, 1},
    {8, 6, 4}, {8, 7, 2}, {8, 8, 3}, {16, 1, 0}, {16, 2, 1}, {16, 5, 2}, {16, 6, 3},
};

int ExpectedSlot(int system, int band) {
  for (const SlotCase& c : kSlots) {
    if (c.System == system && c.Band == band) return c.Slot;
  }
  return -1;
}

TEST(FrequencySlot, FollowsTheTableForEveryCodeOfEverySystem) {
  const auto data = std::make_unique<QcGNSSObsData>();
  for (const int system : {1, 2, 4, 8, 16}) {
    for (int code = 0; code < 256; ++code) {
      const int band = gnssqctoolkit::SignalBand(system, code);
      EXPECT_EQ(data->FrequencySlot(static_cast<std::uint8_t>(system), static_cast<std::uint8_t>(code)),
                ExpectedSlot(system, band))
          << "system " << system << " code " << code;
    }
  }
  EXPECT_EQ(data->FrequencySlot(32, 200), -1);
}

QcEpochData StoredEpochOf(const ObsEpoch_QC_gbt& epoch, int number, std::size_t i = 0) {
  const auto data = std::make_unique<QcGNSSObsData>();
  data->StoreEpoch(epoch, 1, 31, nullptr);
  QcEpochData out;
  EXPECT_GT(data->Sats[number - 1].Epochs.size(), i);
  data->Sats[number - 1].Load(i, out);
  return out;
}

TEST(Ingestion, SignalsAreCopiedWholeIntoTheirSlots) {
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000, 0.25);
  Satellite_gbt& satellite = sky::AddSatellite(epoch, 1, 7, {1, 16, 20});
  satellite.signals[1].doppler = 12.5F;
  const QcEpochData data = StoredEpochOf(epoch, 7);
  EXPECT_EQ(data.Time.time, 1000);
  EXPECT_EQ(data.Time.sec, 0.25);
  EXPECT_EQ(data.Slots[0].Count, 1);
  EXPECT_EQ(data.Slots[1].Count, 1);
  EXPECT_EQ(data.Slots[2].Count, 1);
  EXPECT_EQ(data.Slots[1].Signals[0].code, 16);
  EXPECT_EQ(data.Slots[1].Signals[0].doppler, 12.5F);
  EXPECT_EQ(data.Slots[1].Signals[0].pseudorange, 2.2e7);
}

TEST(Ingestion, CodeZeroIsSkippedEvenWhenTheCountCoversIt) {
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  sky::AddSatellite(epoch, 1, 7, {0, 1});
  const QcEpochData data = StoredEpochOf(epoch, 7);
  EXPECT_EQ(data.Slots[0].Count, 1);
  EXPECT_EQ(data.Slots[0].Signals[0].code, 1);
}

TEST(Ingestion, ASlotTakesThreeSignals) {
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  sky::AddSatellite(epoch, 1, 7, {1, 2, 3, 4, 16});
  const QcEpochData data = StoredEpochOf(epoch, 7);
  EXPECT_EQ(data.Slots[0].Count, 3);
  EXPECT_EQ(data.Slots[0].Signals[2].code, 3);
  EXPECT_EQ(data.Slots[1].Signals[0].code, 16);
}

TEST(Ingestion, SystemThirtyTwoAndNumbersOutOfRangeAreDropped) {
  const auto data = std::make_unique<QcGNSSObsData>();
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  sky::AddSatellite(epoch, 32, 1, {200});
  sky::AddSatellite(epoch, 1, 36, {1});
  sky::AddSatellite(epoch, 1, 0, {1});
  sky::AddSatellite(epoch, 1, -5, {1});
  sky::AddSatellite(epoch, 3, 5, {1});
  sky::AddSatellite(epoch, 16, 193, {120});
  data->StoreEpoch(epoch, 1, 0xFFFFFFFFU, nullptr);
  EXPECT_TRUE(data->PresentSatellites().empty());
}

TEST(Ingestion, ASatelliteOfADisabledSystemLeavesNoRecord) {
  const auto data = std::make_unique<QcGNSSObsData>();
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  sky::AddSatellite(epoch, 1, 5, {1});
  sky::AddSatellite(epoch, 2, 5, {30});
  data->StoreEpoch(epoch, 1, 2, nullptr);
  EXPECT_EQ(data->PresentSatellites(), std::vector<int>{40});
  EXPECT_EQ(data->Sats[39].Satellite.prn, 5);
}

TEST(Ingestion, QzssNumbersOneToTenAreStored) {
  const auto data = std::make_unique<QcGNSSObsData>();
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  sky::AddSatellite(epoch, 16, 10, {120});
  data->StoreEpoch(epoch, 1, 31, nullptr);
  EXPECT_EQ(data->PresentSatellites(), std::vector<int>{201});
}

TEST(Ingestion, OnlyEightyMayBeReadOfMoreSatellites) {
  ObsEpoch_QC_gbt epoch{};
  epoch.sat_num = 4294967295U;
  EXPECT_EQ(SatellitesIn(epoch), 80U);
  epoch.sats[0].signal_num = 4294967295U;
  EXPECT_EQ(SignalsIn(epoch.sats[0]), 8U);
  const auto data = std::make_unique<QcGNSSObsData>();
  data->StoreEpoch(epoch, 1, 31, nullptr);
  EXPECT_TRUE(data->PresentSatellites().empty());
}

TEST(Ingestion, ValuesThatAreNotFiniteCountAsAbsent) {
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  Satellite_gbt& satellite = sky::AddSatellite(epoch, 1, 7, {1});
  satellite.signals[0].pseudorange = std::numeric_limits<double>::infinity();
  satellite.signals[0].phase = std::numeric_limits<double>::quiet_NaN();
  satellite.signals[0].snr = -std::numeric_limits<float>::infinity();
  const QcEpochData data = StoredEpochOf(epoch, 7);
  EXPECT_EQ(data.Slots[0].Signals[0].pseudorange, 0.0);
  EXPECT_EQ(data.Slots[0].Signals[0].phase, 0.0);
  EXPECT_EQ(data.Slots[0].Signals[0].snr, 0.0F);
}

TEST(Ingestion, EpochsOfASatelliteKeepTheirOrderAndSignals) {
  const auto data = std::make_unique<QcGNSSObsData>();
  for (int i = 0; i < 3; ++i) {
    ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000 + i);
    sky::AddSatellite(epoch, 1, 7, i == 1 ? std::vector<int>{16} : std::vector<int>{16, 1});
    data->StoreEpoch(epoch, static_cast<std::uint32_t>(i), 31, nullptr);
  }
  QcEpochData out;
  data->Sats[6].Load(2, out);
  EXPECT_EQ(out.Time.time, 1002);
  EXPECT_EQ(out.Slots[0].Signals[0].code, 1);
  EXPECT_EQ(out.Slots[1].Signals[0].code, 16);
  data->Sats[6].Load(1, out);
  EXPECT_EQ(out.Slots[0].Count, 0);
}

TEST(Ingestion, ResetForgetsTheBatchAndKeepsTheCodeLists) {
  const auto data = std::make_unique<QcGNSSObsData>();
  ObsEpoch_QC_gbt epoch = sky::EmptyEpoch(1000);
  sky::AddSatellite(epoch, 1, 7, {1});
  data->StoreEpoch(epoch, 1, 31, nullptr);
  data->CodeLists[0].Append(1);
  data->ResetBatch();
  EXPECT_TRUE(data->PresentSatellites().empty());
  EXPECT_TRUE(data->Sats[6].Epochs.empty());
  EXPECT_FALSE(data->CodeListsEmpty());
  data->Release();
  EXPECT_TRUE(data->CodeListsEmpty());
}

TEST(Ingestion, MemoryOfAHugeBatchIsGivenBack) {
  QcSatData satellite;
  const Time_gbt time{};
  const SlottedSignals slotted{};
  for (int i = 0; i < 100000; ++i) satellite.Append(time, static_cast<std::uint32_t>(i), slotted);
  satellite.Reset();
  EXPECT_LT(satellite.Epochs.capacity(), 100000U);
  for (int i = 0; i < 100; ++i) satellite.Append(time, static_cast<std::uint32_t>(i), slotted);
  const std::size_t kept = satellite.Epochs.capacity();
  satellite.Reset();
  EXPECT_EQ(satellite.Epochs.capacity(), kept);
}

BatchCodes Collected(const std::vector<ObsEpoch_QC_gbt>& epochs) {
  BatchCodes codes;
  codes.Collect(sky::Batch(epochs));
  return codes;
}

TEST(BatchCodes, StandInOrderOfFirstAppearance) {
  std::vector<ObsEpoch_QC_gbt> epochs(2);
  sky::AddSatellite(epochs[0], 1, 7, {16, 0, 1});
  sky::AddSatellite(epochs[0], 16, 1, {120});
  sky::AddSatellite(epochs[1], 1, 7, {20, 1});
  const BatchCodes codes = Collected(epochs);
  ASSERT_EQ(codes.Systems[0].Count, 3);
  EXPECT_EQ(codes.Systems[0].Codes[0], 16);
  EXPECT_EQ(codes.Systems[0].Codes[1], 1);
  EXPECT_EQ(codes.Systems[0].Codes[2], 20);
  EXPECT_EQ(codes.Systems[4].Count, 1);
  EXPECT_EQ(codes.Systems[1].Count, 0);
}

TEST(BatchCodes, ANinthCodeOfASystemIsIgnored) {
  std::vector<ObsEpoch_QC_gbt> epochs(1);
  sky::AddSatellite(epochs[0], 1, 7, {1, 2, 3, 4, 5, 6, 7, 8});
  sky::AddSatellite(epochs[0], 1, 8, {9, 10});
  const BatchCodes codes = Collected(epochs);
  EXPECT_EQ(codes.Systems[0].Count, 8);
  EXPECT_EQ(codes.Systems[0].Codes[7], 8);
}

TEST(BatchCodes, ComeFromTheFirst2002EpochsOnly) {
  std::vector<ObsEpoch_QC_gbt> epochs(2003);
  sky::AddSatellite(epochs[2001], 1, 7, {1});
  sky::AddSatellite(epochs[2002], 1, 7, {16});
  const BatchCodes codes = Collected(epochs);
  ASSERT_EQ(codes.Systems[0].Count, 1);
  EXPECT_EQ(codes.Systems[0].Codes[0], 1);
}

TEST(CodeLists, TakeOnlyCodesThatWereTakenIn) {
  const auto data = std::make_unique<QcGNSSObsData>();
  std::vector<ObsEpoch_QC_gbt> epochs(1);
  sky::AddSatellite(epochs[0], 1, 7, {1, 16});
  sky::AddSatellite(epochs[0], 1, 60, {20});
  BatchCodes codes = Collected(epochs);
  EXPECT_EQ(codes.Systems[0].Count, 3);
  data->StoreEpoch(epochs[0], 1, 31, &codes);
  data->FillCodeLists(codes);
  ASSERT_EQ(data->CodeLists[0].Count(), 2);
  EXPECT_EQ(data->CodeLists[0].At(1), 16);
}

TEST(CodeLists, OnceFilledNeverChange) {
  const auto data = std::make_unique<QcGNSSObsData>();
  data->CodeLists[0].Append(1);
  BatchCodes codes;
  codes.Systems[0].Count = codes.Systems[4].Count = 1;
  codes.Systems[0].Codes[0] = 16;
  codes.Systems[4].Codes[0] = 120;
  codes.Systems[0].Hits[0] = codes.Systems[4].Hits[0] = 1;
  data->FillCodeLists(codes);
  EXPECT_EQ(data->CodeLists[0].Count(), 1);
  EXPECT_EQ(data->CodeLists[0].At(0), 1);
  EXPECT_EQ(data->CodeLists[5].At(0), 120);
}

}  // namespace
