#include "interface/record_layout.h"

#include <gtest/gtest.h>

// The layout itself is asserted at compile time by the header; what is left is what hosts compute from it.
namespace {

TEST(RecordLayout, TheLastUsedByteOfAConfigurationIs1739) {
  EXPECT_EQ(offsetof(config_qct, satellite_freq) + sizeof(config_qct::satellite_freq), 1740U);
  EXPECT_EQ(sizeof(config_qct), 1744U);
}

TEST(RecordLayout, EpochsAreContiguous) {
  const ObsEpoch_QC_gbt* epochs = nullptr;
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(epochs + 3), 3U * 21784U);
}

TEST(RecordLayout, HealthWordsStandWhereHostsWriteThem) {
  EXPECT_EQ(offsetof(GpsEph_gbt, svh), 208U);
  EXPECT_EQ(offsetof(GloEph_gbt, svh), 72U);
  EXPECT_EQ(offsetof(BdsEph_gbt, svh), 200U);
  EXPECT_EQ(offsetof(GalEph_gbt, svh), 200U);
}

TEST(RecordLayout, StatesHaveTheirValues) {
  EXPECT_EQ(GNSSQC_OK, 1);
  EXPECT_EQ(GNSSQC_NO_DATA, 0);
  EXPECT_EQ(GNSSQC_NO_NAV, -1);
  EXPECT_EQ(GNSSQC_NO_POSITION, -2);
  EXPECT_EQ(GNSSQC_INTERNAL_ERROR, -3);
}

}  // namespace
