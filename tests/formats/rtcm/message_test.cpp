// Observation and station messages, from their fields to values.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "host/formats/rtcm/lock_time.h"
#include "host/formats/rtcm/msm_signals.h"
#include "host/formats/rtcm/signal_decoder.h"
#include "host/formats/rtcm/station.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::kSecond;
using orsolva_test::OneCell;

constexpr double kLightMillisecond_m = kLightSpeed_m_s / 1000;

TEST(LockTime, StepsMeetWhereTheyChange) {
  // RTCM 10403.3, DF013: 24 s, 72 s, 168 s, 360 s, 744 s; DF402; DF407: 64 ms, 128 ms, 67108864 ms.
  EXPECT_EQ(LockTimeOf7Bits(23).below_ms, 24000);
  EXPECT_EQ(LockTimeOf7Bits(24).from_ms, 24000);
  EXPECT_EQ(LockTimeOf7Bits(48).from_ms, 72000);
  EXPECT_EQ(LockTimeOf7Bits(72).from_ms, 168000);
  EXPECT_EQ(LockTimeOf7Bits(96).from_ms, 360000);
  EXPECT_EQ(LockTimeOf7Bits(120).from_ms, 744000);
  EXPECT_EQ(LockTimeOf7Bits(126).below_ms, 937000);
  EXPECT_EQ(LockTimeOf4Bits(0).below_ms, 32);
  EXPECT_EQ(LockTimeOf4Bits(15).from_ms, 524288);
  EXPECT_EQ(LockTimeOf10Bits(64).from_ms, 64);
  EXPECT_EQ(LockTimeOf10Bits(95).below_ms, 128);
  EXPECT_EQ(LockTimeOf10Bits(96).from_ms, 128);
  EXPECT_EQ(LockTimeOf10Bits(704).from_ms, 67108864);
}

TEST(LockTime, IndicatorsAreThoseOfTheirTimes) {
  for (int indicator = 0; indicator <= 704; ++indicator) {
    EXPECT_EQ(Indicator10Bits(LockTimeOf10Bits(indicator).from_ms), indicator);
    if (indicator < 704) {
      EXPECT_EQ(Indicator10Bits(LockTimeOf10Bits(indicator).below_ms - 1), indicator);
    }
  }
  for (int indicator = 0; indicator <= 15; ++indicator) {
    EXPECT_EQ(Indicator4Bits(LockTimeOf4Bits(indicator).from_ms), indicator);
  }
}

TEST(MsmSignals, EverySignalHasACarrierAndItsOwnPlace) {
  for (const char system : {'G', 'R', 'E', 'S', 'J', 'C', 'I'}) {
    int signals = 0;
    for (int place = 1; place <= 32; ++place) {
      const auto code = MsmSignal(system, place);
      if (!code) continue;
      ++signals;
      EXPECT_GT(CarrierFrequency(system, code->band, 0), 0) << system << NameOf(*code);
      EXPECT_EQ(MsmPlace(system, *code), place);
    }
    EXPECT_GE(signals, 2) << system;
  }
}

TEST(MsmSignals, SatellitesAreNumberedAsInRinex) {
  EXPECT_EQ(NameOf(*MsmSatelliteAt('S', 1)), "S20");
  EXPECT_EQ(NameOf(*MsmSatelliteAt('J', 1)), "J01");
  EXPECT_EQ(NameOf(*MsmSatelliteAt('G', 32)), "G32");
  EXPECT_FALSE(MsmSatelliteAt('G', 64));
  EXPECT_FALSE(MsmSatelliteAt('I', 15));
  EXPECT_EQ(MsmPlace(SatelliteId{'S', 20}), 1);
}

EpochPart PartOf(SignalDecoder& decoder, const MsmMessage& message, std::int64_t time_ns = 0) {
  EpochPart part;
  part.time_ns = time_ns;
  decoder.Decode(*ReadMsm(WriteMsm(message)), part);
  return part;
}

TEST(Msm, FineFieldsAddToTheRoughOnes) {
  MsmMessage m = OneCell('G', 7, 0);
  m.cells[0].range = 1 << 19;     // does not fit 20 bits with sign: the invalid value
  m.cells[0].phase = -(1 << 21);  // -2^-10 ms
  m.cells[0].strength = 45 * 16 + 4;
  m.cells[0].rate = -2500;
  SignalDecoder decoder;
  const SignalObservation invalid = PartOf(decoder, m).signals.at(0).observation;
  EXPECT_TRUE(std::isnan(invalid.pseudorange_m));
  m.cells[0].range = 1 << 18;  // 2^-11 ms
  const SignalObservation o = PartOf(decoder, m).signals.at(0).observation;
  EXPECT_EQ(NameOf(o.code), "1C");
  EXPECT_DOUBLE_EQ(o.pseudorange_m, (70.5 + 1.0 / 2048) * kLightMillisecond_m);
  EXPECT_DOUBLE_EQ(o.phase_cycles, (70.5 - 1.0 / 1024) * 1575420.0);
  EXPECT_DOUBLE_EQ(o.doppler_hz, -99.75 * 1575.42e6 / kLightSpeed_m_s);
  EXPECT_DOUBLE_EQ(o.snr_dbhz, 45.25);
  EXPECT_EQ(o.loss_of_lock, 0);
}

TEST(Msm, EveryKindGivesWhatItHolds) {
  for (int kind = 1; kind <= 7; ++kind) {
    SignalDecoder decoder;
    PartOf(decoder, OneCell('E', 7, 0));  // the whole range that MSM1 to 3 do without
    const EpochPart part = PartOf(decoder, OneCell('E', kind, 0), kSecond);
    ASSERT_EQ(part.signals.size(), 1u) << kind;
    const SignalObservation& o = part.signals[0].observation;
    EXPECT_EQ(std::isnan(o.pseudorange_m), kind == 2) << kind;
    EXPECT_EQ(std::isnan(o.phase_cycles), kind == 1) << kind;
    EXPECT_EQ(std::isnan(o.doppler_hz), kind != 5 && kind != 7) << kind;
    EXPECT_EQ(std::isnan(o.snr_dbhz), kind < 4) << kind;
    if (kind != 2) {
      EXPECT_DOUBLE_EQ(o.pseudorange_m, 70.5 * kLightMillisecond_m);
    }
  }
}

TEST(Msm, InvalidValuesAreAbsentAndCostNoOther) {
  struct Case {
    std::int32_t MsmCell::*member;
    std::int32_t value;
    double SignalObservation::*absent;
  };
  constexpr Case kCases[] = {{&MsmCell::range, -524288, &SignalObservation::pseudorange_m},
                             {&MsmCell::phase, -8388608, &SignalObservation::phase_cycles},
                             {&MsmCell::rate, -16384, &SignalObservation::doppler_hz},
                             {&MsmCell::strength, 0, &SignalObservation::snr_dbhz}};
  for (const Case& one : kCases) {
    MsmMessage m = OneCell('G', 7, 0);
    m.cells[0].*one.member = one.value;
    SignalDecoder decoder;
    const SignalObservation o = PartOf(decoder, m).signals.at(0).observation;
    for (const Case& other : kCases) EXPECT_EQ(std::isnan(o.*other.absent), other.absent == one.absent);
  }
  MsmMessage m = OneCell('G', 7, 0);
  m.satellites[0].rough_ms = 255;
  m.satellites[0].rough_rate = -8192;
  SignalDecoder decoder;
  const SignalObservation o = PartOf(decoder, m).signals.at(0).observation;
  EXPECT_TRUE(std::isnan(o.pseudorange_m) && std::isnan(o.phase_cycles) && std::isnan(o.doppler_hz));
  EXPECT_DOUBLE_EQ(o.snr_dbhz, 2.5);
}

TEST(Msm, PartsOfRangesWaitForAWholeOneAndExpire) {
  SignalDecoder decoder;
  EXPECT_TRUE(PartOf(decoder, OneCell('G', 3, 0)).signals.empty());
  EXPECT_EQ(decoder.Counts().ranges_in_parts, 1u);
  MsmMessage whole = OneCell('G', 4, 0);
  whole.satellites[0].rough_part = 1023;
  PartOf(decoder, whole, 0);
  MsmMessage part = OneCell('G', 3, 0);
  part.satellites[0].rough_part = 1;  // the range has passed the next millisecond
  EXPECT_DOUBLE_EQ(PartOf(decoder, part, kSecond).signals.at(0).observation.pseudorange_m,
                   (71 + 1.0 / 1024) * kLightMillisecond_m);
  EXPECT_TRUE(PartOf(decoder, part, 200 * kSecond).signals.empty());
}

TEST(Msm, GlonassPhaseNeedsAChannel) {
  SignalDecoder decoder;
  const MsmMessage coarse = OneCell('R', 4, 0);
  const SignalObservation before = PartOf(decoder, coarse).signals.at(0).observation;
  EXPECT_TRUE(std::isnan(before.phase_cycles));
  EXPECT_FALSE(std::isnan(before.pseudorange_m));
  EXPECT_EQ(decoder.Counts().phases_without_channel, 1u);
  MsmMessage unknown = OneCell('R', 7, 0);
  unknown.satellites[0].extended = 15;
  EXPECT_TRUE(std::isnan(PartOf(decoder, unknown).signals.at(0).observation.phase_cycles));
  PartOf(decoder, OneCell('R', 7, 0));  // channel 1
  EXPECT_DOUBLE_EQ(PartOf(decoder, coarse).signals.at(0).observation.phase_cycles, 70.5 * 1602562.5);
}

TEST(Msm, ReservedSignalsAndSatellitesCostOnlyThemselves) {
  MsmMessage m = OneCell('I', 4, 0, 3, 22);
  m.satellites.push_back({60, 70, 0, 0, 0});
  m.cells.push_back(m.cells[0]);
  m.cells.back().satellite = 1;
  m.cells.push_back(m.cells[0]);
  m.cells.back().satellite = 1;
  m.cells.back().signal = 30;
  SignalDecoder decoder;
  EXPECT_EQ(PartOf(decoder, m).signals.size(), 1u);
  EXPECT_EQ(decoder.Counts().unknown_satellites, 1u);
  EXPECT_EQ(decoder.Counts().unknown_signals, 1u);
}

TEST(Msm, MaskOfMoreThan64CellsAndShortMessagesAreRefused) {
  MsmMessage m = OneCell('G', 7, 0);
  std::string bytes = WriteMsm(m);
  EXPECT_TRUE(ReadMsm(bytes));
  EXPECT_FALSE(ReadMsm(bytes.substr(0, bytes.size() - 1)));
  for (std::size_t i = 10; i < 21; ++i) bytes[i] = '\xFF';
  EXPECT_FALSE(ReadMsm(bytes + std::string(900, '\0')));
}

EpochPart PartOf(SignalDecoder& decoder, int type,
                 const std::array<std::int64_t, legacy::kSatelliteTerms>& values, std::int64_t time_ns = 0) {
  LegacyMessage m;
  m.message = type;
  m.satellites.push_back(values);
  EpochPart part;
  part.time_ns = time_ns;
  decoder.Decode(*ReadLegacy(WriteLegacy(m)), part);
  return part;
}

std::array<std::int64_t, legacy::kSatelliteTerms> SomeLegacy() {
  std::array<std::int64_t, legacy::kSatelliteTerms> v = {};
  v[legacy::kSatellite] = 5;
  v[legacy::kRange1] = 1000000;  // 20 km
  v[legacy::kPhase1] = -200;     // -0.1 m
  v[legacy::kAmbiguity] = 70;
  v[legacy::kStrength1] = 180;
  v[legacy::kCode2] = 3;
  v[legacy::kRange2] = 50;  // 1 m
  v[legacy::kPhase2] = 400;
  v[legacy::kStrength2] = 120;
  v[legacy::kChannel] = 9;
  return v;
}

TEST(Legacy, SecondFrequencyIsRelativeToTheFirstRange) {
  SignalDecoder decoder;
  const EpochPart part = PartOf(decoder, 1004, SomeLegacy());
  ASSERT_EQ(part.signals.size(), 2u);
  const double range_m = 20000 + 70 * kLightMillisecond_m;
  const SignalObservation& first = part.signals[0].observation;
  const SignalObservation& second = part.signals[1].observation;
  EXPECT_EQ(NameOf(first.code) + NameOf(second.code), "1C2W");
  EXPECT_DOUBLE_EQ(first.pseudorange_m, range_m);
  EXPECT_DOUBLE_EQ(first.phase_cycles, (range_m - 0.1) * (1575.42e6 / kLightSpeed_m_s));
  EXPECT_DOUBLE_EQ(second.pseudorange_m, range_m + 1);
  EXPECT_DOUBLE_EQ(second.phase_cycles, (range_m + 0.2) * (1227.6e6 / kLightSpeed_m_s));
  EXPECT_DOUBLE_EQ(first.snr_dbhz, 45);
  EXPECT_DOUBLE_EQ(second.snr_dbhz, 30);
}

TEST(Legacy, GlonassBringsItsChannel) {
  SignalDecoder decoder;
  auto values = SomeLegacy();
  values[legacy::kCode2] = 1;
  const EpochPart part = PartOf(decoder, 1012, values);
  ASSERT_EQ(part.signals.size(), 2u);
  EXPECT_EQ(NameOf(part.signals[1].observation.code), "2P");
  EXPECT_EQ(decoder.ChannelOf(5), 2);
  const double range_m = 20000 + 140 * kLightMillisecond_m;
  EXPECT_DOUBLE_EQ(part.signals[0].observation.pseudorange_m, range_m);
  EXPECT_DOUBLE_EQ(part.signals[0].observation.phase_cycles,
                   (range_m - 0.1) * (1603.125e6 / kLightSpeed_m_s));
}

TEST(Legacy, MessagesWithoutWholeRangesAreCompleted) {
  SignalDecoder decoder;
  EXPECT_TRUE(PartOf(decoder, 1001, SomeLegacy()).signals.empty());
  PartOf(decoder, 1002, SomeLegacy());
  const EpochPart part = PartOf(decoder, 1003, SomeLegacy(), kSecond);
  ASSERT_EQ(part.signals.size(), 2u);
  EXPECT_DOUBLE_EQ(part.signals[0].observation.pseudorange_m, 20000 + 70 * kLightMillisecond_m);
}

TEST(Legacy, InvalidFirstPhaseTakesTheFirstRangeWithItButNotTheSecond) {
  SignalDecoder decoder;
  auto values = SomeLegacy();
  values[legacy::kPhase1] = kInvalidPhase20;
  const EpochPart part = PartOf(decoder, 1004, values);
  ASSERT_EQ(part.signals.size(), 2u);
  EXPECT_TRUE(std::isnan(part.signals[0].observation.pseudorange_m));
  EXPECT_TRUE(std::isnan(part.signals[0].observation.phase_cycles));
  EXPECT_DOUBLE_EQ(part.signals[1].observation.pseudorange_m, 20001 + 70 * kLightMillisecond_m);
}

TEST(Legacy, ImpossibleRangesAndNumbersAreCounted) {
  SignalDecoder decoder;
  auto values = SomeLegacy();
  values[legacy::kRange1] = (1 << 24) - 1;
  EXPECT_TRUE(PartOf(decoder, 1004, values).signals.empty());
  EXPECT_EQ(decoder.Counts().impossible, 1u);
  values = SomeLegacy();
  values[legacy::kSatellite] = 39;
  EXPECT_TRUE(PartOf(decoder, 1004, values).signals.empty());
  EXPECT_EQ(decoder.Counts().unknown_satellites, 1u);
  values[legacy::kSatellite] = 40;
  EXPECT_EQ(NameOf(PartOf(decoder, 1004, values).signals.at(0).satellite), "S20");
}

TEST(Station, PositionAndEquipmentComeBack) {
  StationDescription station;
  station.id = 349;
  station.itrf_year = 20;
  station.position_m = {3512000.1234, 780000.5, 5248000.75};
  station.antenna_height_m = 0.0835;
  station.antenna = "LEIAR25.R3      LEIT";
  station.antenna_setup = 0;
  station.antenna_serial = "725024";
  station.receiver = "SEPT POLARX5";
  station.firmware = "5.5.0";
  station.receiver_serial = "3075024";
  StationDescription back;
  EXPECT_TRUE(TakeStation(WritePosition(station), back));
  EXPECT_TRUE(TakeStation(WriteEquipment(station), back));
  for (std::size_t axis = 0; axis < 3; ++axis) {
    EXPECT_NEAR((*back.position_m)[axis], (*station.position_m)[axis], 1e-9);
  }
  back.position_m = station.position_m;
  EXPECT_EQ(back, station);
}

TEST(Station, ShortMessageLeavesTheDescription) {
  StationDescription station;
  station.antenna = "KNOWN";
  const StationDescription before = station;
  const std::string message = WriteEquipment(station);
  for (std::size_t size = 0; size < message.size(); ++size) {
    EXPECT_FALSE(TakeStation(message.substr(0, size), station));
    EXPECT_EQ(station, before);
  }
}

TEST(Station, BiasesAreThoseOfTheMask) {
  BitWriter bits;
  bits.Unsigned(1230, 12);
  bits.Unsigned(7, 12);
  bits.Unsigned(1, 1);
  bits.Unsigned(0, 3);
  bits.Unsigned(0b1011, 4);
  bits.Signed(-100, 16);
  bits.Signed(-32768, 16);  // not given
  bits.Signed(50, 16);
  StationDescription station;
  ASSERT_TRUE(TakeStation(bits.Bytes(), station));
  EXPECT_TRUE(station.glonass_biases->aligned);
  EXPECT_DOUBLE_EQ(*station.glonass_biases->l1_ca, -2);
  EXPECT_FALSE(station.glonass_biases->l1_p);
  EXPECT_FALSE(station.glonass_biases->l2_ca);
  EXPECT_DOUBLE_EQ(*station.glonass_biases->l2_p, 1);
}

TEST(Station, TextIsReadInItsLength) {
  BitWriter bits;
  bits.Unsigned(1029, 12);
  bits.Unsigned(23, 12);
  bits.Unsigned(58116, 16);
  bits.Unsigned(72662, 17);
  bits.Unsigned(2, 7);
  bits.Unsigned(3, 8);
  for (const unsigned char c : {0xC3, 0xA9, 0x21}) bits.Unsigned(c, 8);
  const auto text = ReadText(bits.Bytes());
  ASSERT_TRUE(text);
  EXPECT_EQ(text->text, "\xC3\xA9!");
  EXPECT_EQ(text->second_of_day, 72662);
  EXPECT_FALSE(ReadText(bits.Bytes().substr(0, bits.Bytes().size() - 1)));
}

}  // namespace
