#include "toolkit/obs_storage.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/unit/toolkit/failing_memory.h"

namespace gnssqctoolkit {
namespace {

Signal_QC_gbt Signal(int i) {
  Signal_QC_gbt signal{};
  signal.pseudorange = 2e7 + i;
  signal.phase = 1e8 + i;
  signal.doppler = 3.0f;
  signal.snr = 40.0f;
  signal.code = static_cast<std::uint8_t>(i);
  signal.reserved[6] = 7;
  return signal;
}

SatelliteObsStorage Satellite(int prn, int signals) {
  SatelliteObsStorage store;
  store.Satellite = {kGps, prn};
  for (int i = 1; i <= signals; ++i) store.Append(Signal(i));
  return store;
}

TEST(SatelliteObsStorage, SixthObservationGrowsTheCapacityFrom5To8) {
  SatelliteObsStorage store = Satellite(3, 5);
  EXPECT_EQ(store.Capacity(), 5);
  EXPECT_EQ(store.Append(Signal(6)), 1);
  EXPECT_EQ(store.Capacity(), 8);
  for (int i = 7; i <= 9; ++i) store.Append(Signal(i));
  EXPECT_EQ(store.Capacity(), 11);
  EXPECT_EQ(store.Count(), 9);
}

TEST(SatelliteObsStorage, CopiesRecordsWhole) {
  const SatelliteObsStorage store = Satellite(3, 7);
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(store.Data()[i].pseudorange, 2e7 + i + 1);
    EXPECT_EQ(store.Data()[i].code, i + 1);
    EXPECT_EQ(store.Data()[i].doppler, 3.0f);
    EXPECT_EQ(store.Data()[i].reserved[6], 7);
  }
}

TEST(SatelliteObsStorage, AppendTakesARecordOfItsOwn) {
  SatelliteObsStorage store = Satellite(3, 5);
  EXPECT_EQ(store.Append(store.Data()[1]), 1);
  EXPECT_EQ(store.Data()[5].code, 2);
}

TEST(SatelliteObsStorage, ClearKeepsTheArrayAndZeroesIt) {
  SatelliteObsStorage store = Satellite(3, 6);
  store.Clear();
  EXPECT_EQ(store.Count(), 0);
  EXPECT_EQ(store.Capacity(), 8);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(store.Data()[i].pseudorange, 0.0);
  EXPECT_EQ(store.Satellite.prn, 3);
}

TEST(SatelliteObsStorage, ReleaseFreesTheArray) {
  SatelliteObsStorage store = Satellite(3, 6);
  store.Release();
  EXPECT_EQ(store.Count(), 0);
  EXPECT_EQ(store.Capacity(), 0);
  EXPECT_EQ(store.Data(), nullptr);
}

TEST(SatelliteObsStorage, CopyIsDeepAndTakesTheSatellite) {
  const SatelliteObsStorage source = Satellite(3, 6);
  SatelliteObsStorage copy(source);
  copy.Data()[0].code = 99;
  EXPECT_EQ(source.Data()[0].code, 1);
  EXPECT_EQ(copy.Count(), 6);
  EXPECT_EQ(copy.Capacity(), 6);
  EXPECT_EQ(copy.Satellite.prn, 3);
  copy = *&copy;
  EXPECT_EQ(copy.Count(), 6);
  copy = Satellite(4, 0);
  EXPECT_EQ(copy.Count(), 0);
  EXPECT_EQ(copy.Satellite.prn, 4);
}

TEST(SatelliteObsStorage, FailedAppendLeavesItUnchanged) {
  SatelliteObsStorage store = Satellite(3, 5);
  FailingMemory none;
  EXPECT_EQ(store.Append(Signal(6)), 0);
  EXPECT_EQ(store.Count(), 5);
  EXPECT_EQ(store.Capacity(), 5);
  EXPECT_EQ(SatelliteObsStorage(store).Count(), 0);
}

TEST(EpochObsStorage, TimeIsZeroAtFirst) {
  const EpochObsStorage epoch;
  EXPECT_EQ(epoch.Time.Seconds, 0);
  EXPECT_EQ(epoch.Time.Fraction, 0.0);
  EXPECT_EQ(epoch.Count(), 0);
}

TEST(EpochObsStorage, GrowsBy32) {
  EpochObsStorage epoch;
  for (int i = 1; i <= 70; ++i) {
    EXPECT_EQ(epoch.Append(Satellite(i, i % 9)), 1);
    EXPECT_EQ(epoch.Capacity(), (i + 31) / 32 * 32);
  }
  for (int i = 1; i <= 70; ++i) {
    EXPECT_EQ(epoch.Data()[i - 1].Satellite.prn, i);
    EXPECT_EQ(epoch.Data()[i - 1].Count(), i % 9);
  }
}

TEST(EpochObsStorage, AppendAndCopyAreDeep) {
  SatelliteObsStorage satellite = Satellite(3, 2);
  EpochObsStorage epoch;
  epoch.Time = {1700000000, 0.5};
  epoch.Append(satellite);
  satellite.Data()[0].code = 99;
  EXPECT_EQ(epoch.Data()[0].Data()[0].code, 1);
  EpochObsStorage copy;
  copy = epoch;
  epoch.Data()[0].Data()[0].code = 98;
  EXPECT_EQ(copy.Data()[0].Data()[0].code, 1);
  EXPECT_EQ(copy.Time.Seconds, 1700000000);
  EXPECT_EQ(EpochObsStorage(copy).Count(), 1);
}

TEST(EpochObsStorage, ClearEmptiesItsSatellitesAndReleaseFreesThem) {
  EpochObsStorage epoch;
  epoch.Append(Satellite(3, 2));
  epoch.Clear();
  EXPECT_EQ(epoch.Count(), 0);
  EXPECT_EQ(epoch.Capacity(), 32);
  EXPECT_EQ(epoch.Data()[0].Count(), 0);
  EXPECT_EQ(epoch.Data()[0].Satellite.prn, 0);
  epoch.Release();
  EXPECT_EQ(epoch.Capacity(), 0);
  EXPECT_EQ(epoch.Data(), nullptr);
}

TEST(EpochObsStorage, FailedAppendLeavesItUnchanged) {
  const SatelliteObsStorage satellite = Satellite(3, 2);
  EpochObsStorage epoch;
  epoch.Append(satellite);
  FailingMemory none;
  EXPECT_EQ(epoch.Append(satellite), 0);
  EXPECT_EQ(epoch.Count(), 1);
  EXPECT_EQ(epoch.Capacity(), 32);
}

}  // namespace
}  // namespace gnssqctoolkit
