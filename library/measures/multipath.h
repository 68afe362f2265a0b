// Dual-frequency code multipath of one satellite and code pair.
// Notation: f carrier frequency (Hz), P code range (m), L carrier phase (cycles), lambda wavelength (m).
#ifndef ORSOLVA_MEASURES_MULTIPATH_H
#define ORSOLVA_MEASURES_MULTIPATH_H

#include <cstdint>

#include "measures/channel_combinations.h"
#include "measures/pair_signals.h"
#include "orsolva/detail.h"
#include "qc/base/epoch_data.h"
#include "qc/base/epoch_time.h"
#include "toolkit/time.h"

namespace orsolva {

/// Averaging window of intervals up to 5 s, epochs.
inline constexpr int kDefaultMpWindow = 50;
/// Longest averaging window, epochs: 300 s of epochs a little more than 5 s apart.
inline constexpr int kMaxMpWindow = 59;

/// The last values of a series, oldest first, at most kMaxMpWindow of them.
class MovingWindow {
 public:
  virtual ~MovingWindow() = default;

  /// Appends a value; a window that holds `length` values drops its oldest first.
  void Push(double value, int length);
  /// Drops the oldest value of a window that holds `length` values.
  void MakeRoom(int length);
  /// Sum from oldest to newest over the count; 0 when empty. Summed again each time, so that no rounding is
  /// carried on.
  double Mean() const;
  /// Overwrites every value, keeping their number.
  void Fill(double value);
  /// Overwrites the newest value, if there is one.
  void SetNewest(double value);

  int Count() const { return count_; }
  /// Value i, 0 the oldest; i must be below Count().
  double At(int i) const { return values_[start_ + i]; }
  /// The values one after the other.
  const double* Oldest() const { return values_ + start_; }

 private:
  // Twice the room: the window slides up the array and is moved back only when it reaches the end.
  double values_[2 * kMaxMpWindow] = {};
  int start_ = 0;
  int count_ = 0;
};

/// Sums of two windows, each from oldest to newest, starting at 0.
struct WindowSums {
  double First = 0.0;
  double Second = 0.0;
};
/// Summed side by side: each sum is a chain of additions that wait for one another, two chains overlap.
WindowSums SumBoth(const MovingWindow& first, const MovingWindow& second);

/// Averaging state and accumulated residuals of one satellite and code pair.
class AbsoluteMp {
 public:
  virtual ~AbsoluteMp() = default;

  gnssqctoolkit::AbsoluteTime LastEpoch;  ///< last epoch that produced a value; zero before the first
  TimeList RestartTimes;                  ///< restarts by a jump or slip while counting
  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
  double SumOfSquares = 0.0;  ///< m^2
  std::int64_t Count = 0;
  int WindowLength = kDefaultMpWindow;  ///< epochs
  MovingWindow Values;                  ///< last raw values, m
  MovingWindow Residuals;               ///< last residuals, m
};

/// Results of one satellite: per band slot up to ten pairs in ascending (code, partner) order.
class SatMp {
 public:
  virtual ~SatMp() = default;

  std::uint8_t Count[kBandSlots] = {};
  const AbsoluteMp* Pairs[kBandSlots][kPairsPerBand] = {};
};

/// C0 P + C1 L_a lambda_a + C2 L_b lambda_b, metres.
double MpValue(double pseudorange, double phase_a, double phase_b, double lambda_a, double lambda_b,
               const MpCoefficientSet& coefficients);

/// What one epoch gave, for the detail observer.
struct MultipathStep {
  bool HasValue = false;
  double Value = 0.0;     ///< m
  double Residual = 0.0;  ///< m
  RestartReason Restart = RestartReason::kNone;
};

/// One epoch of one pair.
/// @param slip      the geometry-free test found a slip in this epoch
/// @param counting  above the elevation cut-off: the residual enters the sum, a restart its list
/// @param step      may be null
/// @return whether the averaging was restarted
bool UpdateMultipath(AbsoluteMp& state, const PairSignals& signals, const gnssqctoolkit::AbsoluteTime& epoch,
                     const CodeObservation& code, const CodeObservation& partner, bool slip, bool counting,
                     MultipathStep* step);

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_MULTIPATH_H
