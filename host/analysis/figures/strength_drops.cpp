#include "host/analysis/figures/strength_drops.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orsolva_host::analysis {
namespace {

/// The value with a part of the others below it, rounded down to a rank.
double QuantileOf(std::vector<double>& values, std::size_t part, std::size_t of) {
  const auto place = values.begin() + static_cast<std::ptrdiff_t>((values.size() - 1) * part / of);
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

/// The first and the last number of all windows; the last is one less where there are none.
std::pair<std::int32_t, std::int32_t> NumbersOf(const std::vector<std::vector<StrengthWindow>>& windows) {
  std::int32_t first = 0, last = -1;
  for (const std::vector<StrengthWindow>& own : windows) {
    if (own.empty()) continue;
    first = last < first ? own.front().number : std::min(first, own.front().number);
    last = std::max(last, own.back().number);
  }
  return {first, last};
}

/// Windows in a row as a drop.
class Run {
 public:
  void Add(std::int32_t number, double db) {
    if (windows_++ == 0) first_ = number;
    last_ = number;
    sum_db_ += db;
    lowest_db_ = std::min(lowest_db_, db);
  }
  std::int32_t First() const { return first_; }
  std::int32_t Last() const { return last_; }
  bool Empty() const { return windows_ == 0; }
  std::int32_t Length() const { return Empty() ? 0 : last_ - first_ + 1; }
  double Mean() const { return sum_db_ / windows_; }
  StrengthDrop AsDrop() const {
    StrengthDrop drop;
    drop.from_ns = first_ * kStrengthWindow_ns;
    drop.to_ns = (last_ + std::int64_t{1}) * kStrengthWindow_ns;
    drop.mean_drop_db = -Mean();
    drop.largest_drop_db = -lowest_db_;
    return drop;
  }

 private:
  int windows_ = 0;
  std::int32_t first_ = 0, last_ = 0;
  double sum_db_ = 0;
  double lowest_db_ = 0;
};

}  // namespace

double StrengthCurve::At(double elevation_deg) const {
  const double place = std::clamp(elevation_deg / kElevationBin_deg - 0.5, 0.0, kElevationBins - 1.0);
  const auto low = static_cast<std::size_t>(place);
  const std::size_t high = std::min(low + 1, kElevationBins - 1);
  const double part = place - static_cast<double>(low);
  if (std::isnan(bins_dbhz_[high])) return bins_dbhz_[low];
  if (std::isnan(bins_dbhz_[low])) return bins_dbhz_[high];
  return bins_dbhz_[low] + part * (bins_dbhz_[high] - bins_dbhz_[low]);
}

StrengthDrops::StrengthDrops(const SignalRoster& roster, const std::vector<StrengthCurves>& curves,
                             const std::vector<std::vector<StrengthWindow>>& windows)
    : roster_(&roster),
      residuals_(windows.size()),
      own_(windows.size()),
      common_(curves.size()),
      is_common_(curves.size()) {
  for (std::size_t shared = 0; shared < curves.size(); ++shared) FindCommon(shared, curves[shared], windows);
  for (std::size_t i = 0; i < windows.size(); ++i)
    FindOwn(i, curves[roster.Signals()[i].shared].means, windows[i]);
}

StrengthDrops::Residuals StrengthDrops::ResidualsOf(const StrengthCurve& curve,
                                                    const std::vector<StrengthWindow>& windows) {
  Residuals residuals;
  residuals.reserve(windows.size());
  for (const StrengthWindow& window : windows) {
    const double usual = curve.At(window.elevation_deg);
    if (!std::isnan(usual))
      residuals.push_back({window.number, window.mean_dbhz - usual, window.elevation_deg});
  }
  return residuals;
}

void StrengthDrops::FindCommon(std::size_t shared, const StrengthCurves& curves,
                               const std::vector<std::vector<StrengthWindow>>& windows) {
  const auto [first, last] = NumbersOf(windows);
  std::vector<std::vector<double>> by_window(static_cast<std::size_t>(last - first + 1));
  std::vector<std::vector<double>> in_spreads(by_window.size());
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (roster_->Signals()[i].shared != shared) continue;
    for (const Residual& residual : ResidualsOf(curves.medians, windows[i])) {
      if (residual.elevation_deg < kMinSystemElevation_deg) continue;
      const auto place = static_cast<std::size_t>(residual.number - first);
      by_window[place].push_back(residual.db);
      in_spreads[place].push_back(residual.db / curves.spreads.At(residual.elevation_deg));
    }
  }
  for (std::size_t i = 0; i < by_window.size(); ++i) {
    std::vector<double>& values = by_window[i];
    if (values.size() < kMinSatellites) continue;
    const std::int32_t number = first + static_cast<std::int32_t>(i);
    const auto low = std::count_if(values.begin(), values.end(), [](double db) { return db <= -kSlight_db; });
    const double median = QuantileOf(values, 1, 2);
    common_[shared].push_back({number, median, kAbsent});
    is_common_[shared].push_back(median <= -kDrop_db && QuantileOf(in_spreads[i], 1, 2) <= -kDrop_spreads &&
                                 5 * low >= 4 * static_cast<std::ptrdiff_t>(values.size()));
  }
}

bool StrengthDrops::IsCommon(std::size_t shared, std::int32_t number) const {
  const Residuals& common = common_[shared];
  const auto place =
      std::lower_bound(common.begin(), common.end(), number,
                       [](const Residual& other, std::int32_t wanted) { return other.number < wanted; });
  return place != common.end() && place->number == number &&
         is_common_[shared][static_cast<std::size_t>(place - common.begin())] != 0;
}

void StrengthDrops::FindOwn(std::size_t signal, const StrengthCurve& means,
                            const std::vector<StrengthWindow>& windows) {
  const std::size_t shared = roster_->Signals()[signal].shared;
  Residuals residuals = ResidualsOf(means, windows);
  residuals.erase(std::remove_if(residuals.begin(), residuals.end(),
                                 [&](const Residual& r) { return IsCommon(shared, r.number); }),
                  residuals.end());
  residuals_[signal] = std::move(residuals);
}

/// The own curve lies between the least and the greatest residual: where these are nearer than a drop is deep
/// (less a hundredth for rounding), there is none.
bool StrengthDrops::MayDrop(const Residuals& residuals) {
  const auto lower = [](const Residual& a, const Residual& b) { return a.db < b.db; };
  const auto [least, greatest] = std::minmax_element(residuals.begin(), residuals.end(), lower);
  return least != residuals.end() && greatest->db - least->db > 0.99 * kDrop_db;
}

const StrengthDrops::Residuals& StrengthDrops::OwnOf(std::size_t signal) const {
  std::optional<Residuals>& own = own_[signal];
  if (!own) own = AgainstOwnCurve(residuals_[signal]);
  return *own;
}

StrengthDrops::Residuals StrengthDrops::AgainstOwnCurve(Residuals residuals) {
  std::sort(residuals.begin(), residuals.end(),
            [](const Residual& a, const Residual& b) { return a.elevation_deg < b.elevation_deg; });
  Residuals own;
  std::vector<double> near_db;
  std::size_t first = 0, end = 0;
  for (const Residual& residual : residuals) {
    while (residuals[first].elevation_deg < residual.elevation_deg - kNear_deg) ++first;
    while (end < residuals.size() && residuals[end].elevation_deg <= residual.elevation_deg + kNear_deg)
      ++end;
    if (end - first < kMinNearWindows) continue;
    near_db.clear();
    for (std::size_t i = first; i < end; ++i) near_db.push_back(residuals[i].db);
    own.push_back({residual.number, residual.db - QuantileOf(near_db, 3, 4), residual.elevation_deg});
  }
  std::sort(own.begin(), own.end(), [](const Residual& a, const Residual& b) { return a.number < b.number; });
  return own;
}

std::optional<double> StrengthDrops::MeanOver(const Residuals& residuals, std::int32_t first,
                                              std::int32_t last) {
  double sum = 0;
  int count = 0;
  for (const Residual& residual : residuals) {
    if (residual.number < first || residual.number > last) continue;
    sum += residual.db;
    ++count;
  }
  if (count == 0) return std::nullopt;
  return sum / count;
}

std::vector<StrengthDrop> StrengthDrops::OfSystem(std::size_t shared) const {
  std::vector<StrengthDrop> drops;
  const SharedSignal& signal = roster_->SharedSignals()[shared];
  const auto finish = [&](Run& run) {
    if (!run.Empty()) {
      drops.push_back(run.AsDrop());
      for (std::size_t i = 0; i < common_.size(); ++i) {
        const SharedSignal& other = roster_->SharedSignals()[i];
        if (other.system != signal.system || other.code.band == signal.code.band) continue;
        const auto mean = MeanOver(common_[i], run.First(), run.Last());
        if (mean) drops.back().other_bands = drops.back().other_bands.value_or(true) && *mean <= -kSlight_db;
      }
    }
    run = Run();
  };
  Run run;
  for (std::size_t i = 0; i < common_[shared].size(); ++i) {
    const Residual& median = common_[shared][i];
    if (!run.Empty() && median.number > run.Last() + 2) finish(run);
    if (is_common_[shared][i]) run.Add(median.number, median.db);
  }
  finish(run);
  return drops;
}

std::vector<StrengthDrop> StrengthDrops::OfSatellite(std::size_t signal) const {
  std::vector<StrengthDrop> drops;
  const ListedSignal& own = roster_->Signals()[signal];
  const auto finish = [&](Run& run) {
    if (run.Length() >= kMinWindows && run.Mean() <= -kDrop_db) {
      drops.push_back(run.AsDrop());
      for (std::size_t i = 0; i < residuals_.size(); ++i) {
        const ListedSignal& other = roster_->Signals()[i];
        if (other.satellite != own.satellite || other.code.band == own.code.band) continue;
        const auto mean = MeanOver(OwnOf(i), run.First(), run.Last());
        if (mean) drops.back().other_bands = drops.back().other_bands.value_or(true) && *mean <= -kSlight_db;
      }
    }
    run = Run();
  };
  if (!MayDrop(residuals_[signal])) return drops;
  Run run;
  for (const Residual& residual : OwnOf(signal)) {
    if (!run.Empty() && residual.number > run.Last() + 2) finish(run);
    if (residual.db <= -kSlight_db) run.Add(residual.number, residual.db);
  }
  finish(run);
  return drops;
}

}  // namespace orsolva_host::analysis
