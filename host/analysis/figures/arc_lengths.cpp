#include "host/analysis/figures/arc_lengths.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::analysis {
namespace {

constexpr double kLogOfClass = 0.00995033085316808;  // ln 1.01

}  // namespace

void ArcLengths::Add(double seconds) {
  if (!(seconds > 0)) return;
  Put({static_cast<int>(std::floor(std::log(seconds) / kLogOfClass)), 1, seconds});
  longest_s_ = std::max(longest_s_, seconds);
}

void ArcLengths::Add(const ArcLengths& other) {
  for (const Class& c : other.classes_) Put(c);
  longest_s_ = std::max(longest_s_, other.longest_s_);
}

void ArcLengths::Put(const Class& more) {
  count_ += more.count;
  const auto place = std::lower_bound(classes_.begin(), classes_.end(), more.number,
                                      [](const Class& c, int number) { return c.number < number; });
  if (place == classes_.end() || place->number != more.number) {
    classes_.insert(place, more);
    return;
  }
  place->count += more.count;
  place->sum_s += more.sum_s;
}

double ArcLengths::LengthAt(Count rank) const {
  for (const Class& c : classes_) {
    if (rank < c.count) return c.sum_s / static_cast<double>(c.count);
    rank -= c.count;
  }
  return longest_s_;
}

ArcFigures ArcLengths::Figures() const {
  ArcFigures figures;
  figures.arcs = count_;
  if (count_ == 0) return figures;
  figures.median_s = 0.5 * (LengthAt((count_ - 1) / 2) + LengthAt(count_ / 2));
  figures.longest_s = longest_s_;
  return figures;
}

}  // namespace orsolva_host::analysis
