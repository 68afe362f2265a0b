// What holds of every run, whatever its records hold.
#ifndef ORSOLVA_TESTS_SUPPORT_RUN_LAWS_H
#define ORSOLVA_TESTS_SUPPORT_RUN_LAWS_H

#include <cstdint>
#include <cstring>

#include "tests/support/run.h"

namespace orsolva_test {

/// Whether a call gave one of the states there are.
inline bool IsAState(GNSSQC_STATE state) {
  std::int32_t value = 0;
  std::memcpy(&value, &state, sizeof value);
  return value == GNSSQC_OK || value == GNSSQC_NO_DATA || value == GNSSQC_NO_NAV ||
         value == GNSSQC_NO_POSITION || value == GNSSQC_INTERNAL_ERROR;
}

inline bool IsASystem(std::int32_t system) {
  return system == 0 || system == 1 || system == 2 || system == 4 || system == 8 || system == 16;
}

/// Counts of a satellite never exceed what was fed of it; `entries` bounds the latter.
inline bool CountsAreBounded(const qc_core_summary& summary, std::uint64_t entries) {
  return IsASystem(summary.system) && summary.observed_epochs <= entries && summary.slip_epochs <= entries &&
         summary.jump_epochs <= entries;
}

inline bool CountsAreBounded(const code_qc_block& block, std::uint64_t entries) {
  if (!IsASystem(block.system) || block.count < 0 || block.count > 8) return false;
  for (int i = 0; i < block.count; ++i) {
    const code_qc_entry& entry = block.entries[i];
    if (entry.snr_count > entries || entry.mp_count > entries || entry.observed_epochs > entries)
      return false;
    if (std::uint64_t{entry.snr_count_above30} + entry.snr_count_below30 > entries) return false;
  }
  return true;
}

/// The first law that the results of a run break, null when none.
/// @param epochs  epochs fed
inline const char* BrokenLaw(const Results& results, std::uint64_t epochs) {
  // An epoch may hold one code of a satellite in each of its 8 places.
  const std::uint64_t entries = epochs * 8;
  for (int system = 0; system < 6; ++system) {
    for (int number = 0; number < 64; ++number) {
      if (!CountsAreBounded(results.Whole->sat[system][number], entries)) {
        return "the counts of a satellite are bounded by what was fed";
      }
      if (!CountsAreBounded(results.Codes->sat[system][number], entries)) {
        return "the counts of a satellite's code are bounded by what was fed";
      }
    }
    if (results.Codes->sys[system].count < 0 || results.Codes->sys[system].count > 8) {
      return "a system has at most 8 codes";
    }
  }
  const double completeness = results.Whole->total.completeness;
  const bool plausible = results.Whole->lost_epochs >= 0 && completeness >= 0.0 && completeness <= 1.0;
  if (results.Plausible != plausible) return "a result is called plausible when it is";
  return nullptr;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_RUN_LAWS_H
