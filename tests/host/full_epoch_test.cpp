// The observation model as the RINEX readers fill it: every system, signal and flag of a file, and nothing
// else.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "host/rinex/observation_reader.h"

namespace orsolva_host {
namespace {

std::string Labelled(std::string text, const std::string& label) {
  text.resize(60, ' ');
  return text + label + "\n";
}

std::string Header(const std::string& version, const std::string& more) {
  return Labelled("     " + version + "           OBSERVATION DATA    M", "RINEX VERSION / TYPE") + more +
         Labelled("  2020     6    25     0     0    0.0000000     GPS", "TIME OF FIRST OBS") +
         Labelled("", "END OF HEADER");
}

class Reading {
 public:
  explicit Reading(const std::string& text) : reader_(TextBytes(text), "text", diagnostics_) {}
  bool Next() { return reader_.Next(*record_, epoch_); }
  const ObservationEpoch& Epoch() const { return epoch_; }
  const ObsEpoch_QC_gbt& Record() const { return *record_; }
  const ObservationHeader& FileHeader() const { return reader_.Header(); }

 private:
  Diagnostics diagnostics_;
  ObservationReader reader_;
  std::unique_ptr<ObsEpoch_QC_gbt> record_ = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch_;
};

const std::string kTypes3 = Labelled("G    3 C1C L1C S1C", "SYS / # / OBS TYPES") +
                            Labelled("I    2 C5A L5A", "SYS / # / OBS TYPES") +
                            Labelled("S    2 C1C L1C", "SYS / # / OBS TYPES") +
                            Labelled("  2 R01  1 R17 -4", "GLONASS SLOT / FRQ #");

TEST(FullEpoch, KeepsSystemsThatTheLibraryDoesNotKnowAndFlags) {
  Reading reading(Header("3.04", kTypes3) +
                  "> 2020 06 25 00 00 30.0000000  1  3       0.000000123456\n"
                  "G05  21234567.125   111586200.25017        45.500\n"
                  "I02  36234567.125   142123456.500\n"
                  "S20  38000000.000               \n");
  ASSERT_TRUE(reading.Next());
  const ObservationEpoch& epoch = reading.Epoch();
  EXPECT_EQ(reading.Record().sat_num, 1U);
  ASSERT_EQ(epoch.satellites.size(), 3U);
  EXPECT_EQ(epoch.events, kPowerFailure);
  EXPECT_DOUBLE_EQ(epoch.receiver_clock_offset_s, 0.000000123456);
  EXPECT_EQ(epoch.time_ns % (3600 * kNanosecondsPerSecond), 30 * kNanosecondsPerSecond);
  const SignalObservation& gps = epoch.signals[0];
  EXPECT_EQ(gps.loss_of_lock, kLossOfLock);
  EXPECT_EQ(gps.strength_digit, 7);
  EXPECT_DOUBLE_EQ(gps.snr_dbhz, 45.5);
  EXPECT_TRUE(std::isnan(gps.doppler_hz));
  EXPECT_EQ(NameOf(epoch.satellites[1].id), "I02");
  EXPECT_EQ(NameOf(epoch.signals[epoch.satellites[1].first_signal].code), "5A");
  EXPECT_TRUE(std::isnan(epoch.signals[epoch.satellites[2].first_signal].phase_cycles));
  EXPECT_EQ(reading.FileHeader().glonass_channels[17], -4);
}

TEST(FullEpoch, AbsentAndZeroValuesAreNotANumber) {
  Reading reading(Header("3.04", kTypes3) +
                  "> 2020 06 25 00 00 30.0000000  0  2\n"
                  "G05         0.000                          45.500\n"
                  "G06         0.000\n");
  ASSERT_TRUE(reading.Next());
  ASSERT_EQ(reading.Epoch().satellites.size(), 1U);
  EXPECT_TRUE(std::isnan(reading.Epoch().signals[0].pseudorange_m));
  EXPECT_TRUE(std::isnan(reading.Epoch().receiver_clock_offset_s));
}

TEST(FullEpoch, EventsComeWithTheEpochAfterThem) {
  Reading reading(Header("3.04", kTypes3) +
                  "> 2020 06 25 00 00 00.0000000  2  0\n"
                  "> 2020 06 25 00 00 30.0000000  0  1\n"
                  "G05  21234567.125   111586200.250\n"
                  "> 2020 06 25 00 01 00.0000000  0  1\n"
                  "G05  21234567.125   111586200.250\n");
  ASSERT_TRUE(reading.Next());
  EXPECT_EQ(reading.Epoch().events, kAntennaMoves);
  ASSERT_TRUE(reading.Next());
  EXPECT_EQ(reading.Epoch().events, 0U);
}

TEST(FullEpoch, Version2NamesSignalsAsTheLibraryRecordsDo) {
  Reading reading(Header("2.11", Labelled("     4    C1    P2    L1    L2", "# / TYPES OF OBSERV")) +
                  " 20  6 25  0  0 30.0000000  0  1G05\n"
                  "  21234567.125    21234570.250   111586200.250    86950300.500 4\n");
  ASSERT_TRUE(reading.Next());
  ASSERT_EQ(reading.Epoch().signals.size(), 2U);
  EXPECT_EQ(NameOf(reading.Epoch().signals[0].code), "1C");
  EXPECT_EQ(NameOf(reading.Epoch().signals[1].code), "2W");
  EXPECT_DOUBLE_EQ(reading.Epoch().signals[1].phase_cycles, 86950300.5);
  EXPECT_EQ(reading.Epoch().signals[1].strength_digit, 4);
}

}  // namespace
}  // namespace orsolva_host
