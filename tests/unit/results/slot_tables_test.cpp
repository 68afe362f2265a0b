#include "results/slot_tables.h"

#include <gtest/gtest.h>

#include <map>

#include "toolkit/satellite.h"

namespace orsolva {
namespace {

using SlotByBand = std::map<int, int>;

SlotByBand Slots(int system, BdsGeneration generation) {
  SlotByBand slots;
  for (int band = 0; band <= 255; ++band) {
    const int slot = ChannelSlot(system, band, generation);
    if (slot != 0) slots[band] = slot;
  }
  return slots;
}

TEST(ChannelSlot, FollowsTheBandsOfEachSystem) {
  const auto any = BdsGeneration::kBoth;
  EXPECT_EQ(Slots(gnssqctoolkit::kGps, any), (SlotByBand{{1, 1}, {2, 2}, {5, 3}}));
  EXPECT_EQ(Slots(gnssqctoolkit::kGlonass, any), (SlotByBand{{1, 1}, {2, 2}}));
  EXPECT_EQ(Slots(gnssqctoolkit::kQzss, any), (SlotByBand{{1, 1}, {2, 2}, {5, 3}, {6, 4}}));
  EXPECT_TRUE(Slots(gnssqctoolkit::kSbas, any).empty());
  EXPECT_TRUE(Slots(gnssqctoolkit::kIrnss, any).empty());
}

TEST(ChannelSlot, HasGalileoBandsEightAndSevenTheOtherWayRoundThanTheSignalTables) {
  EXPECT_EQ(Slots(gnssqctoolkit::kGalileo, BdsGeneration::kBoth),
            (SlotByBand{{1, 1}, {5, 2}, {8, 3}, {7, 4}, {6, 5}}));
}

TEST(ChannelSlot, TellsTheBdsGenerationsApart) {
  EXPECT_EQ(Slots(gnssqctoolkit::kBds, BdsGeneration::kBds2), (SlotByBand{{21, 1}, {27, 2}, {6, 3}}));
  EXPECT_EQ(Slots(gnssqctoolkit::kBds, BdsGeneration::kBds3),
            (SlotByBand{{21, 1}, {5, 2}, {6, 3}, {1, 4}, {7, 5}, {8, 6}}));
  EXPECT_EQ(Slots(gnssqctoolkit::kBds, BdsGeneration::kBoth),
            (SlotByBand{{21, 1}, {27, 2}, {5, 2}, {6, 3}, {1, 4}, {7, 5}, {8, 6}}));
}

TEST(BdsGenerationOf, StartsTheThirdGenerationAtNumber18) {
  EXPECT_EQ(BdsGenerationOf(17), BdsGeneration::kBds2);
  EXPECT_EQ(BdsGenerationOf(18), BdsGeneration::kBds3);
}

}  // namespace
}  // namespace orsolva
