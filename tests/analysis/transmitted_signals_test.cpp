#include "host/analysis/figures/transmitted_signals.h"

#include <gtest/gtest.h>

namespace orsolva_host::analysis {
namespace {

using Codes = std::vector<SignalCode>;

TEST(TransmittedSignals, OfGpsFollowFromTheNewestSignal) {
  const Codes iir = {{'1', 'C'}, {'2', 'W'}};
  const Codes iif = {{'1', 'C'}, {'5', 'Q'}};
  const Codes three = {{'1', 'L'}};
  EXPECT_TRUE(MustTransmit('G', {{'2', 'W'}}, {'1', 'C'}));
  EXPECT_FALSE(MustTransmit('G', iir, {'2', 'L'}));
  EXPECT_FALSE(MustTransmit('G', iir, {'5', 'Q'}));
  EXPECT_TRUE(MustTransmit('G', iif, {'2', 'L'}));
  EXPECT_FALSE(MustTransmit('G', iif, {'1', 'L'}));
  EXPECT_TRUE(MustTransmit('G', three, {'5', 'X'}));
  EXPECT_TRUE(MustTransmit('G', three, {'2', 'S'}));
  EXPECT_FALSE(MustTransmit('G', three, {'1', 'M'})) << "a military code";
}

TEST(TransmittedSignals, OfGalileoFollowFromTwoBands) {
  EXPECT_FALSE(MustTransmit('E', {{'1', 'C'}}, {'5', 'Q'})) << "E20 has E1 alone";
  EXPECT_TRUE(MustTransmit('E', {{'1', 'C'}, {'7', 'Q'}}, {'6', 'C'}));
  EXPECT_FALSE(MustTransmit('E', {{'1', 'C'}, {'7', 'Q'}}, {'6', 'A'})) << "a restricted code";
}

TEST(TransmittedSignals, OfBdsFollowFromTheGeneration) {
  const Codes second = {{'2', 'I'}, {'7', 'I'}};
  const Codes third = {{'2', 'I'}, {'1', 'P'}};
  EXPECT_TRUE(MustTransmit('C', second, {'6', 'I'}));
  EXPECT_FALSE(MustTransmit('C', second, {'5', 'P'}));
  EXPECT_TRUE(MustTransmit('C', third, {'5', 'P'}));
  EXPECT_TRUE(MustTransmit('C', third, {'7', 'D'}));
  EXPECT_FALSE(MustTransmit('C', third, {'7', 'I'})) << "B2I is of BDS-2";
}

TEST(TransmittedSignals, NothingFollowsElsewhere) {
  EXPECT_FALSE(MustTransmit('R', {{'1', 'C'}, {'1', 'P'}}, {'2', 'C'}));
  EXPECT_FALSE(MustTransmit('J', {{'1', 'C'}}, {'2', 'L'}));
  EXPECT_FALSE(MustTransmit('G', {}, {'1', 'C'}));
}

}  // namespace
}  // namespace orsolva_host::analysis
