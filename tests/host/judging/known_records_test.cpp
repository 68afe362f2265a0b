#include "host/judging/known_records.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using orsolva_host::KeplerRecord;
using orsolva_host::KnownRecords;
using orsolva_host::ReadNavigation;
using orsolva_host::SatelliteId;

ReadNavigation RecordsOf(double toe_s, bool second_message = false) {
  ReadNavigation read;
  read.files = {"a.rnx"};
  KeplerRecord kepler;
  kepler.satellite = SatelliteId{'E', 5};
  kepler.toe_s = toe_s;
  kepler.second_message = second_message;
  read.broadcast.kepler = {kepler};
  GpsEph_gbt gps = {};
  gps.prn = 5;
  gps.toc.time = static_cast<std::int64_t>(toe_s);
  read.set.gps = {gps};
  return read;
}

TEST(KnownRecords, GivesEachRecordOnce) {
  KnownRecords known;
  EXPECT_EQ(known.New(RecordsOf(7200)).set.gps.size(), 1U);
  const ReadNavigation again = known.New(RecordsOf(7200));
  EXPECT_EQ(again.set.Size(), 0U);
  EXPECT_TRUE(again.broadcast.kepler.empty());
  const ReadNavigation later = known.New(RecordsOf(14400));
  EXPECT_EQ(later.set.gps.size(), 1U);
  EXPECT_EQ(later.broadcast.kepler.size(), 1U);
}

TEST(KnownRecords, MessagesOfGalileoAreRecordsOfTheirOwn) {
  KnownRecords known;
  known.New(RecordsOf(7200));
  EXPECT_EQ(known.New(RecordsOf(7200, true)).broadcast.kepler.size(), 1U);
}

/// The library's records of a Galileo satellite that are new, of a message at a time.
std::size_t NewForLibrary(KnownRecords& known, double toe_s, bool second_message) {
  ReadNavigation read = RecordsOf(toe_s, second_message);
  GalEph_gbt galileo = {};
  galileo.prn = 5;
  galileo.toc.time = static_cast<std::int64_t>(toe_s);
  read.set.galileo = {galileo};
  return known.New(read).set.galileo.size();
}

TEST(KnownRecords, ASatelliteOfGalileoKeepsItsMessageForTheLibrary) {
  KnownRecords inav_first;
  EXPECT_EQ(NewForLibrary(inav_first, 7200, false), 1U);
  EXPECT_EQ(NewForLibrary(inav_first, 7800, true), 0U) << "F/NAV, another clock";
  EXPECT_EQ(NewForLibrary(inav_first, 7800, false), 1U);
  KnownRecords fnav_first;
  EXPECT_EQ(NewForLibrary(fnav_first, 7200, true), 1U);
  EXPECT_EQ(NewForLibrary(fnav_first, 7800, false), 0U) << "I/NAV, another clock";
  EXPECT_EQ(NewForLibrary(fnav_first, 7800, true), 1U);
}

TEST(KnownRecords, PassesOverRecordsWithoutATime) {
  KnownRecords known;
  ReadNavigation read = RecordsOf(0);
  read.broadcast.kepler[0].toe_s = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(known.New(read).broadcast.kepler.empty());
}

TEST(KnownRecords, TogetherHoldsAllRecordsAndEachFileOnce) {
  const auto both = Together(RecordsOf(7200), RecordsOf(14400));
  EXPECT_EQ(both->set.gps.size(), 2U);
  EXPECT_EQ(both->broadcast.kepler.size(), 2U);
  EXPECT_EQ(both->files, std::vector<std::string>{"a.rnx"});
}

}  // namespace
