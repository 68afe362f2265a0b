#include "toolkit/lists.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/unit/toolkit/failing_memory.h"

namespace gnssqctoolkit {
namespace {

IList Numbers(int count) {
  IList list;
  for (int i = 0; i < count; ++i) list.Append(i + 1);
  return list;
}

TEST(Lists, TwentyFirstAppendGrowsTheCapacityFrom20To40) {
  IList list;
  EXPECT_EQ(list.Capacity(), 0);
  EXPECT_EQ(list.Append(1), 1);
  EXPECT_EQ(list.Capacity(), 20);
  for (int i = 1; i < 20; ++i) list.Append(i);
  EXPECT_EQ(list.Capacity(), 20);
  list.Append(21);
  EXPECT_EQ(list.Capacity(), 40);
  EXPECT_EQ(list.Count(), 21);
}

TEST(Lists, CapacityIsCountRoundedUpToTheStep) {
  DList list;
  for (int i = 1; i <= 5000; ++i) {
    list.Append(i * 0.5);
    ASSERT_EQ(list.Capacity(), (i + 19) / 20 * 20);
  }
  for (int i = 0; i < 5000; ++i) ASSERT_EQ(list.At(i), (i + 1) * 0.5);
}

TEST(Lists, AppendsCostLinearTime) {
  // A copy of all elements every 20 appends would move 1e11 elements here and not end.
  IList list;
  for (int i = 0; i < 2000000; ++i) list.Append(i);
  EXPECT_EQ(list.Count(), 2000000);
  EXPECT_EQ(list.At(1999999), 1999999);
}

TEST(Lists, AccessOutsideIsZeroAndChangesNothing) {
  IList list = Numbers(3);
  for (int i : {-1, 3, 19, 1000}) {
    EXPECT_EQ(list.Element(i), 0);
    list.Element(i) = 77;
    EXPECT_EQ(list.Element(i), 0);
    EXPECT_EQ(list.At(i), 0);
  }
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(list.At(0), 1);
  EXPECT_EQ(list.At(2), 3);
}

TEST(Lists, ElementIsWritable) {
  DList list;
  list.Append(1.5);
  list.Element(0) = 2.5;
  EXPECT_EQ(list.At(0), 2.5);
}

TEST(Lists, NewSlotsHoldTheFiller) {
  IList list;
  list.Element(-1) = 9;
  list.Append(1);
  for (int i = 1; i < 20; ++i) EXPECT_EQ(list.Data()[i], 9);
}

TEST(Lists, RemoveShiftsTheLaterElementsDown) {
  IList list = Numbers(4);
  list.Element(-1) = 9;
  EXPECT_EQ(list.RemoveAt(1), 1);
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(list.At(0), 1);
  EXPECT_EQ(list.At(1), 3);
  EXPECT_EQ(list.At(2), 4);
  EXPECT_EQ(list.Data()[3], 9);
}

TEST(Lists, RemoveOfTheLastOnlyLowersTheCount) {
  IList list = Numbers(20);
  EXPECT_EQ(list.RemoveAt(19), 1);
  EXPECT_EQ(list.Count(), 19);
  EXPECT_EQ(list.Capacity(), 20);
  for (int i = 0; i < 19; ++i) EXPECT_EQ(list.At(i), i + 1);
}

TEST(Lists, RemoveOutsideDoesNothing) {
  IList list = Numbers(2);
  EXPECT_EQ(list.RemoveAt(-1), 0);
  EXPECT_EQ(list.RemoveAt(2), 0);
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(IList().RemoveAt(0), 0);
}

TEST(Lists, ClearKeepsTheArrayAndZeroesIt) {
  IList list = Numbers(25);
  const int* data = list.Data();
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 40);
  EXPECT_EQ(list.Data(), data);
  for (int i = 0; i < 40; ++i) EXPECT_EQ(data[i], 0);
  IList empty;
  empty.Clear();
  EXPECT_EQ(empty.Capacity(), 0);
}

TEST(Lists, ReleaseFreesTheArray) {
  IList list = Numbers(25);
  list.Release();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.Capacity(), 0);
  EXPECT_EQ(list.Data(), nullptr);
  EXPECT_EQ(list.Append(4), 1);
  EXPECT_EQ(list.Capacity(), 20);
}

TEST(Lists, CopyIsDeepAndKeepsTheLargerCapacity) {
  const IList source = Numbers(3);
  IList copy(source);
  copy.Element(0) = 50;
  EXPECT_EQ(source.At(0), 1);
  EXPECT_EQ(copy.Capacity(), 20);
  IList larger = Numbers(45);
  larger = source;
  EXPECT_EQ(larger.Count(), 3);
  EXPECT_EQ(larger.Capacity(), 60);
  EXPECT_EQ(larger.Data()[44], 0);
}

TEST(Lists, CopyTakesTheFillerLast) {
  IList source = Numbers(1);
  source.Element(-1) = 9;
  IList copy(source);
  EXPECT_EQ(copy.Data()[5], 0);
  for (int i = 1; i <= 20; ++i) copy.Append(i);
  EXPECT_EQ(copy.Data()[30], 9);
}

TEST(Lists, SelfAssignmentDoesNothing) {
  IList list = Numbers(22);
  list = *&list;
  EXPECT_EQ(list.Count(), 22);
  EXPECT_EQ(list.At(21), 22);
}

TEST(Lists, MoveTakesTheArray) {
  IList list = Numbers(22);
  IList moved(std::move(list));
  EXPECT_EQ(moved.Count(), 22);
  IList assigned;
  assigned = std::move(moved);
  EXPECT_EQ(assigned.At(21), 22);
}

TEST(Lists, PushAndCopyThrowWithoutMemory) {
  IList list, full;
  full.Push(7);
  EXPECT_EQ(full.Count(), 1);
  FailingMemory none;
  EXPECT_THROW(list.Push(7), std::bad_alloc);
  EXPECT_EQ(list.Count(), 0);
  EXPECT_THROW(IList copy(full), std::bad_alloc);
  EXPECT_THROW(list = full, std::bad_alloc);
}

TEST(Lists, FailedAppendLeavesTheListUnchanged) {
  IList list = Numbers(20);
  {
    FailingMemory none;
    EXPECT_EQ(list.Append(21), 0);
    EXPECT_EQ(IList().Append(1), 0);
  }
  EXPECT_EQ(list.Count(), 20);
  EXPECT_EQ(list.Capacity(), 20);
  EXPECT_EQ(list.At(19), 20);
  EXPECT_EQ(list.Append(21), 1);
  EXPECT_EQ(list.Capacity(), 40);
}

}  // namespace
}  // namespace gnssqctoolkit
