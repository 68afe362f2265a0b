// UBX: frames and fields by hand, then what damage costs, then the writer against the reader.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/formats/ubx/frame.h"
#include "host/formats/ubx/messages.h"
#include "host/formats/ubx/reader.h"
#include "host/formats/ubx/signals.h"
#include "host/formats/ubx/ubx_writer.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::ubx;
using orsolva_test::FromHex;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;

class Bytes : public ByteSource {
 public:
  explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}
  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::min({size, std::size_t{7}, bytes_.size() - at_});
    std::memcpy(out, bytes_.data() + at_, count);
    at_ += count;
    return count;
  }

 private:
  std::string bytes_;
  std::size_t at_ = 0;
};

RawMeasurement Gps5() {
  RawMeasurement m;
  m.pseudorange_m = 22'000'000.125;
  m.phase_cycles = 115'612'000.25;
  m.doppler_hz = -1234.5F;
  m.sv_id = 5;
  m.lock_ms = 2000;
  m.cno_dbhz = 44;
  m.tracking = kPseudorangeValid | kPhaseValid | kHalfCycleResolved;
  return m;
}

RawMessage MessageAt(double second, std::vector<RawMeasurement> measurements) {
  return {second, 2200, std::move(measurements)};
}

std::string FrameAt(double second, std::vector<RawMeasurement> measurements) {
  return FrameOf(MessageOf(kRawMeasurements, WriteRaw(MessageAt(second, std::move(measurements)))));
}

std::vector<ObservationEpoch> EpochsOf(const std::string& bytes, Diagnostics& diagnostics) {
  Reader reader(std::make_unique<Bytes>(bytes), "file", diagnostics);
  std::vector<ObservationEpoch> epochs(1);
  while (reader.Next(epochs.back())) epochs.emplace_back();
  epochs.pop_back();
  return epochs;
}

std::vector<ObservationEpoch> EpochsOf(const std::string& bytes) {
  Diagnostics diagnostics;
  auto epochs = EpochsOf(bytes, diagnostics);
  EXPECT_EQ(diagnostics.Total(), 0);
  return epochs;
}

const SignalObservation& OnlySignal(const ObservationEpoch& epoch) {
  EXPECT_EQ(epoch.signals.size(), 1U);
  return epoch.signals.front();
}

TEST(UbxFrame, ChecksumIsThatOfTheEmptyPollOfMonVer) {
  // Class 0A, ID 04, length 0: A = 0A+04 = 0E, B = 0A + 0E + 0E + 0E = 34.
  EXPECT_EQ(FrameOf(MessageOf(kVersion, "")), FromHex("b5620a0400000e34"));
  EXPECT_EQ(Checksum(FromHex("0a040000")), 0x340E);
}

TEST(UbxFrame, IsFoundBetweenOtherBytes) {
  const std::string frame = FrameOf(MessageOf(kVersion, ""));
  std::string broken = frame;
  broken[6] ^= 1;
  FrameFinder finder(kFrameForm);
  finder.Append(frame + broken + "$GNGGA,\xb5" + frame + "\xb5\x62\x0a");
  finder.Finish();
  int found = 0;
  while (const auto message = finder.Next()) {
    EXPECT_EQ(TypeOf(*message), kVersion);
    EXPECT_TRUE(PayloadOf(*message).empty());
    ++found;
  }
  EXPECT_EQ(found, 2);
  EXPECT_EQ(finder.Counts().crc_errors, 1U);
  EXPECT_EQ(finder.Counts().cut_frames, 1U);
  EXPECT_EQ(finder.Counts().skipped_bytes, broken.size() + 8 + 3);
}

TEST(UbxFrame, LongerThanAnyMessageIsNone) {
  FrameFinder finder(kFrameForm);
  finder.Append(FromHex("b5620215ffff") + FrameOf(MessageOf(kVersion, "")));
  EXPECT_TRUE(finder.Next());
}

TEST(UbxRaw, FieldsLieWhereTheDescriptionHasThem) {
  // rcvTow 1.5 s, week 2200 (0898), leapS 18, numMeas 1, recStat 1, version 1; then prMes 2.0, cpMes 4.0,
  // doMes -1.0, GLONASS 7, L2 OF, freqId 2, locktime 64500 (FBF4), cno 41, stdevs, trkStat 07.
  const std::string payload = FromHex(
      "000000000000f83f98081201010100000000000000000040"
      "0000000000001040000080bf06070202f4fb29010203070000");
  ASSERT_EQ(payload.size(), 49U);
  EXPECT_FALSE(ReadRaw(payload));
  const auto message = ReadRaw(payload.substr(0, 48));
  ASSERT_TRUE(message);
  EXPECT_EQ(message->second_of_week, 1.5);
  EXPECT_EQ(message->week, 2200);
  ASSERT_EQ(message->measurements.size(), 1U);
  const RawMeasurement& m = message->measurements[0];
  EXPECT_EQ(m.pseudorange_m, 2.0);
  EXPECT_EQ(m.phase_cycles, 4.0);
  EXPECT_EQ(m.doppler_hz, -1.0F);
  EXPECT_EQ(m.gnss_id, 6);
  EXPECT_EQ(m.sv_id, 7);
  EXPECT_EQ(m.sig_id, 2);
  EXPECT_EQ(m.channel, 2);
  EXPECT_EQ(m.lock_ms, 64500);
  EXPECT_EQ(m.cno_dbhz, 41);
  EXPECT_EQ(m.tracking, 7);
  EXPECT_EQ(WriteRaw(*message).substr(16),
            payload.substr(16, 27) + std::string(3, '\0') + payload.substr(46, 2));
}

TEST(UbxRaw, OtherVersionsAndLengthsAreRefused) {
  std::string payload = WriteRaw(MessageAt(1, {Gps5()}));
  EXPECT_TRUE(ReadRaw(payload));
  EXPECT_FALSE(ReadRaw(payload + '\0'));
  EXPECT_FALSE(ReadRaw(payload.substr(0, 15)));
  payload[13] = 0;
  EXPECT_FALSE(ReadRaw(payload));
}

TEST(UbxSignals, NamesOfTheDescriptionAndBack) {
  EXPECT_EQ(NameOf(*SatelliteOf(0, 32)), "G32");
  EXPECT_EQ(NameOf(*SatelliteOf(1, 120)), "S20");
  EXPECT_EQ(NameOf(*SatelliteOf(5, 1)), "J01");
  EXPECT_FALSE(SatelliteOf(0, 33));
  EXPECT_FALSE(SatelliteOf(6, 255));
  EXPECT_FALSE(SatelliteOf(4, 1));
  EXPECT_EQ(NameOf(*SignalOf(0, 3)), "2L");
  EXPECT_EQ(NameOf(*SignalOf(3, 1)), "2I");
  EXPECT_FALSE(SignalOf(0, 1));
  for (int gnss_id = 0; gnss_id < 8; ++gnss_id) {
    for (int sv_id = 0; sv_id < 256; ++sv_id) {
      const auto satellite = SatelliteOf(gnss_id, sv_id);
      if (!satellite) continue;
      EXPECT_EQ(NumbersOf(*satellite)->gnss_id, gnss_id);
      EXPECT_EQ(NumbersOf(*satellite)->sv_id, sv_id);
      for (int sig_id = 0; sig_id < 16; ++sig_id) {
        const auto code = SignalOf(gnss_id, sig_id);
        if (!code) continue;
        EXPECT_EQ(SignalOf(gnss_id, *SigIdOf(satellite->system, *code)), code);
      }
    }
  }
}

TEST(UbxReader, GivesEpochsOfRawMeasurements) {
  RawMeasurement glonass = Gps5();
  glonass.gnss_id = 6;
  glonass.channel = 2;
  const auto epochs = EpochsOf(FrameAt(30.0009999, {glonass, Gps5()}));
  ASSERT_EQ(epochs.size(), 1U);
  EXPECT_EQ(epochs[0].time_ns, GpsTime(2200, 30) + 999'900);
  ASSERT_EQ(epochs[0].satellites.size(), 2U);
  EXPECT_EQ(NameOf(epochs[0].satellites[0].id), "G05");
  EXPECT_EQ(NameOf(epochs[0].satellites[1].id), "R05");
  const SignalObservation& o = epochs[0].signals[0];
  EXPECT_EQ(NameOf(o.code), "1C");
  EXPECT_EQ(o.pseudorange_m, 22'000'000.125);
  EXPECT_EQ(o.phase_cycles, 115'612'000.25);
  EXPECT_EQ(o.doppler_hz, -1234.5);
  EXPECT_EQ(o.snr_dbhz, 44);
  EXPECT_EQ(o.loss_of_lock, 0);
}

TEST(UbxReader, TakesWhatTheTrackingStatusCallsValid) {
  RawMeasurement m = Gps5();
  m.tracking = kPhaseValid;
  const auto phase = EpochsOf(FrameAt(1, {m}));
  EXPECT_TRUE(std::isnan(OnlySignal(phase[0]).pseudorange_m));
  EXPECT_EQ(OnlySignal(phase[0]).phase_cycles, m.phase_cycles);
  EXPECT_EQ(OnlySignal(phase[0]).loss_of_lock, kHalfCycle);
  m.tracking = kPseudorangeValid | kHalfCycleResolved;
  m.cno_dbhz = 0;
  const auto code = EpochsOf(FrameAt(1, {m}));
  EXPECT_EQ(OnlySignal(code[0]).pseudorange_m, m.pseudorange_m);
  EXPECT_TRUE(std::isnan(OnlySignal(code[0]).phase_cycles));
  EXPECT_TRUE(std::isnan(OnlySignal(code[0]).snr_dbhz));
  EXPECT_EQ(OnlySignal(code[0]).loss_of_lock, 0);
}

TEST(UbxReader, MarksLossOfLock) {
  const auto second_flags = [](std::uint16_t lock_ms, double second, std::uint8_t more_tracking = 0) {
    RawMeasurement before = Gps5(), after = Gps5();  // 2000 ms at second 1
    after.lock_ms = lock_ms;
    after.tracking |= more_tracking;
    return OnlySignal(EpochsOf(FrameAt(1, {before}) + FrameAt(second, {after}))[1]).loss_of_lock;
  };
  EXPECT_EQ(second_flags(3000, 2), 0);
  EXPECT_EQ(second_flags(500, 2), kLossOfLock);  // less than the second passed, and below the one before
  EXPECT_EQ(second_flags(3000, 4), 0);
  EXPECT_EQ(second_flags(3000, 2, kHalfCycleSubtracted), kLossOfLock);
}

/// Flags of the second of two epochs.
std::uint8_t FlagsAfter(std::uint16_t before_ms, std::uint16_t after_ms, double passed_s) {
  RawMeasurement before = Gps5(), after = Gps5();
  before.lock_ms = before_ms;
  after.lock_ms = after_ms;
  return OnlySignal(EpochsOf(FrameAt(1, {before}) + FrameAt(1 + passed_s, {after}))[1]).loss_of_lock;
}

TEST(UbxReader, ALockTimeHasAResolutionOfAMillisecond) {
  EXPECT_EQ(FlagsAfter(2000, 2000, 1), 0);
  EXPECT_EQ(FlagsAfter(2000, 1999, 1), 0);
  EXPECT_EQ(FlagsAfter(2000, 1998, 1), kLossOfLock);
  EXPECT_EQ(FlagsAfter(0, 1000, 1), 0);
  EXPECT_EQ(FlagsAfter(0, 999, 1), 0);
  EXPECT_EQ(FlagsAfter(0, 998, 1), kLossOfLock);
  EXPECT_EQ(FlagsAfter(2000, 2999, 3), 0);
  EXPECT_EQ(FlagsAfter(2000, 2998, 3), kLossOfLock);
  EXPECT_EQ(FlagsAfter(0, 0, 0.001), 0);
  EXPECT_EQ(FlagsAfter(0, 0, 0.002), kLossOfLock);
}

TEST(UbxReader, ALockTimeThatHasReachedItsEndGoesOn) {
  EXPECT_EQ(FlagsAfter(64000, 64500, 1), 0);
  EXPECT_EQ(FlagsAfter(64500, 64500, 1), 0);
  EXPECT_EQ(FlagsAfter(64500, 64500, 200), 0);
  EXPECT_EQ(FlagsAfter(64500, 64499, 200), 0);
  EXPECT_EQ(FlagsAfter(64500, 64498, 1), kLossOfLock);
  EXPECT_EQ(FlagsAfter(64000, 64498, 64.499), 0);
  EXPECT_EQ(FlagsAfter(64000, 64498, 64.500), kLossOfLock);
}

TEST(UbxReader, DamageCostsOnlyItself) {
  RawMeasurement far = Gps5(), unknown = Gps5(), signal = Gps5(), wild = Gps5();
  far.sv_id = 6, far.pseudorange_m = 1e9;
  wild.sv_id = 7, wild.phase_cycles = std::nan("");
  unknown.gnss_id = 4;
  signal.sig_id = 9;
  RawMessage undated = MessageAt(3, {Gps5()});
  undated.week = 0;
  RawMessage far_future = undated;
  far_future.week = 65535;
  const std::string cut =
      FrameOf(MessageOf(kRawMeasurements, WriteRaw(MessageAt(4, {Gps5()})).substr(0, 40)));
  Diagnostics diagnostics;
  const auto epochs =
      EpochsOf(FrameAt(1, {far, wild, unknown, signal, Gps5(), Gps5()}) +
                   FrameOf(MessageOf(kRawMeasurements, WriteRaw(undated))) +
                   FrameOf(MessageOf(kRawMeasurements, WriteRaw(far_future))) + cut +
                   FrameAt(604800, {Gps5()}) + FrameOf(MessageOf(0x0107, "payload")) + FrameAt(5, {Gps5()}),
               diagnostics);
  ASSERT_EQ(epochs.size(), 2U);
  ASSERT_EQ(epochs[0].satellites.size(), 3U);
  EXPECT_TRUE(std::isnan(epochs[0].signals[1].pseudorange_m));
  EXPECT_FALSE(std::isnan(epochs[0].signals[1].phase_cycles));
  EXPECT_TRUE(std::isnan(epochs[0].signals[2].phase_cycles));
  std::vector<std::pair<std::string, long>> found;
  for (const Notice& notice : diagnostics.Notices()) found.emplace_back(notice.text, notice.count);
  const std::vector<std::pair<std::string, long>> expected = {
      {"message of another length or version than is read", 1},
      {"message of a type that is not decoded", 1},
      {"observations with an impossible time", 3},
      {"value that no satellite can have", 2},
      {"satellite number that is not known", 1},
      {"signal that is not known", 1},
      {"signal twice in a message, the first taken", 1}};
  EXPECT_EQ(found, expected);
}

TEST(UbxReader, EveryDamagedByteCostsAtMostItsOwnEpoch) {
  std::string bytes;
  for (int second = 0; second < 4; ++second) bytes += FrameAt(second, {Gps5()});
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    std::string damaged = bytes;
    damaged[at] ^= 0x11;
    Diagnostics diagnostics;
    EXPECT_EQ(EpochsOf(damaged, diagnostics).size(), 3U) << at;
  }
}

TEST(UbxReader, OtherFilesAreRefused) {
  Diagnostics diagnostics;
  EXPECT_THROW(Reader(std::make_unique<Bytes>(""), "file", diagnostics), FileError);
  EXPECT_THROW(Reader(std::make_unique<Bytes>("RINEX VERSION / TYPE"), "file", diagnostics), FileError);
}

TEST(UbxReader, SurveyReadsTheTimeTheReceiverAndNoEpoch) {
  Diagnostics diagnostics;
  Reader reader(std::make_unique<Bytes>(FrameOf(VersionMessage("ZED-F9P", "HPG 1.32")) +
                                        FrameAt(30, {Gps5()}) + FrameAt(31, {Gps5()})),
                "file", diagnostics, false);
  ObservationEpoch epoch;
  EXPECT_FALSE(reader.Next(epoch));
  EXPECT_EQ(reader.Messages().FirstTime(), GpsTime(2200, 30));
  EXPECT_EQ(reader.Messages().FirstReceiver().model, "ZED-F9P");
  EXPECT_EQ(reader.Messages().FirstReceiver().firmware, "HPG 1.32");
}

TEST(UbxWriter, ReaderGetsWhatWasWritten) {
  ObservationEpoch epoch;
  epoch.time_ns = GpsTime(2200, 604799) + kSecond / 2;
  epoch.satellites = {{{'G', 5}, 0, 2}, {{'R', 7}, 2, 1}};
  epoch.signals.resize(3);
  epoch.signals[0].code = {'1', 'C'};
  epoch.signals[0].pseudorange_m = 21'234'567.123;
  epoch.signals[0].phase_cycles = -11.5;
  epoch.signals[0].snr_dbhz = 41.6;
  epoch.signals[0].loss_of_lock = kHalfCycle;
  epoch.signals[1].code = {'2', 'W'};
  epoch.signals[1].pseudorange_m = 1;
  epoch.signals[2].code = {'2', 'C'};
  epoch.signals[2].doppler_hz = 0.1;
  std::array<std::optional<int>, 64> channels;
  channels[7] = -4;
  RawxWriter writer(channels);
  Decoder decoder;
  decoder.Take(writer.Write(epoch));
  ObservationEpoch read;
  ASSERT_TRUE(decoder.Next(read));
  EXPECT_EQ(read.time_ns, epoch.time_ns);
  ASSERT_EQ(read.signals.size(), 2U);
  EXPECT_EQ(read.signals[0].pseudorange_m, 21'234'567.123);
  EXPECT_EQ(read.signals[0].phase_cycles, -11.5);
  EXPECT_EQ(read.signals[0].snr_dbhz, 42);
  EXPECT_EQ(read.signals[0].loss_of_lock, kHalfCycle);
  EXPECT_TRUE(std::isnan(read.signals[1].pseudorange_m));
  EXPECT_EQ(read.signals[1].doppler_hz, static_cast<double>(0.1F));
  EXPECT_EQ(decoder.Channels()[7], -4);
}

}  // namespace
