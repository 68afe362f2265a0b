#include "host/analysis/figures/receiver_mask.h"

#include <gtest/gtest.h>

#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {
namespace {

TEST(ReceiverMask, IsTheFirstPercentile) {
  ReceiverMask mask;
  for (int i = 0; i < 8500; ++i) mask.Add(5 + 0.01 * i + 0.0001);
  MaskFigures figures;
  mask.FillIn(figures);
  EXPECT_NEAR(figures.lowest_deg.value(), 5.85, 0.02);
}

TEST(ReceiverMask, AFewReflectionsDoNotMoveIt) {
  ReceiverMask mask;
  for (int i = 0; i < 10000; ++i) mask.Add(10.05 + 0.008 * i);
  for (int i = 0; i < 20; ++i) mask.Add(-3);
  mask.Add(kAbsent);
  MaskFigures figures;
  mask.FillIn(figures);
  EXPECT_NEAR(figures.lowest_deg.value(), 10.05 + 0.008 * 80, 0.1);
}

TEST(ReceiverMask, IsAbsentWithFewValues) {
  ReceiverMask mask;
  for (Count i = 1; i < ReceiverMask::kMinValues; ++i) mask.Add(20);
  MaskFigures figures;
  mask.FillIn(figures);
  EXPECT_FALSE(figures.lowest_deg);
  mask.Add(20);
  mask.FillIn(figures);
  EXPECT_NEAR(figures.lowest_deg.value(), 20, 0.1);
}

}  // namespace
}  // namespace orsolva_host::analysis
