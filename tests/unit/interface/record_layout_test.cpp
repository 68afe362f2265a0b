#include "interface/record_layout.h"

#include <gtest/gtest.h>

#include <vector>

// The layout itself is asserted at compile time by the header; what is left is what hosts compute from it.
namespace {

TEST(RecordLayout, TheLastUsedByteOfAConfigurationIs1739) {
  EXPECT_EQ(offsetof(config_qct, satellite_freq) + sizeof(config_qct::satellite_freq), 1740U);
  EXPECT_EQ(sizeof(config_qct), 1744U);
}

TEST(RecordLayout, EpochsAreContiguous) {
  const std::vector<ObsEpoch_QC_gbt> epochs(4);
  const auto* first = reinterpret_cast<const unsigned char*>(&epochs[0]);
  EXPECT_EQ(reinterpret_cast<const unsigned char*>(&epochs[3]) - first, 3 * 21784);
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
