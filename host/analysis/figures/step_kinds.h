// Kinds of steps between epochs: those that differ by at most 2 % are one.
#ifndef ORSOLVA_ANALYSIS_FIGURES_STEP_KINDS_H
#define ORSOLVA_ANALYSIS_FIGURES_STEP_KINDS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace orsolva_host::analysis {

class StepKinds {
 public:
  static constexpr std::size_t kMost = 16;

  /// The kind of a step, numbered as they come; with all kMost taken the one of the nearest length.
  std::size_t Of(std::int64_t step_ns) {
    if (IsAlike(step_ns, last_)) return last_;
    std::size_t nearest = 0;
    for (std::size_t kind = 0; kind < count_; ++kind) {
      if (IsAlike(step_ns, kind)) return last_ = kind;
      if (std::abs(step_ns - steps_ns_[kind]) < std::abs(step_ns - steps_ns_[nearest])) nearest = kind;
    }
    if (count_ == kMost) return last_ = nearest;
    steps_ns_[count_] = step_ns;
    return last_ = count_++;
  }

 private:
  bool IsAlike(std::int64_t step_ns, std::size_t kind) const {
    return kind < count_ && std::abs(step_ns - steps_ns_[kind]) <= steps_ns_[kind] / 50;
  }

  std::array<std::int64_t, kMost> steps_ns_ = {};
  std::size_t count_ = 0;
  std::size_t last_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_STEP_KINDS_H
