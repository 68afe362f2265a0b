// The interval of a stream of epochs.
#ifndef ORSOLVA_ANALYSIS_FIGURES_INTERVAL_H
#define ORSOLVA_ANALYSIS_FIGURES_INTERVAL_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orsolva_host::analysis {

/// The most frequent step between epochs over the whole stream. Steps that differ by at most 2 % count as
/// one, and their mean is rounded to a millisecond (to a nanosecond below 10 ms), so that the time tags of a
/// receiver whose clock wanders give the nominal interval. Of two equally frequent steps the shorter one
/// counts. Where no step makes up a quarter of all (a file of holes), the hint counts if a quarter of the
/// steps are its whole multiples. The kMaxStepKinds most frequent kinds of steps are remembered.
class Interval {
 public:
  static constexpr std::size_t kMaxStepKinds = 32;

  /// @param hint_s  such as a header states; 0: none
  explicit Interval(double hint_s);

  void Add(std::int64_t step_ns);

  /// Nanoseconds; the hint before the first step, 0 where there is none.
  std::int64_t Nanoseconds() const { return interval_ns_; }

 private:
  struct Step {
    std::int64_t first_ns = 0;
    std::int64_t sum_off_ns = 0;  ///< of the differences from the first
    std::uint64_t count = 0;
  };
  std::int64_t Found() const;
  bool IsMultipleOfHint(const Step& step) const;

  std::int64_t hint_ns_;
  std::int64_t interval_ns_;
  std::uint64_t steps_ = 0;
  std::size_t last_ = 0;  ///< kind of the last step
  std::vector<Step> kinds_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_INTERVAL_H
