// Lengths of arcs with a memory that time does not grow: counts and sums in classes of 1 % width.
#ifndef ORSOLVA_ANALYSIS_FIGURES_ARC_LENGTHS_H
#define ORSOLVA_ANALYSIS_FIGURES_ARC_LENGTHS_H

#include <vector>

#include "host/analysis/analysis_result.h"

namespace orsolva_host::analysis {

/// The median is the mean length of the class that it falls in: within 1 % of the exact one, and exact while
/// no two lengths differ by less.
class ArcLengths {
 public:
  /// @param seconds  above 0
  void Add(double seconds);
  void Add(const ArcLengths& other);
  ArcFigures Figures() const;

 private:
  struct Class {
    int number;
    Count count;
    double sum_s;
  };

  void Put(const Class& more);
  double LengthAt(Count rank) const;

  std::vector<Class> classes_;  ///< by number; some 2,000 at most between a millisecond and a year
  Count count_ = 0;
  double longest_s_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_ARC_LENGTHS_H
