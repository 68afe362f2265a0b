#include <gtest/gtest.h>

#include <set>
#include <string>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "orsolva/records.h"

namespace orsolva_host {
namespace {

TEST(SignalCodes, EveryRowIsFoundByItsNameAndHasABand) {
  for (int i = 0; i < kSignalCodes; ++i) {
    const SignalCodeRow& row = kSignalCodeTable[i];
    EXPECT_EQ(SignalNumber(row.system, row.name, 3.05), row.number) << row.name;
    EXPECT_GE(row.band_slot, 1);
    EXPECT_LE(row.band_slot, 6);
    EXPECT_FALSE(BandName(row.system, row.band_slot).empty()) << row.number;
    EXPECT_EQ(SignalBandSlot(row.system, row.number), row.band_slot);
  }
}

TEST(SignalCodes, NamesAreUniqueWithinASystemAndNumbersFitTheRecord) {
  std::set<std::string> names;
  for (int i = 0; i < kSignalCodes; ++i) {
    const SignalCodeRow& row = kSignalCodeTable[i];
    EXPECT_TRUE(names.insert(std::to_string(row.system) + row.name).second) << row.name;
    EXPECT_GT(row.number, 0);
    EXPECT_LE(row.number, 255);
  }
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
