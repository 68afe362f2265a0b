// Makes the non-throwing array allocations of this test program fail for a while.
#ifndef ORSOLVA_TESTS_UNIT_TOOLKIT_FAILING_MEMORY_H
#define ORSOLVA_TESTS_UNIT_TOOLKIT_FAILING_MEMORY_H

/// While one lives, `new (std::nothrow) T[n]` gives null in this thread.
class FailingMemory {
 public:
  FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
  ~FailingMemory();
};

#endif  // ORSOLVA_TESTS_UNIT_TOOLKIT_FAILING_MEMORY_H
