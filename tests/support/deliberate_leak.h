// The one-shot entry point never frees its handle: kept out of leak reports where it is meant.
#ifndef ORSOLVA_TESTS_SUPPORT_DELIBERATE_LEAK_H
#define ORSOLVA_TESTS_SUPPORT_DELIBERATE_LEAK_H

#if defined(__SANITIZE_ADDRESS__)
#define ORSOLVA_LEAKS_ARE_SEEN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORSOLVA_LEAKS_ARE_SEEN 1
#endif
#endif
#if defined(ORSOLVA_LEAKS_ARE_SEEN)
#include <sanitizer/lsan_interface.h>
#endif

namespace orsolva_test {

/// What is allocated while one of these lives is no leak to the address sanitizer.
class LeakIsDeliberate {
 public:
#if defined(ORSOLVA_LEAKS_ARE_SEEN)
  LeakIsDeliberate() { __lsan_disable(); }
  ~LeakIsDeliberate() { __lsan_enable(); }
#else
  LeakIsDeliberate() {}
#endif
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_DELIBERATE_LEAK_H
