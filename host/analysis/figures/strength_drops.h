// Times during which signals were weaker than they are at such elevations, in windows of five minutes.
//
// The residual of a window is its mean strength less a curve of the signal: a value for each 5-degree bin of
// elevation over all satellites of the system and the whole stream, interpolated between the middles of the
// bins. For systems it is the median of the bin, which a drop does not move; for single satellites the mean,
// whose slope is smooth also where satellites of different power make two heaps.
//
// A drop of a system's signal: the median of the residuals of at least kMinSatellites satellites from
// kMinSystemElevation_deg up is at or below -kDrop_db and at or below -kDrop_spreads times the spread of the
// signal there (median less 16th percentile: large where satellites of different power make two heaps, as in
// codeless tracking), and four fifths of them are at or below -kSlight_db. One window is enough: interference
// or a failing antenna hits all satellites at once.
//
// A drop of one satellite's signal: against its own curve, which is the upper quartile of its residuals
// within kNear_deg of elevation (at least kMinNearWindows windows; satellites differ in power, and codeless
// tracking in slope), it stays at or below -kSlight_db for kMinWindows windows with a mean at or below
// -kDrop_db; single windows above that do not end it. Windows in which the system drops are left out. An
// obstruction does this, or a satellite that changes its power, as GPS satellites do to their P(Y) codes
// (flex power).
//
// What is hidden: a drop of a satellite over more than three quarters of its windows at such elevations, and
// one of a system over more than half of the stream.
//
// Times are those of the windows. A drop has the other bands with it when each of them that was observed at
// the time was lower than usual by kSlight_db in the mean. No standard defines such a figure; the thresholds
// are those at which quiet stations show none.
#ifndef ORSOLVA_ANALYSIS_FIGURES_STRENGTH_DROPS_H
#define ORSOLVA_ANALYSIS_FIGURES_STRENGTH_DROPS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/strength_histogram.h"

namespace orsolva_host::analysis {

constexpr std::size_t kElevationBins = 18;  // of 5 degrees
constexpr int kElevationBin_deg = 5;
constexpr std::int64_t kStrengthWindow_ns = 300 * kNanosecondsPerSecond;

/// Mean over a window of five minutes, whose number counts from 1970.
struct StrengthWindow {
  std::int32_t number = 0;
  float mean_dbhz = 0;
  float elevation_deg = 0;
};

/// What strength a signal usually has at an elevation.
class StrengthCurve {
 public:
  using Bins = std::array<double, kElevationBins>;

  /// @param bins_dbhz  NaN where too few values were there
  explicit StrengthCurve(const Bins& bins_dbhz) : bins_dbhz_(bins_dbhz) {}
  /// NaN where no bin is near.
  double At(double elevation_deg) const;

 private:
  Bins bins_dbhz_;
};

/// The curves of one signal of a system.
struct StrengthCurves {
  StrengthCurve medians;
  StrengthCurve means;
  StrengthCurve spreads;  ///< median less 16th percentile, dB, above zero
};

/// Finds the drops of all signals of a roster.
class StrengthDrops {
 public:
  static constexpr double kDrop_db = 4;
  static constexpr double kSlight_db = 2;
  static constexpr std::size_t kMinSatellites = 4;
  static constexpr double kMinSystemElevation_deg = 10;
  static constexpr double kDrop_spreads = 2;
  static constexpr std::int32_t kMinWindows = 12;  // an hour
  static constexpr double kNear_deg = 5;
  static constexpr std::size_t kMinNearWindows = 6;

  /// @param curves   of each shared signal
  /// @param windows  of each signal, by time
  StrengthDrops(const SignalRoster& roster, const std::vector<StrengthCurves>& curves,
                const std::vector<std::vector<StrengthWindow>>& windows);

  /// Of a shared signal, and of a signal, of the roster.
  std::vector<StrengthDrop> OfSystem(std::size_t shared) const;
  std::vector<StrengthDrop> OfSatellite(std::size_t signal) const;

 private:
  struct Residual {
    std::int32_t number = 0;
    double db = 0;
    double elevation_deg = kAbsent;
  };
  using Residuals = std::vector<Residual>;

  static Residuals ResidualsOf(const StrengthCurve& curve, const std::vector<StrengthWindow>& windows);
  void FindCommon(std::size_t shared, const StrengthCurves& curves,
                  const std::vector<std::vector<StrengthWindow>>& windows);
  void FindOwn(std::size_t signal, const StrengthCurve& means, const std::vector<StrengthWindow>& windows);
  bool IsCommon(std::size_t shared, std::int32_t number) const;
  static bool MayDrop(const Residuals& residuals);
  const Residuals& OwnOf(std::size_t signal) const;
  static Residuals AgainstOwnCurve(Residuals residuals);
  static std::optional<double> MeanOver(const Residuals& residuals, std::int32_t first, std::int32_t last);

  const SignalRoster* roster_;
  std::vector<Residuals> residuals_;                   ///< of each signal against the curve of all satellites
  mutable std::vector<std::optional<Residuals>> own_;  ///< against its own, made where it is asked for
  std::vector<Residuals> common_;                      ///< of each shared signal: medians over its satellites
  std::vector<std::vector<char>> is_common_;           ///< whether a window of common_ is a drop
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_STRENGTH_DROPS_H
