// SBF: blocks and fields by hand, then what damage costs, then the writer against the reader.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/formats/sbf/ephemeris.h"
#include "host/formats/sbf/frame.h"
#include "host/formats/sbf/reader.h"
#include "host/formats/sbf/sbf_writer.h"
#include "host/formats/sbf/scales.h"
#include "host/formats/sbf/signals.h"
#include "host/formats/streams/little_endian.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::sbf;
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

std::vector<ObservationEpoch> EpochsOf(const std::string& bytes, Diagnostics& diagnostics) {
  Reader reader(std::make_unique<Bytes>(bytes), "file", diagnostics);
  std::vector<ObservationEpoch> epochs(1);
  while (reader.Next(epochs.back())) epochs.emplace_back();
  epochs.pop_back();
  return epochs;
}

FirstSignal Gps5() {
  FirstSignal s;
  s.svid = 5;
  s.code_mm = 22'000'000'125;
  s.doppler = -12'345'000;
  s.has_doppler = true;
  s.carrier_m_cycles = 250;
  s.has_carrier = true;
  s.cn0 = 136;
  s.lock_s = 20;
  return s;
}

std::string BlockAt(int second, std::vector<FirstSignal> satellites) {
  return WriteMeasEpoch({GpsTime(2200, second), false, false, std::move(satellites)});
}

/// L2C 0.5 m behind, with everything given.
OtherSignal L2c() {
  OtherSignal s;
  s.signal = 3;
  s.lock_s = 20;
  s.cn0 = 120;
  s.code_offset_mm = 500;
  s.has_code = true;
  s.carrier_m_cycles = -1500;
  s.has_carrier = true;
  s.doppler_offset = -100;
  s.has_doppler = true;
  return s;
}

/// What is read of one epoch with these satellites.
struct Read {
  explicit Read(std::vector<FirstSignal> satellites, bool e6b = false, bool scrambled = false) {
    decoder.Take(WriteMeasEpoch({GpsTime(2200, 30), scrambled, e6b, std::move(satellites)}));
    decoder.Next(epoch);
  }
  Decoder decoder;
  ObservationEpoch epoch;
};

/// A block with other bytes at a place and a correct CRC.
std::string Changed(const std::string& block, std::size_t place, const std::string& bytes) {
  std::string body = block.substr(kHeadBytes);
  body.replace(place - kHeadBytes, bytes.size(), bytes);
  return BlockOf(NumberOf(block), body);
}

template <class Field>
std::string BytesOf(Field value) {
  std::string bytes;
  AppendField(value, bytes);
  return bytes;
}

bool Absent(double value) { return std::isnan(value); }

TEST(SbfFrame, CrcIsThatOfTheCheckString) {
  // CRC-16/XMODEM, the catalogue's check value of "123456789".
  EXPECT_EQ(CrcCcitt("123456789"), 0x31C3);
  EXPECT_EQ(CrcCcitt(""), 0);
}

TEST(SbfFrame, TimesWithoutADateAreAbsent) {
  const auto time_of = [](std::uint32_t tow_ms, std::uint16_t week) {
    std::string body;
    for (int i = 0; i < 4; ++i) body.push_back(static_cast<char>(tow_ms >> 8 * i & 0xFF));
    for (int i = 0; i < 2; ++i) body.push_back(static_cast<char>(week >> 8 * i & 0xFF));
    return TimeOf(BlockOf(kMeasEpoch, body));
  };
  EXPECT_EQ(time_of(1500, 2200), GpsTime(2200, 1) + kSecond / 2);
  EXPECT_FALSE(time_of(0xFFFFFFFF, 2200));
  EXPECT_FALSE(time_of(1500, 0xFFFF));
  EXPECT_FALSE(time_of(1500, 0xFFFE));
  EXPECT_FALSE(time_of(604'800'000, 2200));
}

TEST(SbfMeasurements, FieldsLieWhereTheGuideHasThem) {
  // N 1, SB1Length 20, SB2Length 12; channel 1, L1CA, SVID 5, CodeMSB 5, CodeLSB 1F4AD790; Doppler
  // -12,345,000; CarrierLSB 00FA, MSB 0; CN0 136; 20 s; half cycle; one more signal: L2C, 254 s, CN0 120,
  // offsets Doppler -1 and code -1, carrier -1, code FFFF, carrier FF06, Doppler FFFE.
  const std::string body = FromHex(
      "e803000098080114"
      "0c000000"
      "0100050590d74a1f"
      "58a143ff"
      "fa000088"
      "14000401"
      "03fe78ffff00"
      "ffff06fffeff");
  const auto epoch = ReadMeasEpoch(BlockOf(kMeasEpoch, body), 0);
  ASSERT_TRUE(epoch);
  ASSERT_EQ(epoch->satellites.size(), 1U);
  const FirstSignal& first = epoch->satellites[0];
  EXPECT_EQ(first.svid, 5);
  EXPECT_EQ(first.code_mm, 5 * (std::int64_t{1} << 32) + 0x1f4ad790);
  EXPECT_EQ(first.doppler, -12'345'000);
  EXPECT_EQ(first.carrier_m_cycles, 250);
  EXPECT_EQ(first.cn0, 136);
  EXPECT_EQ(first.lock_s, 20);
  EXPECT_TRUE(first.half_cycle);
  ASSERT_EQ(first.others.size(), 1U);
  const OtherSignal& other = first.others[0];
  EXPECT_EQ(other.signal, 3);
  EXPECT_EQ(other.lock_s, 254);
  EXPECT_EQ(other.cn0, 120);
  EXPECT_EQ(other.code_offset_mm, -1);
  EXPECT_EQ(other.carrier_m_cycles, -250);
  EXPECT_EQ(other.doppler_offset, -2);
  EXPECT_FALSE(other.half_cycle);
}

TEST(SbfMeasurements, EveryFieldHasItsDoNotUseValue) {
  FirstSignal first = Gps5();
  first.others = {L2c()};
  const std::string block = BlockAt(30, {first});
  const std::size_t other = 40;  // where the second signal begins
  const auto read = [](const std::string& bytes) { return ReadMeasEpoch(bytes, 0)->satellites.at(0); };
  EXPECT_EQ(read(Changed(block, 23, std::string(5, '\0'))).code_mm, 0);
  EXPECT_FALSE(read(Changed(block, 28, BytesOf(INT32_MIN))).has_doppler);
  EXPECT_FALSE(read(Changed(block, 32, FromHex("000080"))).has_carrier);
  EXPECT_TRUE(read(Changed(block, 32, FromHex("010080"))).has_carrier);
  EXPECT_EQ(read(Changed(block, 35, "\xff")).cn0, kNoCn0);
  EXPECT_GT(read(Changed(block, 36, "\xff\xff")).lock_s, kFirstLockLimit_s);
  EXPECT_GT(read(Changed(block, other + 1, "\xff")).others[0].lock_s, kOtherLockLimit_s);
  EXPECT_EQ(read(Changed(block, other + 2, "\xff")).others[0].cn0, kNoCn0);
  // -4 and -16 above 0 in the lower bits; -128 above 0.
  const std::string offsets = Changed(block, other + 3, "\x84");
  EXPECT_TRUE(read(offsets).others[0].has_code);
  EXPECT_FALSE(read(Changed(offsets, other + 6, std::string(2, '\0'))).others[0].has_code);
  EXPECT_FALSE(read(Changed(offsets, other + 10, std::string(2, '\0'))).others[0].has_doppler);
  const std::string carrier = Changed(block, other + 4, "\x80");
  EXPECT_TRUE(read(carrier).others[0].has_carrier);
  EXPECT_FALSE(read(Changed(carrier, other + 8, std::string(2, '\0'))).others[0].has_carrier);
}

TEST(SbfMeasurements, SignalsAbove31ContinueInObsInfo) {
  FirstSignal first = Gps5();
  first.svid = 223;
  first.signal = 34;  // B2b
  const std::string block = BlockAt(0, {first});
  EXPECT_EQ(block[21] & 31, 31);
  EXPECT_EQ(static_cast<unsigned char>(block[38]) >> 3, 2);
  const Read read({first});
  ASSERT_EQ(read.epoch.signals.size(), 1U);
  EXPECT_EQ(NameOf(read.epoch.signals[0].code), "7D");
}

TEST(SbfMeasurements, SubBlocksMayBeLongerThanKnown) {
  // As FieldsLieWhereTheGuideHasThem, with SB1Length 24, SB2Length 16, and revision 3.
  const std::string body = FromHex(
      "e803000098080118"
      "10000000"
      "0100050590d74a1f58a143fffa00008814000401aaaaaaaa"
      "03fe78ffff00ffff06fffeffbbbbbbbb");
  const auto epoch = ReadMeasEpoch(BlockOf(kMeasEpoch | 3 << 13, body + "behind all"), 0);
  ASSERT_TRUE(epoch);
  ASSERT_EQ(epoch->satellites.size(), 1U);
  EXPECT_EQ(epoch->satellites[0].lock_s, 20);
  ASSERT_EQ(epoch->satellites[0].others.size(), 1U);
  EXPECT_EQ(epoch->satellites[0].others[0].carrier_m_cycles, -250);
  EXPECT_EQ(epoch->satellites[0].others[0].doppler_offset, -2);
}

TEST(SbfMeasurements, ShorterBlocksAreDamaged) {
  FirstSignal first = Gps5();
  first.others = {L2c()};
  const std::string block = BlockAt(0, {first, first});
  for (std::size_t size = 16; size + 4 <= block.size(); size += 4) {
    Decoder decoder;
    decoder.Take(BlockOf(kMeasEpoch, block.substr(kHeadBytes, size - kHeadBytes)));
    EXPECT_EQ(decoder.Counts().types.at(kMeasEpoch).damaged, 1U) << size;
    ObservationEpoch epoch;
    EXPECT_FALSE(decoder.Next(epoch));
  }
  EXPECT_FALSE(ReadMeasEpoch(Changed(block, 15, "\x13"), 0));  // sub-blocks of 19 and of 11 bytes
  EXPECT_FALSE(ReadMeasEpoch(Changed(block, 16, "\x0b"), 0));
  EXPECT_FALSE(ReadMeasEpoch(Changed(block, 14, "\x03"), 0));  // one more satellite than there are
  EXPECT_FALSE(ReadMeasEpoch(Changed(block, 39, "\x09"), 0));  // more signals
  EXPECT_TRUE(ReadMeasEpoch(Changed(BlockAt(0, {}), 15, std::string(2, '\0')), 0));
}

TEST(SbfMeasurements, AreThoseThatAReceiverGave) {
  // The first three satellites of an epoch of a mosaic-X5 (E27, G14, G17) as the tests of pysbf2 1.0.7 list
  // its fields, with the signals 0, 2, 3 of GPS. The signals of a satellite differ by the ionosphere alone,
  // and Dopplers are as the carriers.
  const std::string body = FromHex(
      "185cbf1c3f0903140c050c00010011053ab0343a4af33c01f70700900102000202feb10700004df8"
      "7f15040003fe80ff0000c7f7ac17bffc02000e05dd85e45a00b8e0fe97f4ff7bfc01000202fe7500"
      "ff001503f0ef300003fe83f8ff00880222cbe0fc031461062ab86a880bbbb30072f0ff77c1010002"
      "11fe6c07000081ead815c00415fe7aff00000df9710315ff");
  Decoder decoder;
  decoder.Take(BlockOf(kMeasEpoch | 1 << 13, body));
  ObservationEpoch epoch;
  ASSERT_TRUE(decoder.Next(epoch));
  EXPECT_EQ(decoder.Counts().unknown_signals + decoder.Counts().impossible + decoder.Counts().unrelated, 0U);
  ASSERT_EQ(epoch.satellites.size(), 3U);
  EXPECT_EQ(NameOf(epoch.satellites[0].id), "E27");
  EXPECT_EQ(NameOf(epoch.satellites[1].id), "G14");
  EXPECT_EQ(NameOf(epoch.satellites[2].id), "G17");
  for (const SatelliteObservation& satellite : epoch.satellites) {
    const SignalObservation* first = &epoch.signals[satellite.first_signal];
    ASSERT_GE(satellite.signal_count, 3);
    for (const SignalObservation* o = first + 1; o < first + satellite.signal_count; ++o) {
      const double first_hz = CarrierFrequency(satellite.id.system, first->code.band, 0);
      const double carrier_hz = CarrierFrequency(satellite.id.system, o->code.band, 0);
      EXPECT_LT(std::fabs(o->pseudorange_m - first->pseudorange_m), 30) << NameOf(o->code);
      EXPECT_NEAR(o->doppler_hz / carrier_hz, first->doppler_hz / first_hz, 1e-9) << NameOf(o->code);
      EXPECT_NEAR(o->phase_cycles / carrier_hz * kLightSpeed_m_s, o->pseudorange_m, 1000) << NameOf(o->code);
      EXPECT_GT(o->snr_dbhz, 20);
      EXPECT_LT(o->snr_dbhz, 56);
    }
  }
  // G17 L2P, of a strength without the 10 dB-Hz that others have.
  EXPECT_EQ(NameOf(epoch.signals[epoch.satellites[2].first_signal + 2].code), "2W");
  EXPECT_EQ(epoch.signals[epoch.satellites[2].first_signal + 2].snr_dbhz, 44.25);
}

TEST(SbfReader, GivesEpochsOfMeasurements) {
  Diagnostics diagnostics;
  const auto epochs = EpochsOf(BlockAt(30, {Gps5()}), diagnostics);
  EXPECT_EQ(diagnostics.Total(), 0);
  ASSERT_EQ(epochs.size(), 1U);
  EXPECT_EQ(epochs[0].time_ns, GpsTime(2200, 30));
  ASSERT_EQ(epochs[0].signals.size(), 1U);
  const SignalObservation& o = epochs[0].signals[0];
  EXPECT_EQ(NameOf(o.code), "1C");
  EXPECT_EQ(o.pseudorange_m, 22'000'000.125);
  EXPECT_NEAR(o.phase_cycles, 22'000'000.125 * 1575.42e6 / 299792458.0 + 0.25, 1e-6);
  EXPECT_EQ(o.doppler_hz, -1234.5);
  EXPECT_EQ(o.snr_dbhz, 44);
  EXPECT_EQ(o.loss_of_lock, 0);
}

TEST(SbfDecoder, FurtherSignalsAreSumsWithTheFirst) {
  FirstSignal first = Gps5();
  first.others = {L2c()};
  const Read read({first});
  ASSERT_EQ(read.epoch.signals.size(), 2U);
  const SignalObservation& o = read.epoch.signals[1];
  EXPECT_EQ(NameOf(o.code), "2L");
  EXPECT_NEAR(o.pseudorange_m, 22'000'000.625, 1e-8);
  EXPECT_NEAR(o.phase_cycles, 22'000'000.625 * 1227.6e6 / 299792458.0 - 1.5, 1e-6);
  EXPECT_NEAR(o.doppler_hz, -1234.5 * 60 / 77 - 0.01, 1e-9);
  EXPECT_EQ(o.snr_dbhz, 40);
}

TEST(SbfDecoder, AFirstSignalThatIsNotKnownStillCarriesTheOthers) {
  FirstSignal first = Gps5();
  first.signal = 16;  // reserved
  first.others = {L2c()};
  const Read read({first});
  ASSERT_EQ(read.epoch.signals.size(), 1U);
  EXPECT_NEAR(read.epoch.signals[0].pseudorange_m, 22'000'000.625, 1e-8);
  EXPECT_FALSE(Absent(read.epoch.signals[0].phase_cycles));
  EXPECT_TRUE(Absent(read.epoch.signals[0].doppler_hz));  // no carrier to scale from
  EXPECT_EQ(read.decoder.Counts().unknown_signals, 1U);
  EXPECT_EQ(read.decoder.Counts().unrelated, 1U);
}

TEST(SbfDecoder, WithoutThePseudorangeThereIsNoPhaseAndNoSum) {
  FirstSignal first = Gps5();
  first.code_mm = 0;
  first.has_doppler = false;
  first.others = {L2c()};
  const Read read({first});
  ASSERT_EQ(read.epoch.signals.size(), 2U);
  for (const SignalObservation& o : read.epoch.signals) {
    EXPECT_TRUE(Absent(o.pseudorange_m) && Absent(o.phase_cycles) && Absent(o.doppler_hz));
    EXPECT_FALSE(Absent(o.snr_dbhz));
    EXPECT_EQ(o.loss_of_lock, 0);
  }
  EXPECT_EQ(read.decoder.Counts().unrelated, 4U);  // two phases, a pseudorange and a Doppler
}

TEST(SbfDecoder, ValuesThatAreNotGivenAreAbsent) {
  FirstSignal first = Gps5();
  first.has_doppler = first.has_carrier = false;
  first.cn0 = kNoCn0;
  OtherSignal other = L2c();
  other.has_code = other.has_carrier = other.has_doppler = false;
  first.others = {other};
  const Read read({first});
  ASSERT_EQ(read.epoch.signals.size(), 2U);
  const SignalObservation &a = read.epoch.signals[0], &b = read.epoch.signals[1];
  EXPECT_TRUE(Absent(a.phase_cycles) && Absent(a.doppler_hz) && Absent(a.snr_dbhz));
  EXPECT_TRUE(Absent(b.pseudorange_m) && Absent(b.phase_cycles) && Absent(b.doppler_hz));
  EXPECT_EQ(read.decoder.Counts().unrelated + read.decoder.Counts().impossible, 0U);
  other.cn0 = kNoCn0;
  first.others = {other};
  EXPECT_EQ(Read({first}).epoch.signals.size(), 1U);  // a signal without any value is none
}

TEST(SbfDecoder, WhatIsLeftOutIsCounted) {
  FirstSignal antenna = Gps5(), satellite = Gps5(), system = Gps5();
  antenna.antenna = 1;
  satellite.svid = 62;
  system.signal = 17;
  const auto counts = [](const FirstSignal& first) { return Read({first}).decoder.Counts(); };
  EXPECT_EQ(counts(antenna).other_antennas, 1U);
  EXPECT_EQ(counts(satellite).unknown_satellites, 1U);
  EXPECT_EQ(counts(system).unknown_signals, 1U);
  const Read twice({Gps5(), Gps5()});
  EXPECT_EQ(twice.decoder.Counts().duplicates, 1U);
  EXPECT_EQ(twice.epoch.signals.size(), 1U);
  const Read scrambled({Gps5()}, false, true);
  EXPECT_EQ(scrambled.decoder.Counts().scrambled, 1U);
  EXPECT_TRUE(scrambled.epoch.signals.empty());
  Decoder undated;
  undated.Take(Changed(BlockAt(0, {Gps5()}), 12, "\xff\xff"));
  EXPECT_EQ(undated.Counts().impossible_times, 1U);
  undated.Take(BlockOf(4007, std::string(88, '\0')));  // PVTGeodetic
  EXPECT_EQ(undated.Counts().undecoded, 1U);
}

TEST(SbfDecoder, E6IsE6cUnlessTheBlockSaysE6b) {
  FirstSignal first = Gps5();
  first.svid = 81;
  first.signal = kE6;
  const Read e6c({first});
  ASSERT_EQ(e6c.epoch.signals.size(), 1U);
  EXPECT_EQ(NameOf(e6c.epoch.signals[0].code), "6C");
  const Read e6b({first}, true);
  EXPECT_TRUE(e6b.epoch.signals.empty());
  EXPECT_EQ(e6b.decoder.Counts().unknown_signals, 1U);
}

TEST(SbfDecoder, GlonassNeedsItsChannelForPhases) {
  FirstSignal first = Gps5();
  first.svid = 41;
  first.signal = 8;
  const Read without({first});
  ASSERT_EQ(without.epoch.signals.size(), 1U);
  EXPECT_TRUE(Absent(without.epoch.signals[0].phase_cycles));
  EXPECT_EQ(without.decoder.Counts().unrelated, 1U);
  first.frequency_number = 5;
  const Read with({first});
  EXPECT_EQ(with.decoder.Channels()[4], -3);
  EXPECT_NEAR(with.epoch.signals[0].phase_cycles,
              22'000'000.125 * (1602e6 - 3 * 562500.0) / 299792458.0 + 0.25, 1e-6);
  first.frequency_number = 15;
  const Read wrong({first});
  EXPECT_EQ(wrong.decoder.Counts().impossible, 1U);
  EXPECT_FALSE(wrong.decoder.Channels()[4]);
}

TEST(SbfDecoder, LockIsLostWhereItsTimeFallsOrIsShorterThanWhatPassed) {
  Decoder decoder;
  const auto flag = [&decoder](int second, int lock_s, int other_lock_s) {
    FirstSignal first = Gps5();
    first.lock_s = static_cast<std::uint16_t>(lock_s);
    first.half_cycle = second == 7;
    first.others = {L2c()};
    first.others[0].lock_s = static_cast<std::uint8_t>(other_lock_s);
    decoder.Take(BlockAt(second, {first}));
    ObservationEpoch epoch;
    decoder.Next(epoch);
    return std::pair(epoch.signals.at(0).loss_of_lock, epoch.signals.at(1).loss_of_lock);
  };
  using Flags =
      std::pair<decltype(SignalObservation::loss_of_lock), decltype(SignalObservation::loss_of_lock)>;
  EXPECT_EQ(flag(0, 400, 254), Flags(0, 0));
  EXPECT_EQ(flag(1, 401, 254), Flags(0, 0));
  EXPECT_EQ(flag(2, 0, 254), Flags(kLossOfLock, 0));
  EXPECT_EQ(flag(3, 1, 255), Flags(0, 0));  // 255 and 65535 say nothing
  EXPECT_EQ(flag(4, 65535, 3), Flags(0, kLossOfLock));
  EXPECT_EQ(flag(5, 65534, 4), Flags(0, 0));
  EXPECT_EQ(flag(6, 65534, 5), Flags(0, 0));
  EXPECT_EQ(flag(7, 65534, 6), Flags(kHalfCycle, 0));
  EXPECT_EQ(flag(60, 65534, 10), Flags(0, kLossOfLock));
}

TEST(SbfReader, EveryDamagedByteCostsAtMostItsOwnEpoch) {
  std::string bytes;
  for (int second = 0; second < 4; ++second) bytes += BlockAt(second, {Gps5()});
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    std::string damaged = bytes;
    damaged[at] ^= 0x11;
    Diagnostics diagnostics;
    EXPECT_EQ(EpochsOf(damaged, diagnostics).size(), 3U) << at;
  }
}

TEST(SbfReader, TruncatedBlocksCostOnlyThemselves) {
  const std::string block = BlockAt(0, {Gps5()}), next = BlockAt(1, {Gps5()});
  for (std::size_t size = 1; size < block.size(); ++size) {
    Diagnostics diagnostics;
    EXPECT_EQ(EpochsOf(next + block.substr(0, size) + next, diagnostics).size(), 2U) << size;
    EXPECT_EQ(EpochsOf(next + block.substr(0, size), diagnostics).size(), 1U) << size;
    EXPECT_GT(diagnostics.Total(), 0);
  }
}

TEST(SbfReader, AFileWithoutBlocksIsAnError) {
  Diagnostics diagnostics;
  EXPECT_THROW(EpochsOf("$@ is not a block", diagnostics), FileError);
}

TEST(SbfSignals, NamesOfTheGuideAndBack) {
  EXPECT_EQ(NameOf(*SatelliteOf(38)), "R01");
  EXPECT_EQ(NameOf(*SatelliteOf(63)), "R25");
  EXPECT_EQ(NameOf(*SatelliteOf(120)), "S20");
  EXPECT_EQ(NameOf(*SatelliteOf(223)), "C41");
  EXPECT_FALSE(SatelliteOf(0));
  EXPECT_FALSE(SatelliteOf(62));
  EXPECT_FALSE(SatelliteOf(110));
  for (int svid = 0; svid < 256; ++svid) {
    const auto satellite = SatelliteOf(svid);
    if (!satellite) continue;
    EXPECT_EQ(SvidOf(*satellite), svid);
  }
}

TEST(SbfEphemeris, RecordsComeBackAsWritten) {
  for (const char letter : {'G', 'J', 'C', 'E', 'R'}) {
    NavigationRecord record;
    record.letter = letter;
    record.number = 3;
    record.time.time = GpsTime(2200, 7200) / kSecond;
    if (letter == 'R') {
      record.v[3] = -12345.5, record.v[4] = 1.25, record.v[0] = -0.5, record.v[10] = -4, record.v[6] = 1;
    } else {
      record.v[10] = 5153.5, record.v[8] = 0.0078125, record.v[11] = 7200, record.v[0] = -0.5;
      record.v[21] = letter == 'C' ? 2200 - 1356 : 2200;
      if (letter == 'E') record.v[20] = 1 | 4 | 512, record.v[23] = 107, record.v[24] = 0x1ff;
    }
    const auto read = ReadEphemeris(WriteEphemeris(record, GpsTime(2200, 7000)));
    ASSERT_TRUE(read) << letter;
    EXPECT_EQ(read->letter, letter);
    EXPECT_EQ(read->number, 3);
    EXPECT_EQ(read->time.time, record.time.time);
    EXPECT_EQ(read->v, record.v) << letter;
  }
}

NavigationRecord Galileo3() {
  NavigationRecord record;
  record.letter = 'E';
  record.number = 3;
  record.time.time = GpsTime(2200, 7200) / kSecond;
  record.v[10] = 5440.5, record.v[11] = 7200, record.v[20] = 1 | 4 | 512, record.v[25] = 1e-9;
  return record;
}

TEST(SbfEphemeris, DoNotUseIsZeroForGroupDelaysAndElseDamage) {
  const std::string block = WriteEphemeris(Galileo3(), GpsTime(2200, 7000));
  const std::string none = BytesOf(-2e10F);
  for (const std::size_t place : {136U, 140U}) {
    const auto record = ReadEphemeris(Changed(block, place, none));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->v[place == 136 ? 25 : 26], 0);
  }
  for (std::size_t place = 16; place < 64; place += 8) {
    EXPECT_FALSE(ReadEphemeris(Changed(block, place, BytesOf(-2e10)))) << place;
    EXPECT_FALSE(ReadEphemeris(Changed(block, place, BytesOf(std::nan(""))))) << place;
  }
  for (std::size_t place = 64; place < 100; place += 4) {
    EXPECT_FALSE(ReadEphemeris(Changed(block, place, none))) << place;
  }
  for (const std::size_t place : {100U, 104U}) {
    EXPECT_FALSE(ReadEphemeris(Changed(block, place, "\xff\xff\xff\xff"))) << place;
    EXPECT_FALSE(ReadEphemeris(Changed(block, place, BytesOf(std::uint32_t{604800})))) << place;
  }
  EXPECT_FALSE(ReadEphemeris(Changed(block, 14, "\x05")));      // a GPS satellite
  EXPECT_FALSE(ReadEphemeris(Changed(block, 15, "\x01")));      // neither I/NAV nor F/NAV
  EXPECT_FALSE(ReadEphemeris(Changed(block, 12, "\xff\xff")));  // no week
  EXPECT_FALSE(ReadEphemeris(BlockOf(kGalNav, block.substr(kHeadBytes, 128))));
  EXPECT_TRUE(ReadEphemeris(BlockOf(kGalNav | 1 << 13, block.substr(kHeadBytes) + "more")));
}

TEST(SbfEphemeris, HealthOfGalileoIsThatOfTheSignalsStated) {
  const std::string block = WriteEphemeris(Galileo3(), GpsTime(2200, 7000));
  const auto health = [&block](unsigned bits) {
    return ReadEphemeris(Changed(block, 130, BytesOf(static_cast<std::uint16_t>(bits))))->v[24];
  };
  EXPECT_EQ(health(0x0000), 0);
  EXPECT_EQ(health(0x0EEE), 0);    // without the bits that make them valid
  EXPECT_EQ(health(0x0003), 1);    // E1B data without guarantee
  EXPECT_EQ(health(0x0005), 2);    // E1B out of service
  EXPECT_EQ(health(0x0300), 8);    // E5a
  EXPECT_EQ(health(0x0D00), 48);   // E5a
  EXPECT_EQ(health(0x0030), 64);   // E5b
  EXPECT_EQ(health(0x00D0), 384);  // E5b
}

TEST(SbfEphemeris, HealthOfGlonassIsTheUpperBitOfBOrTheFlagL) {
  NavigationRecord record;
  record.letter = 'R';
  record.number = 4;
  record.time.time = GpsTime(2200, 7200) / kSecond;
  const std::string block = WriteEphemeris(record, GpsTime(2200, 7000));
  EXPECT_EQ(ReadEphemeris(block)->v[6], 0);
  EXPECT_EQ(ReadEphemeris(Changed(block, 85, "\x03"))->v[6], 0);
  EXPECT_EQ(ReadEphemeris(Changed(block, 85, "\x04"))->v[6], 1);
  EXPECT_EQ(ReadEphemeris(Changed(block, 90, "\x01"))->v[6], 1);
  EXPECT_EQ(ReadEphemeris(Changed(block, 90, "\xff"))->v[6], 0);  // not given
}

TEST(SbfEphemeris, WeeksAreThoseNearestToTheBlock) {
  NavigationRecord record = Galileo3();
  record.v[11] = 600;
  record.time.time = GpsTime(2201, 600) / kSecond;
  const auto read = ReadEphemeris(WriteEphemeris(record, GpsTime(2200, 604000)));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->time.time, GpsTime(2201, 600) / kSecond);
  EXPECT_EQ(read->v[21], 2201);
  record.v[11] = 604200;
  record.time.time = GpsTime(2200, 604200) / kSecond;
  EXPECT_EQ(ReadEphemeris(WriteEphemeris(record, GpsTime(2201, 30)))->v[21], 2200);
  record.letter = 'C';  // BDT is 14 s behind, its weeks count from 2006
  record.v[11] = 0;
  record.time.time = GpsTime(2201, 0) / kSecond;
  EXPECT_EQ(ReadEphemeris(WriteEphemeris(record, GpsTime(2201, 5)))->v[21], 2201 - 1356);
}

TEST(SbfReceiverSetup, TextsLieWhereTheGuideHasThem) {
  ReceiverSetup setup;
  setup.marker = "STATION";
  setup.marker_number = "10001M001";
  setup.receiver_number = "3001234";
  setup.receiver = "PolaRx5";
  setup.firmware = "5.5.0";
  setup.antenna_number = "12345";
  setup.antenna = "SEPCHOKE_B3E6   SPKE";
  const std::string block = WriteReceiverSetup(setup, GpsTime(2200, 0));
  EXPECT_EQ(block.size(), 268U);
  for (const auto& [place, text] : {std::pair(16, setup.marker),
                                    {76, setup.marker_number},
                                    {156, setup.receiver_number},
                                    {176, setup.receiver},
                                    {196, setup.firmware},
                                    {216, setup.antenna_number},
                                    {236, setup.antenna}}) {
    EXPECT_EQ(block.substr(static_cast<std::size_t>(place), text.size()), text);
  }
  const auto read =
      ReadReceiverSetup(BlockOf(kReceiverSetup | 4 << 13, block.substr(kHeadBytes) + std::string(156, 'x')));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->antenna, setup.antenna);
  EXPECT_EQ(read->receiver_number, setup.receiver_number);
  EXPECT_FALSE(ReadReceiverSetup(BlockOf(kReceiverSetup, block.substr(kHeadBytes, 256))));
}

/// An epoch of one satellite with signals of given pseudoranges and phases.
ObservationEpoch EpochOf(SatelliteId satellite, int second, std::vector<SignalObservation> signals) {
  std::vector<SatelliteSignal> list;
  for (const SignalObservation& signal : signals) list.push_back({satellite, signal});
  ObservationEpoch epoch;
  FillEpoch(GpsTime(2200, second), std::move(list), epoch);
  return epoch;
}

SignalObservation SignalOfCode(const char* code, double pseudorange_m, double phase_cycles) {
  SignalObservation o;
  o.code = {code[0], code[1]};
  o.pseudorange_m = pseudorange_m;
  o.phase_cycles = phase_cycles;
  o.doppler_hz = 123.4567;
  o.snr_dbhz = 33.25;
  return o;
}

TEST(SbfWriter, SeveralSignalsComeBackOnTheGridOfTheBlock) {
  MeasEpochWriter writer({});
  Decoder decoder;
  double added[4] = {};
  for (int second = 0; second < 3; ++second) {
    const double range = 23'456'789.0123 + 700.5 * second;
    const ObservationEpoch epoch =
        EpochOf({'E', 11}, second,
                {SignalOfCode("1C", range, 1e8 + second), SignalOfCode("5Q", range + 4.25, 1e7 + second),
                 SignalOfCode("6C", range - 250, -5.5), SignalOfCode("8Q", range + 1, kAbsent)});
    decoder.Take(writer.Write(epoch));
    ObservationEpoch read;
    ASSERT_TRUE(decoder.Next(read));
    ASSERT_EQ(read.signals.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
      const SignalObservation &a = epoch.signals[i], &b = read.signals[i];
      EXPECT_EQ(NameOf(a.code), NameOf(b.code));
      EXPECT_NEAR(a.pseudorange_m, b.pseudorange_m, 0.5001e-3);
      EXPECT_NEAR(a.doppler_hz, b.doppler_hz, 0.51e-4);
      EXPECT_EQ(a.snr_dbhz, b.snr_dbhz);
      EXPECT_EQ(b.loss_of_lock, 0);
      if (i == 3) {
        EXPECT_TRUE(Absent(b.phase_cycles));
        continue;
      }
      const double cycles = b.phase_cycles - a.phase_cycles;
      if (second == 0) added[i] = std::round(cycles);
      EXPECT_NEAR(cycles, added[i], 0.51e-3) << i << " " << second;
    }
  }
  EXPECT_EQ(decoder.Counts().unrelated + decoder.Counts().impossible + decoder.Counts().unknown_signals, 0U);
}

TEST(SbfWriter, LeavesOutWhatBlocksCannotHold) {
  MeasEpochWriter writer({});
  Decoder decoder;
  const auto read = [&](SatelliteId satellite, std::vector<SignalObservation> signals) {
    decoder.Take(writer.Write(EpochOf(satellite, 0, std::move(signals))));
    ObservationEpoch epoch;
    decoder.Next(epoch);
    return epoch;
  };
  EXPECT_TRUE(read({'G', 5}, {SignalOfCode("1M", 2e7, 0)}).signals.empty());
  EXPECT_TRUE(read({'S', 99}, {SignalOfCode("1C", 2e7, 0)}).signals.empty());
  const auto far = read({'G', 5}, {SignalOfCode("1C", 2e7, 1e8), SignalOfCode("2W", 2e7 + 263, 1e8)}).signals;
  ASSERT_EQ(far.size(), 2U);
  EXPECT_TRUE(Absent(far[1].pseudorange_m) && Absent(far[1].phase_cycles));
  EXPECT_FALSE(Absent(far[1].doppler_hz));
  const auto glonass = read({'R', 5}, {SignalOfCode("1C", 2e7, 1e8), SignalOfCode("2C", 2e7, 1e8)}).signals;
  ASSERT_EQ(glonass.size(), 2U);
  EXPECT_TRUE(Absent(glonass[0].phase_cycles) && Absent(glonass[1].phase_cycles));
  EXPECT_EQ(decoder.Counts().unrelated, 0U);
  // The first with a pseudorange carries the others.
  const auto second =
      read({'G', 5}, {SignalOfCode("1C", kAbsent, 1e8), SignalOfCode("2W", 2e7, 1e8)}).signals;
  ASSERT_EQ(second.size(), 2U);
  EXPECT_TRUE(Absent(second[0].pseudorange_m) && Absent(second[0].phase_cycles));
  EXPECT_EQ(second[1].pseudorange_m, 2e7);
}

TEST(SbfWriter, LockBeginsAgainWhereItIsLost) {
  MeasEpochWriter writer({});
  Decoder decoder;
  const auto flag = [&](int second, double phase_cycles, std::uint8_t lost) {
    SignalObservation signal = SignalOfCode("1C", 2e7, phase_cycles);
    signal.loss_of_lock = lost;
    decoder.Take(writer.Write(EpochOf({'G', 5}, second, {signal})));
    ObservationEpoch epoch;
    decoder.Next(epoch);
    return epoch.signals.at(0).loss_of_lock;
  };
  EXPECT_EQ(flag(0, 0, 0), 0);
  EXPECT_EQ(flag(30, 100, 0), 0);
  EXPECT_EQ(flag(60, 200, kLossOfLock), kLossOfLock);
  EXPECT_EQ(flag(90, 300, kHalfCycle), kHalfCycle);
  EXPECT_EQ(flag(120, 20'000, 0), kLossOfLock);  // more cycles from its pseudorange than the block can say
}

}  // namespace
