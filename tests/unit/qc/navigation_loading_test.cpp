#include "qc/navigation_loading.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/unit/qc/process_runs.h"

namespace {

using namespace orsolva;
using namespace orsolva_test;

TEST(LoadNavigation, AnEmptySetIsRefused) {
  const auto process = Process(sky::Config());
  EXPECT_FALSE(process->LoadNavigationSet(NavBodyData_QC_gbt{}));
}

TEST(LoadNavigation, UnhealthyRecordsAreVisitedButNeverStored) {
  std::vector<GpsEph_gbt> records{sky::Record(5, 0.0)};
  records[0].svh = 1;
  const auto process = Process(sky::Config());
  EXPECT_TRUE(process->LoadNavigationSet(sky::Navigation(records)));
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_FALSE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, gnssqctoolkit::kDefaultMaxAges, choice));
  EXPECT_EQ(process->SatUsable[4], 255);
}

TEST(LoadNavigation, OneHealthyRecordMakesASatelliteHealthyForGood) {
  std::vector<GpsEph_gbt> records{sky::Record(5, 0.0), sky::Record(5, 7200.0), sky::Record(5, 14400.0)};
  records[0].svh = records[2].svh = 3;
  const auto process = Process(sky::Config(), records);
  EXPECT_EQ(process->SatUsable[4], 1);
  EXPECT_EQ(process->SatUsable[5], 1) << "a satellite without any record stays usable";
}

TEST(LoadNavigation, EverySystemIsLoadedAndScanned) {
  GloEph_gbt glonass{};
  glonass.prn = 4;
  glonass.frequency_channel = -3;
  BdsEph_gbt bds{};
  bds.prn = 20;
  bds.svh = 1;
  GalEph_gbt galileo{};
  galileo.prn = 11;
  galileo.svh = 1;
  GpsEph_gbt qzss = sky::Record(2, 0.0);
  qzss.prn = 3;
  NavBodyData_QC_gbt nav{};
  nav.glo_num = nav.bds_num = nav.gal_num = nav.qzs_num = 1;
  nav.glo_eph = &glonass;
  nav.bds_eph = &bds;
  nav.gal_eph = &galileo;
  nav.qzs_eph = &qzss;
  const auto process = Process(sky::Config());
  ASSERT_TRUE(process->LoadNavigationSet(nav));
  EXPECT_EQ(process->Eph.GlonassChannels()[3], -3);
  EXPECT_EQ(process->Eph.GlonassChannels()[4], -999);
  EXPECT_EQ(process->SatUsable[68 + 20 - 2], 255);
  EXPECT_EQ(process->SatUsable[131 + 11 - 1], 255);
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_TRUE(process->Eph.Select({16, 3}, {sky::kWeekStart, 0.0}, gnssqctoolkit::kDefaultMaxAges, choice));
}

TEST(LoadNavigation, ACountWithANullPointerIsNoRecord) {
  NavBodyData_QC_gbt nav{};
  nav.gps_num = nav.glo_num = nav.bds_num = nav.gal_num = nav.qzs_num = 1000;
  const auto process = Process(sky::Config());
  EXPECT_FALSE(process->LoadNavigationSet(nav));
  for (const std::uint8_t usable : process->SatUsable) EXPECT_EQ(usable, 1);
}

TEST(LoadNavigation, ASecondSetIsAddedToTheFirst) {
  const auto process = Process(sky::Config(), {sky::Record(5, 0.0)});
  std::vector<GpsEph_gbt> more{sky::Record(5, 86400.0)};
  ASSERT_TRUE(process->LoadNavigationSet(sky::Navigation(more)));
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_TRUE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, gnssqctoolkit::kDefaultMaxAges, choice));
  EXPECT_TRUE(
      process->Eph.Select({1, 5}, {sky::kWeekStart + 86400, 0.0}, gnssqctoolkit::kDefaultMaxAges, choice));
}

}  // namespace
