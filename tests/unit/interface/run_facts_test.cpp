#include "orsolva/run_facts.h"

#include <gtest/gtest.h>

#include "tests/support/run.h"
#include "tests/support/sky.h"

namespace {

TEST(FactsOf, ANullHandleAreEmpty) {
  const orsolva::RunFacts facts = orsolva::FactsOf(nullptr);
  EXPECT_FALSE(facts.valid);
  EXPECT_TRUE(facts.satellites.empty());
  EXPECT_EQ(facts.averaging_window_epochs, 0);
}

TEST(FactsOf, AFreshHandleAreThoseOfARunWithoutEpochs) {
  const orsolva_test::Process process;
  const orsolva::RunFacts facts = orsolva::FactsOf(process.Handle());
  EXPECT_TRUE(facts.valid);
  EXPECT_EQ(facts.epochs, 0U);
  EXPECT_FALSE(facts.position_known);
  EXPECT_EQ(facts.satellites.size(), 35U + 32 + 64 + 37 + 10);
}

TEST(AveragingWindow, IsThatOfTheMeasures) {
  EXPECT_EQ(orsolva::AveragingWindow(1.0), 50);
  EXPECT_EQ(orsolva::AveragingWindow(5.0), 50);
  EXPECT_EQ(orsolva::AveragingWindow(7.0), 42);
  EXPECT_EQ(orsolva::AveragingWindow(30.0), 10);
  EXPECT_EQ(orsolva::AveragingWindow(31.0), 10);
}

}  // namespace
