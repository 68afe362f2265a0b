// The check of a fuzz target: what does not hold ends the program, whatever the build type.
#ifndef ORSOLVA_FUZZ_REQUIRE_H
#define ORSOLVA_FUZZ_REQUIRE_H

#include <cstdio>
#include <cstdlib>

namespace orsolva_fuzz {

inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace orsolva_fuzz

#endif  // ORSOLVA_FUZZ_REQUIRE_H
