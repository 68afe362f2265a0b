// The named limits, systems and signals of the public header against the records and what the library keeps.
#include "orsolva/signals.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "orsolva/gnssqc.h"
#include "orsolva/version.h"
#include "qc/base/config.h"
#include "toolkit/satellite.h"

namespace orsolva {
namespace {

template <class Array, unsigned Dimension = 0>
constexpr int Extent() {
  return static_cast<int>(std::extent_v<Array, Dimension>);
}

TEST(PublicLimits, AreTheBoundsOfTheRecords) {
  EXPECT_EQ((Extent<decltype(ObsEpoch_QC_gbt::sats)>()), ORSOLVA_MAX_SATELLITES);
  EXPECT_EQ((Extent<decltype(Satellite_gbt::signals)>()), ORSOLVA_MAX_SIGNALS);
  EXPECT_EQ((Extent<decltype(config_qct::enable_system)>()), ORSOLVA_SYSTEMS);
  EXPECT_EQ((Extent<decltype(config_qct::include_satellite)>()), ORSOLVA_SYSTEM_SLOTS);
  EXPECT_EQ((Extent<decltype(config_qct::include_satellite), 1>()), ORSOLVA_MAX_NUMBERS);
  EXPECT_EQ((Extent<decltype(config_qct::satellite_freq), 1>()), ORSOLVA_BAND_SLOTS);
  EXPECT_EQ((Extent<decltype(result_qct::sys)>()), ORSOLVA_SYSTEM_SLOTS);
  EXPECT_EQ((Extent<decltype(result_qct::sat), 1>()), ORSOLVA_MAX_NUMBERS);
  EXPECT_EQ((Extent<decltype(qc_core_summary::mp)>()), ORSOLVA_BAND_SLOTS);
  EXPECT_EQ((Extent<decltype(code_qc_block::entries)>()), ORSOLVA_MAX_CODES);
}

TEST(PublicSystems, HaveTheCodesAndSlotsOfTheLibrary) {
  EXPECT_EQ(ORSOLVA_GPS, gnssqctoolkit::kGps);
  EXPECT_EQ(ORSOLVA_GLONASS, gnssqctoolkit::kGlonass);
  EXPECT_EQ(ORSOLVA_BDS, gnssqctoolkit::kBds);
  EXPECT_EQ(ORSOLVA_GALILEO, gnssqctoolkit::kGalileo);
  EXPECT_EQ(ORSOLVA_QZSS, gnssqctoolkit::kQzss);
  EXPECT_EQ(ORSOLVA_FIRST_BDS3, gnssqctoolkit::kFirstBds3);
  EXPECT_EQ(ORSOLVA_BD3_SLOT, kSlotBd3);
  for (const System system : kAllSystems) EXPECT_EQ(SlotOf(system), SystemSlotOf(static_cast<int>(system)));
  EXPECT_EQ(SlotOf(static_cast<System>(32)), -1);
}

TEST(PublicSignals, AreFoundByNumberUnderTheirCurrentName) {
  EXPECT_STREQ(FindSignal(System::kGps, 16)->observation, "2W");
  EXPECT_STREQ(FindSignal(System::kBds, 150)->observation, "2I");
  EXPECT_EQ(FindSignal(System::kGalileo, 68)->band_slot, 3);
  EXPECT_EQ(FindSignal(System::kGps, 150), nullptr);
}

TEST(PublicSignals, AreFoundByObservationCode) {
  EXPECT_EQ(FindSignal(System::kGlonass, "2C")->signal, Signal::kGlonass2C);
  EXPECT_EQ(FindSignal(System::kBds, "1I")->signal, Signal::kBds2I);
  EXPECT_EQ(FindSignal(System::kBds, "1X")->signal, Signal::kBds1X);
  EXPECT_EQ(FindSignal(System::kQzss, "1CX"), nullptr);
  EXPECT_EQ(FindSignal(System::kQzss, ""), nullptr);
}

TEST(PublicVersion, IsThatOfTheLibrary) {
  char banner[128];
  GetGNSSQCLibVersion(banner);
  EXPECT_NE(std::strstr(banner, "V" ORSOLVA_VERSION_STRING "\n"), nullptr) << banner;
  const std::string parts = std::to_string(ORSOLVA_VERSION_MAJOR) + "." +
                            std::to_string(ORSOLVA_VERSION_MINOR) + "." +
                            std::to_string(ORSOLVA_VERSION_PATCH);
  EXPECT_EQ(parts, ORSOLVA_VERSION_STRING);
}

}  // namespace
}  // namespace orsolva
