#include <gtest/gtest.h>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

TEST(SignalCodes, EverySignalOfTheLibraryIsFoundByItsNameAndHasABand) {
  for (const orsolva::SignalInfo& row : orsolva::kSignals) {
    const int system = static_cast<int>(row.system);
    const int number = static_cast<int>(row.signal);
    EXPECT_EQ(SignalNumber(system, SignalName(system, number), 3.05), number) << row.observation;
    EXPECT_FALSE(BandName(system, row.band_slot).empty()) << number;
    EXPECT_EQ(SignalBandSlot(system, number), row.band_slot);
  }
}

TEST(SignalCodes, BdsB1IHasOtherNamesInVersion302) {
  EXPECT_EQ(SignalNumber(kBds, "1I", 3.02), 150);
  EXPECT_EQ(SignalNumber(kBds, "1X", 3.02), 152);
  EXPECT_EQ(SignalNumber(kBds, "1X", 3.03), 155);
}

TEST(SignalCodes, TheCurrentNameOfANumberComesFirst) {
  EXPECT_EQ(SignalName(kBds, 150), "2I");
  EXPECT_EQ(SignalName(kBds, 152), "2X");
}

TEST(SignalCodes, UnknownCodesHaveNoNumberAndUnknownNumbersNoName) {
  EXPECT_EQ(SignalNumber(kGalileo, "2C", 3.05), 0);
  EXPECT_EQ(SignalNumber(kGps, "", 3.05), 0);
  EXPECT_EQ(SignalNumber(32, "5A", 3.05), 0);
  EXPECT_TRUE(SignalName(kGps, 99).empty());
  EXPECT_EQ(SignalBandSlot(kGps, 99), 0);
}

TEST(SatelliteNames, AreReadInEveryUsualForm) {
  char letter = 0;
  int number = 0;
  for (const char* text : {"G04", "G 4", "G4"}) {
    ASSERT_TRUE(ParseSatellite(text, letter, number)) << text;
    EXPECT_EQ(letter, 'G');
    EXPECT_EQ(number, 4);
  }
  for (const char* text : {"", "G", "g04", "404", "G00", "Gxx", " 04"}) {
    EXPECT_FALSE(ParseSatellite(text, letter, number)) << text;
  }
  EXPECT_EQ(SatelliteName('R', 7), "R07");
}

}  // namespace
}  // namespace orsolva_host
