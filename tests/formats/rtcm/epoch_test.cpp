// Messages joined to epochs by the decoder.
#include <gtest/gtest.h>

#include <cmath>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/epoch_joiner.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;
using orsolva_test::OneCell;

DecoderOptions Near(EpochEnd end) {
  DecoderOptions options;
  options.near_ns = GpsTime(2300, 100);
  options.epoch_end = end;
  return options;
}

std::string Msm(char system, int kind, std::int64_t time_ms, bool more, int satellite = 5, int signal = 2) {
  MsmMessage m = OneCell(system, kind, time_ms, satellite, signal);
  m.header[msm::kMore] = more ? 1 : 0;
  return WriteMsm(m);
}

std::vector<ObservationEpoch> EpochsOf(Decoder& decoder) {
  std::vector<ObservationEpoch> epochs;
  ObservationEpoch epoch;
  while (decoder.Next(epoch)) epochs.push_back(epoch);
  return epochs;
}

TEST(Epochs, MessagesOfATimeJoinInTheOrderOfSatellitesAndSignals) {
  Decoder decoder(Near(EpochEnd::kNextTime));
  decoder.Take(Msm('G', 7, 100'000, true, 9));
  decoder.Take(Msm('E', 7, 100'000, true));
  decoder.Take(Msm('C', 7, 86'000, true));  // BDS time is 14 s behind
  decoder.Take(Msm('G', 7, 100'000, false, 2));
  decoder.Take(Msm('G', 7, 101'000, false));
  ASSERT_EQ(EpochsOf(decoder).size(), 1u);
  decoder.Finish();
  EXPECT_EQ(EpochsOf(decoder).size(), 1u);
}

TEST(Epochs, EverySystemOfAnEpochHasOneTime) {
  Decoder decoder(Near(EpochEnd::kNextTime));
  for (const char system : {'G', 'E', 'S', 'J', 'I'}) {
    decoder.Take(Msm(system, 7, 100'000, true, 5, 22));
  }
  decoder.Take(Msm('C', 7, 86'000, true, 5, 2));
  decoder.Take(Msm('R', 7, (100 - 18 + 3 * 3600) * 1000, false, 5, 2));
  decoder.Finish();
  const auto epochs = EpochsOf(decoder);
  ASSERT_EQ(epochs.size(), 1u);
  EXPECT_EQ(epochs[0].time_ns, GpsTime(2300, 100));
  std::string systems;
  for (const SatelliteObservation& satellite : epochs[0].satellites) {
    systems += satellite.id.system;
    EXPECT_EQ(satellite.signal_count, 1u);
  }
  EXPECT_EQ(systems, "CEGIJRS");
}

TEST(Epochs, LastMessageEndsAnEpochOfALiveStream) {
  Decoder decoder(Near(EpochEnd::kLastMessage));
  decoder.Take(Msm('G', 7, 100'000, true));
  EXPECT_TRUE(EpochsOf(decoder).empty());
  decoder.Take(Msm('E', 7, 100'000, false));
  EXPECT_EQ(EpochsOf(decoder).size(), 1u);
  decoder.Take(Msm('J', 7, 100'000, false));  // late
  EXPECT_TRUE(EpochsOf(decoder).empty());
  EXPECT_EQ(decoder.Epochs().LateMessages(), 1u);
  decoder.Take(Msm('G', 7, 101'000, true));  // its last message is lost
  decoder.Take(Msm('G', 7, 102'000, true));
  EXPECT_EQ(EpochsOf(decoder).size(), 1u);
}

TEST(Epochs, FinestMessageOfASignalCounts) {
  Decoder decoder(Near(EpochEnd::kNextTime));
  LegacyMessage legacy;
  legacy.message = 1002;
  legacy.header[legacy::kTime] = 100'000;
  legacy.satellites.emplace_back();
  legacy.satellites[0][legacy::kSatellite] = 5;
  legacy.satellites[0][legacy::kAmbiguity] = 70;
  legacy.satellites[0][legacy::kStrength1] = 99;
  decoder.Take(WriteLegacy(legacy));
  decoder.Take(Msm('G', 7, 100'000, false));
  legacy.header[legacy::kTime] = 101'000;
  decoder.Take(WriteLegacy(legacy));
  decoder.Finish();
  const auto epochs = EpochsOf(decoder);
  ASSERT_EQ(epochs.size(), 2u);
  ASSERT_EQ(epochs[0].signals.size(), 1u);
  EXPECT_DOUBLE_EQ(epochs[0].signals[0].snr_dbhz, 2.5);  // of MSM7
  EXPECT_EQ(decoder.Epochs().Duplicates(), 1u);
  // The phases of the two may differ by whole cycles.
  EXPECT_EQ(epochs[1].signals[0].loss_of_lock, kLossOfLock);
}

TEST(Epochs, OtherStationsAreLeftOut) {
  Decoder decoder(Near(EpochEnd::kNextTime));
  decoder.Take(Msm('G', 7, 100'000, false));
  MsmMessage other = OneCell('G', 7, 100'000, 6);
  other.header[msm::kStation] = 17;
  decoder.Take(WriteMsm(other));
  decoder.Finish();
  EXPECT_EQ(EpochsOf(decoder).at(0).satellites.size(), 1u);
  EXPECT_EQ(decoder.Epochs().OtherStations(), 1u);
}

TEST(Epochs, EpochWithoutSignalsIsDelivered) {
  Decoder decoder(Near(EpochEnd::kLastMessage));
  MsmMessage empty;
  empty.type = {'G', 4};
  empty.header[msm::kTime] = 100'000;
  decoder.Take(WriteMsm(empty));
  const auto epochs = EpochsOf(decoder);
  ASSERT_EQ(epochs.size(), 1u);
  EXPECT_TRUE(epochs[0].satellites.empty());
}

TEST(Epochs, DamagedImpossibleAndOtherMessagesAreCountedByType) {
  Decoder decoder(Near(EpochEnd::kLastMessage));
  decoder.Take(Msm('G', 7, 604'800'000, false));
  decoder.Take(Msm('G', 7, 100'000, false).substr(0, 25));
  BitWriter unknown;
  unknown.Unsigned(4072, 12);
  decoder.Take(unknown.Bytes());
  decoder.Take("");
  EXPECT_TRUE(EpochsOf(decoder).empty());
  EXPECT_EQ(decoder.Counts().impossible_times, 1u);
  EXPECT_EQ(decoder.Counts().types.at(1077).messages, 2u);
  EXPECT_EQ(decoder.Counts().types.at(1077).damaged, 1u);
  EXPECT_EQ(decoder.Counts().types.at(4072).messages, 1u);
  EXPECT_EQ(decoder.Counts().undecoded, 2u);
}

TEST(Epochs, EphemeridesAreGivenOnceAndBringChannels) {
  Decoder decoder(Near(EpochEnd::kLastMessage));
  StateVectorRecord record;
  record.satellite = {'R', 5};
  record.channel = 3;
  record.toe_s = static_cast<double>(GpsTime(2300, 918) / kSecond);
  const std::string message = WriteEphemeris(MessageOf(record));
  decoder.Take(message);
  decoder.Take(message);
  EXPECT_EQ(decoder.TakeBroadcast().state_vectors.size(), 1u);
  EXPECT_EQ(decoder.TakeEphemerides().size(), 1u);
  EXPECT_TRUE(decoder.TakeBroadcast().state_vectors.empty());
  decoder.Take(Msm('R', 4, (100 - 18 + 3 * 3600) * 1000, false));
  EXPECT_FALSE(std::isnan(EpochsOf(decoder).at(0).signals.at(0).phase_cycles));
}

TEST(Epochs, EphemerisWithAnImpossibleDateIsPlacedByTheTime) {
  Decoder decoder(Near(EpochEnd::kLastMessage));
  StateVectorRecord record;
  record.satellite = {'R', 8};
  record.toe_s = static_cast<double>(GpsTime(2300, 918) / kSecond);
  EphemerisMessage message = MessageOf(record);
  message.values[term::kN4] = 2;  // 2000 to 2003, as R08 sent in 2018
  decoder.Take(WriteEphemeris(message));
  const BroadcastRecords records = decoder.TakeBroadcast();
  ASSERT_EQ(records.state_vectors.size(), 1u);
  EXPECT_EQ(records.state_vectors[0].toe_s, record.toe_s);
  EXPECT_EQ(decoder.Counts().impossible_dates, 1u);
}

TEST(Epochs, HalfCycleIsAFlagOfItsOwn) {
  Decoder decoder(Near(EpochEnd::kLastMessage));
  MsmMessage m = OneCell('G', 7, 100'000);
  m.cells[0].half_cycle = 1;
  decoder.Take(WriteMsm(m));
  EXPECT_EQ(EpochsOf(decoder).at(0).signals.at(0).loss_of_lock, kHalfCycle);
}

TEST(EpochJoiner, AMessageRepeatedWithoutEndStaysBounded) {
  EpochJoiner joiner(EpochEnd::kLastMessage);
  EpochPart part;
  part.more = true;
  part.signals.resize(64);
  constexpr std::uint64_t kMessages = 2000;
  for (std::uint64_t i = 0; i < kMessages; ++i) joiner.Add(part);
  EXPECT_GT(joiner.Duplicates(), kMessages * 64 / 2) << "counted at once, not kept until the end";
  joiner.Finish();
  EXPECT_EQ(joiner.Duplicates(), kMessages * 64 - 1);
  ObservationEpoch epoch;
  EXPECT_TRUE(joiner.Next(epoch));
}

}  // namespace
