// A test program's own operator new, which fails on request. failing_memory.cpp holds the operators.
#ifndef ORSOLVA_TESTS_PROPERTY_FAILING_MEMORY_H
#define ORSOLVA_TESTS_PROPERTY_FAILING_MEMORY_H

#include <cstddef>
#include <limits>

namespace orsolva_test {

/// What the operators below do. The program has one thread while it is used.
struct FailingMemory {
  static constexpr long kNever = std::numeric_limits<long>::max();

  static inline long calls = 0;                ///< allocations since Arm
  static inline long first_bad = kNever;       ///< the first one to fail, 1-based
  static inline long last_bad = 0;             ///< the last one to fail
  static inline unsigned long long bytes = 0;  ///< allocated so far
  static inline long live = 0;                 ///< blocks allocated and not freed

  /// Lets allocations `from` to `to`, counted from here, fail.
  static void Arm(long from, long to) {
    calls = 0;
    first_bad = from;
    last_bad = to;
  }
  /// @return whether an allocation has failed since Arm
  static bool Disarm() {
    const bool failed = calls >= first_bad;
    first_bad = kNever;
    return failed;
  }

  /// Memory of malloc, or null when this allocation is to fail.
  static void* Take(std::size_t size) noexcept;
  static void Give(void* block) noexcept;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_PROPERTY_FAILING_MEMORY_H
