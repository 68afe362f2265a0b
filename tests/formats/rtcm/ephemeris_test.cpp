#include "host/formats/rtcm/ephemeris.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;

KeplerRecord SomeOrbit(char system, std::uint8_t number) {
  KeplerRecord k;
  k.satellite = {system, number};
  k.toe_s = static_cast<double>(GpsTime(2300, 7200 + (system == 'C' ? 14 : 0)) / kSecond);
  k.toc_s = k.toe_s;
  k.toe_of_week_s = 7200;
  k.af0 = -1.5e-4, k.af1 = 2.5e-12, k.af2 = 0;
  k.sqrt_a = 5153.7, k.eccentricity = 0.0161;
  k.m0 = 1.25, k.delta_n = 4.2e-9, k.omega0 = -2.9, k.omega_dot = -7.8e-9;
  k.i0 = 0.968, k.idot = -4.9e-10, k.omega = -1.22;
  k.cuc = -5.9e-6, k.cus = 8.5e-6, k.cic = 2.4e-7, k.cis = -1.7e-8;
  k.crc = 210.3, k.crs = -117.3;
  return k;
}

class EveryKeplerMessage : public testing::TestWithParam<std::pair<int, char>> {};

TEST_P(EveryKeplerMessage, RecordComesBackWithinHalfAStepOfEachField) {
  const auto [type, system] = GetParam();
  const KeplerRecord record = SomeOrbit(system, 3);
  const auto message = ReadEphemeris(WriteEphemeris(MessageOf(record, type)));
  ASSERT_TRUE(message);
  StreamClock clock(GpsTime(2300, 6000));
  const auto back = KeplerOf(*message, clock);
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->satellite == record.satellite);
  EXPECT_EQ(back->toe_s, record.toe_s);
  EXPECT_EQ(back->toc_s, record.toc_s);
  EXPECT_EQ(back->toe_of_week_s, 7200);
  EXPECT_NEAR(back->af0, record.af0, std::ldexp(1.0, -32));
  EXPECT_NEAR(back->af1, record.af1, std::ldexp(1.0, -44));
  EXPECT_NEAR(back->sqrt_a, record.sqrt_a, std::ldexp(1.0, -20));
  EXPECT_NEAR(back->eccentricity, record.eccentricity, std::ldexp(1.0, -34));
  EXPECT_NEAR(back->m0, record.m0, 3.2 * std::ldexp(1.0, -32));
  EXPECT_NEAR(back->i0, record.i0, 3.2 * std::ldexp(1.0, -32));
  EXPECT_NEAR(back->omega0, record.omega0, 3.2 * std::ldexp(1.0, -32));
  EXPECT_NEAR(back->omega_dot, record.omega_dot, 3.2 * std::ldexp(1.0, -42));
  EXPECT_NEAR(back->delta_n, record.delta_n, 3.2 * std::ldexp(1.0, -42));
  EXPECT_NEAR(back->idot, record.idot, 3.2 * std::ldexp(1.0, -44));
  EXPECT_NEAR(back->cuc, record.cuc, std::ldexp(1.0, -29));
  EXPECT_NEAR(back->cis, record.cis, std::ldexp(1.0, -29));
  EXPECT_NEAR(back->crc, record.crc, std::ldexp(1.0, -5));
  EXPECT_NEAR(back->crs, record.crs, std::ldexp(1.0, -5));
  EXPECT_FALSE(back->unhealthy);
  EXPECT_EQ(back->second_message, type == 1045);
  StreamClock empty;
  EXPECT_TRUE(TakeDate(*message, empty));
  ASSERT_TRUE(empty.UseWeakDate());
  EXPECT_EQ(empty.Latest(), static_cast<std::int64_t>(record.toe_s) * kSecond);
}

INSTANTIATE_TEST_SUITE_P(Ephemeris, EveryKeplerMessage,
                         testing::Values(std::pair{1019, 'G'}, std::pair{1041, 'I'}, std::pair{1042, 'C'},
                                         std::pair{1044, 'J'}, std::pair{1045, 'E'}, std::pair{1046, 'E'}));

TEST(Ephemeris, StateVectorComesBackWithinHalfAStepOfEachField) {
  StateVectorRecord record;
  record.satellite = {'R', 9};
  record.toe_s = static_cast<double>(GpsTime(2300, 2 * 86400 + 18 + 900) / kSecond);
  record.clock_bias_s = 1.75e-4;
  record.clock_rate = 9.1e-13;
  record.position_m[0] = 19637818.8;
  record.velocity_m_s[1] = -844.9;
  record.acceleration_m_s2[2] = -2.8e-6;
  record.channel = -2;
  const auto message = ReadEphemeris(WriteEphemeris(MessageOf(record)));
  ASSERT_TRUE(message);
  StreamClock clock(GpsTime(2300, 2 * 86400));
  const auto back = StateVectorOf(*message, clock);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->toe_s, record.toe_s);
  EXPECT_NEAR(back->clock_bias_s, record.clock_bias_s, std::ldexp(1.0, -31));
  EXPECT_NEAR(back->clock_rate, record.clock_rate, std::ldexp(1.0, -41));
  EXPECT_NEAR(back->position_m[0], record.position_m[0], 1000 * std::ldexp(1.0, -12));
  EXPECT_NEAR(back->velocity_m_s[1], record.velocity_m_s[1], 1000 * std::ldexp(1.0, -21));
  EXPECT_NEAR(back->acceleration_m_s2[2], record.acceleration_m_s2[2], 1000 * std::ldexp(1.0, -31));
  EXPECT_EQ(back->channel, -2);
  StreamClock empty;
  EXPECT_TRUE(TakeDate(*message, empty));
  ASSERT_TRUE(empty.UseWeakDate());
  EXPECT_EQ(empty.Latest(), static_cast<std::int64_t>(record.toe_s) * kSecond);
}

TEST(Ephemeris, ReferenceTimeOfTheNextWeekFollowsTheClock) {
  KeplerRecord record = SomeOrbit('G', 7);
  record.toe_s = record.toc_s = static_cast<double>(GpsTime(2301, 0) / kSecond);
  EphemerisMessage message = MessageOf(record, 1019);
  message.values[term::kWeek] = 2300 % 1024;  // of transmission
  StreamClock clock(GpsTime(2300, 600000));
  EXPECT_EQ(KeplerOf(message, clock)->toe_s, record.toe_s);
}

TEST(Ephemeris, HealthOfAnySignalCounts) {
  StreamClock clock(GpsTime(2300, 0));
  for (const auto name : {term::kHealth, term::kHealth2, term::kDataInvalid, term::kDataInvalid2}) {
    EphemerisMessage message = MessageOf(SomeOrbit('E', 3), 1046);
    EXPECT_FALSE(KeplerOf(message, clock)->unhealthy);
    message.values[name] = 1;
    EXPECT_TRUE(KeplerOf(message, clock)->unhealthy);
  }
}

TEST(Ephemeris, ImpossibleSatellitesAndTimesGiveNoRecord) {
  StreamClock clock(GpsTime(2300, 0));
  EphemerisMessage message = MessageOf(SomeOrbit('G', 3), 1019);
  message.values[term::kSatellite] = 0;
  EXPECT_FALSE(KeplerOf(message, clock));
  message = MessageOf(SomeOrbit('G', 3), 1019);
  message.values[term::kToe] = 37800;  // 604800 s
  EXPECT_FALSE(KeplerOf(message, clock));
  EXPECT_FALSE(ReadEphemeris(WriteEphemeris(message).substr(0, 60)));
}

}  // namespace
