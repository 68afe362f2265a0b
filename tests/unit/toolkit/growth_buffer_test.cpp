#include "toolkit/growth_buffer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

#include "tests/unit/toolkit/failing_memory.h"

namespace {
thread_local bool memory_fails = false;
}  // namespace

FailingMemory::FailingMemory() { memory_fails = true; }
FailingMemory::~FailingMemory() { memory_fails = false; }

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (memory_fails) return nullptr;
  try {
    return ::operator new[](size);
  } catch (...) {
    return nullptr;
  }
}

namespace gnssqctoolkit {
namespace {

TEST(GrowthBuffer, AtLeastDoublesWhenItGrows) {
  GrowthBuffer<int> buffer;
  ASSERT_TRUE(buffer.Reserve(20, 0));
  EXPECT_EQ(buffer.Slots(), 20);
  ASSERT_TRUE(buffer.Reserve(21, 20));
  EXPECT_EQ(buffer.Slots(), 40);
  ASSERT_TRUE(buffer.Reserve(100, 20));
  EXPECT_EQ(buffer.Slots(), 100);
  ASSERT_TRUE(buffer.Reserve(5, 20));
  EXPECT_EQ(buffer.Slots(), 100);
}

TEST(GrowthBuffer, KeepsTheUsedElementsAndZeroesTheRest) {
  GrowthBuffer<double> buffer;
  ASSERT_TRUE(buffer.Reserve(2, 0));
  buffer.Data()[0] = 1.5;
  buffer.Data()[1] = 2.5;
  ASSERT_TRUE(buffer.Reserve(8, 1));
  EXPECT_EQ(buffer.Data()[0], 1.5);
  for (int i = 1; i < 8; ++i) EXPECT_EQ(buffer.Data()[i], 0.0);
}

TEST(GrowthBuffer, FailedGrowthChangesNothing) {
  GrowthBuffer<int> buffer;
  ASSERT_TRUE(buffer.Reserve(3, 0));
  const int* data = buffer.Data();
  FailingMemory none;
  EXPECT_FALSE(buffer.Reserve(4, 3));
  EXPECT_EQ(buffer.Data(), data);
  EXPECT_EQ(buffer.Slots(), 3);
}

}  // namespace
}  // namespace gnssqctoolkit
