// Epoch times of the quality check: comparisons, the list of epochs, detection of the sampling interval.
#ifndef ORSOLVA_QC_BASE_EPOCH_TIME_H
#define ORSOLVA_QC_BASE_EPOCH_TIME_H

#include <cmath>
#include <cstdint>
#include <new>

#include "orsolva/records.h"
#include "toolkit/growth_buffer.h"
#include "toolkit/time.h"

namespace orsolva {

/// Epoch time of the quality check. The comparisons below take it as they take a Time_gbt.
class TimeQc : public Time_gbt {
 public:
  TimeQc() : Time_gbt{0, 0.0} {}
  TimeQc(const Time_gbt& t) : Time_gbt(t) {}  // NOLINT: converts both ways by design
  virtual ~TimeQc() = default;
};

/// Same whole second and fractions less than 1e-6 s apart.
inline bool TimeEqual(const Time_gbt& a, const Time_gbt& b) {
  return a.time == b.time && std::fabs(a.sec - b.sec) < 1e-6;
}
/// All zero: a time not yet known.
inline bool IsUnset(const Time_gbt& t) { return t.time == 0 && t.sec == 0.0; }
/// a after b, without tolerance.
bool TimeGreater(const Time_gbt& a, const Time_gbt& b);
bool TimeGreaterOrEqual(const Time_gbt& a, const Time_gbt& b);
/// Neither greater nor equal.
bool TimeLess(const Time_gbt& a, const Time_gbt& b);

inline gnssqctoolkit::AbsoluteTime ToAbsolute(const Time_gbt& t) { return {t.time, t.sec}; }
inline Time_gbt FromAbsolute(const gnssqctoolkit::AbsoluteTime& t) { return {t.Seconds, t.Fraction}; }

/// a - b in seconds, as of absolute times.
inline double TimeDifference(const Time_gbt& a, const Time_gbt& b) {
  return TimeDifference(ToAbsolute(a), ToAbsolute(b));
}

/// Times in the order they were appended. The reported capacity grows by 100, the memory geometrically.
class TimeList {
 public:
  TimeList() = default;
  TimeList(const TimeList& other) { CopyFrom(other); }
  TimeList& operator=(const TimeList& other);
  virtual ~TimeList() = default;

  int Size() const { return count_; }
  int Capacity() const { return capacity_; }
  /// @return false, with the list unchanged, when there is no memory
  bool Append(const Time_gbt& t);
  /// Append for callers that cannot go on without the time. @throws std::bad_alloc when there is no memory
  void Push(const Time_gbt& t) {
    if (!Append(t)) throw std::bad_alloc();
  }
  /// The time at i, all zero outside the list.
  Time_gbt Get(int i) const;
  /// Frees the array.
  void Clear();

  const Time_gbt* begin() const { return items_.Data(); }
  const Time_gbt* end() const { return items_.Data() + count_; }

 private:
  void CopyFrom(const TimeList& other);

  gnssqctoolkit::GrowthBuffer<Time_gbt> items_;
  int count_ = 0;
  int capacity_ = 0;
};

/// The interval of a batch whose configuration gives none.
///
/// Kept for compatibility: part of the library's contract, but not used by a run that comes through the
/// exported functions, where an interval of 0 means 1 s. A host detects the interval by a rule of its own.
///
/// It is the most frequent step between neighbours among the first 600 epochs, the smallest on a tie. Steps
/// below 1e-6 s (repeated epochs) and steps that are not finite do not count.
/// @return false, with `interval` unchanged, for fewer than two epochs or when no step is above 1e-6 s
bool DetectInterval(const ObsEpoch_QC_gbt* epochs, std::int32_t epoch_num, double& interval);

}  // namespace orsolva

#endif  // ORSOLVA_QC_BASE_EPOCH_TIME_H
