#include "host/judging/stream_source.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/formats/rtcm/ephemeris.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/sbf/ephemeris.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/measurements.h"
#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/messages.h"
#include "host/formats/ubx/raw_measurements.h"
#include "host/judging/inputs.h"
#include "host/judging/stream_detection.h"
#include "host/judging/stream_navigation.h"
#include "tests/formats/rtcm/frames.h"
#include "tests/host/folder.h"

namespace {

using namespace orsolva_host;
using orsolva_test::Folder;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;
using orsolva_test::OneCell;

std::string Ephemeris(int type, char system, int number, std::int64_t toe_ns) {
  KeplerRecord record;
  record.satellite = {system, static_cast<std::uint8_t>(number)};
  record.sqrt_a = 5153;
  record.toe_s = record.toc_s = static_cast<double>(toe_ns / kSecond);
  return rtcm::FrameOf(rtcm::WriteEphemeris(rtcm::MessageOf(record, type)));
}

std::string Epoch(char system, std::int64_t time_ms) {
  return rtcm::FrameOf(rtcm::WriteMsm(OneCell(system, 7, time_ms)));
}

StreamSource Open(const std::string& bytes, Diagnostics& diagnostics,
                  std::optional<std::int64_t> near_ns = std::nullopt) {
  return StreamSource(
      StreamFormat::kRtcm, "stream", [bytes](Diagnostics& /*notices*/) { return TextBytes(bytes); }, near_ns,
      diagnostics);
}

std::optional<DetectedStream> Detected(const std::string& bytes) {
  std::unique_ptr<ByteSource> source = TextBytes(bytes);
  const std::optional<DetectedStream> stream = DetectStream(source);
  EXPECT_EQ(Peek(source, bytes.size() + 1), bytes);
  return stream;
}

std::string UbxEpoch() {
  return ubx::FrameOf(ubx::MessageOf(ubx::kRawMeasurements, ubx::WriteRaw({1000, 2200, {}})));
}

std::string SbfEpoch() { return sbf::WriteMeasEpoch({GpsTime(2200, 1000), false, false, {}}); }

/// Of Galileo, with a time of reference 100 s before the block's.
std::string SbfEphemeris(int number, int toe_s) {
  NavigationRecord record;
  record.letter = 'E';
  record.number = number;
  record.time.time = GpsTime(2200, toe_s) / kSecond;
  record.v[10] = 5440.5, record.v[11] = toe_s, record.v[20] = 1 | 4 | 512, record.v[23] = 107;
  return sbf::WriteEphemeris(record, GpsTime(2200, toe_s + 100));
}

constexpr DetectedStream kRtcmObservations = {StreamFormat::kRtcm, false};
constexpr DetectedStream kRtcmNavigation = {StreamFormat::kRtcm, true};
constexpr DetectedStream kSbfObservations = {StreamFormat::kSbf, false};
constexpr DetectedStream kSbfNavigation = {StreamFormat::kSbf, true};
constexpr DetectedStream kUbxObservations = {StreamFormat::kUbx, false};

TEST(StreamDetection, GoesByFramesAndNotByNames) {
  const std::string observations = Epoch('G', 1000), records = Ephemeris(1045, 'E', 3, GpsTime(2200, 600));
  EXPECT_EQ(Detected(observations), kRtcmObservations);
  EXPECT_EQ(Detected("ICY 200 OK\r\n\r\n" + records + observations), kRtcmObservations);
  EXPECT_EQ(Detected(records), kRtcmNavigation);
  EXPECT_EQ(Detected(observations.substr(0, observations.size() - 1)), std::nullopt);
  EXPECT_EQ(Detected(""), std::nullopt);
  EXPECT_EQ(Detected("     3.05           OBSERVATION DATA    M                   RINEX VERSION / TYPE\n" +
                     observations),
            std::nullopt);
  EXPECT_EQ(DetectStream(std::string("/no/such.rtcm3")), std::nullopt);
}

TEST(StreamDetection, TakesTheFormatWithObservations) {
  const std::string records = Ephemeris(1045, 'E', 3, GpsTime(2200, 600));
  const std::string version = ubx::FrameOf(ubx::MessageOf(ubx::kVersion, ""));
  EXPECT_EQ(Detected("$GNGGA,1" + UbxEpoch()), kUbxObservations);
  EXPECT_EQ(Detected(version), kUbxObservations);
  EXPECT_EQ(Detected(records + UbxEpoch()), kUbxObservations);
  EXPECT_EQ(Detected(version + records), kRtcmNavigation);
  EXPECT_EQ(Detected(UbxEpoch() + Epoch('G', 1000)), kRtcmObservations);
  std::string damaged = UbxEpoch();
  damaged[9] ^= 1;
  EXPECT_EQ(Detected(damaged), std::nullopt);
}

TEST(StreamDetection, KnowsSbfByItsBlocks) {
  const std::string records = Ephemeris(1045, 'E', 3, GpsTime(2200, 600));
  const std::string setup = sbf::BlockOf(sbf::kReceiverSetup, std::string(260, '\0'));
  EXPECT_EQ(Detected("$GPGGA,1\r\n" + SbfEpoch()), kSbfObservations);
  EXPECT_EQ(Detected(setup), kSbfObservations);
  EXPECT_EQ(Detected(SbfEphemeris(3, 600)), kSbfNavigation);
  EXPECT_EQ(Detected(SbfEphemeris(3, 600) + SbfEpoch()), kSbfObservations);
  EXPECT_EQ(Detected(records + SbfEpoch()), kSbfObservations);
  EXPECT_EQ(Detected(SbfEphemeris(3, 600) + UbxEpoch()), kUbxObservations);
  EXPECT_EQ(Detected(UbxEpoch() + SbfEpoch()), kSbfObservations);
  EXPECT_EQ(Detected(SbfEpoch() + Epoch('G', 1000)), kRtcmObservations);
  EXPECT_EQ(Detected("$@" + SbfEpoch().substr(3)), std::nullopt);
}

TEST(StreamDetection, SortsStreamsAmongOtherFiles) {
  const Folder folder;
  std::ofstream(folder / "b", std::ios::binary) << Epoch('G', 1000);
  std::ofstream(folder / "a", std::ios::binary) << Ephemeris(1045, 'E', 3, GpsTime(2200, 600));
  std::ofstream(folder / "c") << "neither";
  const RunInputs named = InputsOf({folder / "a", folder / "b"}, {});
  EXPECT_EQ(named.observations, std::vector<std::string>{folder / "b"});
  EXPECT_EQ(named.navigation, std::vector<std::string>{folder / "a"});
  EXPECT_EQ(InputsOf({folder.Path()}, {}).observations, std::vector<std::string>{folder / "b"});
}

TEST(StreamSource, KnowsEphemeridesBeforeTheFirstEpoch) {
  Diagnostics diagnostics;
  const std::string bytes = Epoch('G', 1000) + Epoch('G', 2000) + Ephemeris(1045, 'E', 3, GpsTime(2200, 600));
  StreamSource source = Open(bytes, diagnostics);
  ASSERT_TRUE(source.Navigation());
  EXPECT_EQ(source.Navigation()->set.galileo.size(), 1U);
  ObsEpoch_QC_gbt record;
  ObservationEpoch full;
  ASSERT_TRUE(source.Next(record, full));
  EXPECT_EQ(full.time_ns, GpsTime(2200, 1));
  EXPECT_EQ(record.time.time, GpsTime(2200, 1) / kSecond);
  ASSERT_TRUE(source.Next(record, full));
  EXPECT_FALSE(source.Next(record, full));
  ASSERT_TRUE(source.Stream());
  EXPECT_EQ(source.Stream()->frames, 3U);
  EXPECT_EQ(source.Stream()->messages.size(), 2U);
  EXPECT_TRUE(source.Stream()->coarse_systems.empty());
}

TEST(StreamSource, OfSbfKnowsEachEphemerisOnce) {
  Diagnostics diagnostics;
  NavigationRecord state;
  state.letter = 'R';
  state.number = 4;
  state.time.time = GpsTime(2200, 900) / kSecond;
  state.v[3] = 12345.5, state.v[10] = 6;
  const std::string glonass = sbf::WriteEphemeris(state, GpsTime(2200, 700));
  const std::string bytes = SbfEphemeris(3, 600) + SbfEpoch() + SbfEphemeris(3, 600) + SbfEphemeris(3, 1200) +
                            SbfEphemeris(4, 600) + SbfEphemeris(3, 1200) + glonass + glonass;
  StreamSource source(
      StreamFormat::kSbf, "recording", [bytes](Diagnostics& /*notices*/) { return TextBytes(bytes); },
      std::nullopt, diagnostics);
  ASSERT_TRUE(source.Navigation());
  const NavigationSet& set = source.Navigation()->set;
  ASSERT_EQ(set.galileo.size(), 3U);
  EXPECT_EQ(set.galileo[0].toes, 600);
  EXPECT_EQ(set.galileo[0].week, 2200);
  EXPECT_NEAR(set.galileo[0].ura, 3.12, 1e-12);
  ASSERT_EQ(set.glonass.size(), 1U);
  EXPECT_EQ(set.glonass[0].frequency_channel, 6);
  EXPECT_EQ(set.glonass[0].toe.time, GpsTime(2200, 900 - 18) / kSecond);  // UTC
  ObsEpoch_QC_gbt record;
  ObservationEpoch full;
  ASSERT_TRUE(source.Next(record, full));
  EXPECT_EQ(full.time_ns, GpsTime(2200, 1000));
  EXPECT_FALSE(source.Next(record, full));
}

TEST(StreamSource, WithoutADateAsksForNavigation) {
  Diagnostics diagnostics;
  StreamSource source = Open(Epoch('G', 1000), diagnostics);
  ObsEpoch_QC_gbt record;
  ObservationEpoch full;
  try {
    source.Next(record, full);
    FAIL();
  } catch (const FileError& error) {
    EXPECT_NE(error.Advice().find("--nav"), std::string::npos);
    EXPECT_NE(error.Advice().find("--start"), std::string::npos);
  }
}

TEST(StreamSource, TakesTheWeekOfNamedRecordsWhereItHasNone) {
  Diagnostics diagnostics;
  StreamSource source = Open(Epoch('G', 1000), diagnostics);
  BroadcastRecords records;
  records.kepler.emplace_back().toe_s = static_cast<double>(GpsTime(2150, 7200) / kSecond);
  source.TakeChannels(records);
  ObsEpoch_QC_gbt record;
  ObservationEpoch full;
  ASSERT_TRUE(source.Next(record, full));
  EXPECT_EQ(full.time_ns, GpsTime(2150, 1));
}

TEST(StreamSource, TakesTheWeekOfTheTimeAskedForOnlyWhereItHasNone) {
  ObsEpoch_QC_gbt record;
  ObservationEpoch full;
  Diagnostics diagnostics;
  StreamSource undated = Open(Epoch('G', 1000), diagnostics, GpsTime(2150, 7200));
  ASSERT_TRUE(undated.Next(record, full));
  EXPECT_EQ(full.time_ns, GpsTime(2150, 1));
  const std::string dated = Ephemeris(1045, 'E', 3, GpsTime(2200, 600)) + Epoch('G', 1000);
  StreamSource other = Open(dated, diagnostics, GpsTime(2150, 7200));
  ASSERT_TRUE(other.Next(record, full));
  EXPECT_EQ(full.time_ns, GpsTime(2200, 1));
}

TEST(StreamSource, RoundsAsAFileDoes) {
  ObservationEpoch epoch;
  SignalObservation signal;
  signal.pseudorange_m = 21234567.12349;
  signal.phase_cycles = -1234.56751;
  signal.doppler_hz = 0.0003;
  epoch.signals = {signal};
  RoundAsRinex(epoch);
  EXPECT_EQ(epoch.signals[0].pseudorange_m, 21234567.123);
  EXPECT_EQ(epoch.signals[0].phase_cycles, -1234.568);
  EXPECT_TRUE(std::isnan(epoch.signals[0].doppler_hz));
  EXPECT_TRUE(std::isnan(epoch.signals[0].snr_dbhz));
}

TEST(StreamNavigation, AccuracyIsThatOfTheInterfaceDocuments) {
  EXPECT_EQ(AccuracyOf('G', 0), 2);
  EXPECT_EQ(AccuracyOf('G', 1), 2.8);
  EXPECT_EQ(AccuracyOf('C', 5), 11.3);
  EXPECT_EQ(AccuracyOf('J', 7), 32);
  EXPECT_EQ(AccuracyOf('G', 15), 8192);
  EXPECT_NEAR(AccuracyOf('E', 49), 0.49, 1e-12);
  EXPECT_NEAR(AccuracyOf('E', 107), 3.12, 1e-12);
  EXPECT_NEAR(AccuracyOf('E', 125), 6, 1e-12);
  EXPECT_EQ(AccuracyOf('E', 255), -1);
}

TEST(StreamNavigation, RecordsOfNamedFilesComeFirst) {
  Diagnostics diagnostics;
  const auto navigation_of = [&](const std::string& bytes) {
    return Open(bytes + Epoch('G', 1000), diagnostics).Navigation();
  };
  const auto named = navigation_of(Ephemeris(1046, 'E', 3, GpsTime(2200, 600)));
  const auto own = navigation_of(Ephemeris(1046, 'E', 3, GpsTime(2200, 1200)) +
                                 Ephemeris(1046, 'E', 4, GpsTime(2200, 1200)));
  const auto joined = Joined(*named, *own);
  ASSERT_EQ(joined->set.galileo.size(), 2U);
  EXPECT_EQ(joined->set.galileo[0].toes, 600);
  EXPECT_EQ(joined->set.galileo[1].prn, 4);
  EXPECT_EQ(joined->broadcast.kepler.size(), 2U);
}

}  // namespace
