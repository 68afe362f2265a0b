// Reference times of the broadcast records of one satellite: which record is nearest to a time, for how long
// it stays so, and when records cover the satellite.
//
// All times are in the scale of the reference times. Each query is answered by bisection where the times
// are ordinary ones, and by a walk over all of them where a record or the time asked for is absurd; both
// answers have the same bits.
#ifndef ORSOLVA_NAVIGATION_EPHEMERIDES_REFERENCE_TIMES_H
#define ORSOLVA_NAVIGATION_EPHEMERIDES_REFERENCE_TIMES_H

#include <vector>

#include "toolkit/time.h"

namespace gnssqctoolkit {

/// Whether the fraction is small enough for differences to keep their parts of a second: a larger one would
/// swallow whole seconds.
bool HasPlainFraction(const AbsoluteTime& t);

class ReferenceTimes {
 public:
  virtual ~ReferenceTimes() = default;

  /// Adds the time of a record that arrives after all others.
  void Add(const AbsoluteTime& time);
  /// Forgets the one that arrived first.
  void DropFirst();
  void Clear();
  int Count() const { return static_cast<int>(times_.size()); }
  /// In the order of arrival.
  const AbsoluteTime& At(int i) const { return times_[static_cast<std::size_t>(i)]; }

  /// Index of the time nearest to t, of equally near ones the one that arrived last; -1 when none is within
  /// 1e9 s.
  /// @param lead_s  by how much the second nearest is further off, less a margin for rounding: the nearest
  ///                stays the nearest while t moves by less than half of it. 0 or less when not known.
  int Nearest(const AbsoluteTime& t, double& lead_s) const;

  /// For how long before and after t time i, nearest to t, certainly stays the nearest.
  /// @return false when nothing is certain
  bool NearestAround(const AbsoluteTime& t, int i, double& before_s, double& after_s) const;

  /// Intervals that times cover: from a maximum age before each to the age and `Widen` after it.
  struct Cover {
    double MaxAge = 0.0;         ///< s
    double Widen = 0.0;          ///< s
    bool CollapseTimes = false;  ///< beyond the calendar every time is the beginning of 1970
  };
  /// Nearest covered time in one direction, in seconds from t.
  /// @param direction  +1 later, -1 earlier
  /// @param offset_s   magnitude, 0 when t itself is covered
  bool NearestCovered(const AbsoluteTime& t, int direction, const Cover& cover, double& offset_s) const;

 private:
  bool Bisects(const AbsoluteTime& t) const;
  struct Smallest {
    bool Found = false;
    double Value = 0.0;
    void Take(double value) {
      if (!Found || value < Value) Value = value;
      Found = true;
    }
  };
  void SearchCovered(const AbsoluteTime& t, int direction, const Cover& cover, Smallest& nearest) const;
  void TakeCovered(const AbsoluteTime& t, int i, int direction, const Cover& cover, Smallest& nearest) const;

  std::vector<AbsoluteTime> times_;
  std::vector<int> ascending_;  // indices of the times
  int absurd_ = 0;              // times out of the ordinary
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_EPHEMERIDES_REFERENCE_TIMES_H
