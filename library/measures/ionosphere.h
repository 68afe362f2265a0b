// Ionospheric delay changes and cycle slips of one satellite and code pair.
// Notation: L carrier phase (cycles), P code range (m), lambda wavelength (m), rho satellite range (m).
#ifndef ORSOLVA_MEASURES_IONOSPHERE_H
#define ORSOLVA_MEASURES_IONOSPHERE_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "measures/multipath.h"
#include "measures/pair_signals.h"
#include "navigation/ephemerides/ephemeris.h"
#include "orsolva/detail.h"
#include "qc/base/epoch_time.h"
#include "toolkit/time.h"

namespace orsolva {

/// Ionospheric rate beyond which the geometry-free test flags a change, cm per minute.
inline constexpr double kIonosphereRate = 400.0;
/// The threshold of the geometry-free test is at least this, m.
inline constexpr double kLeastGeometryFreeThreshold = 0.026;
/// A longer gap is flagged by the geometry-free test whatever the change, s.
inline constexpr double kLongestGeometryFreeGap = 242.0;
/// A longer gap counts a phase-minus-geometry slip whatever the change, s.
inline constexpr double kSlipGap = 60.0;

/// Threshold of the phase-minus-geometry test for gaps above those of the row before and up to its own.
struct SlipThresholdRow {
  double LongestGap;  ///< s
  double Threshold;   ///< m
};
inline constexpr SlipThresholdRow kSlipThresholds[] = {
    {1.0, 0.05}, {15.0, 0.1}, {30.0, 0.15}, {60.0, 0.3}, {std::numeric_limits<double>::infinity(), 0.05},
};

class IodDetect {
 public:
  virtual ~IodDetect() = default;

  TimeList SlipTimes;  ///< epochs at which the phase-minus-geometry test found a slip
  std::uint32_t SlipCount = 0;
  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
  gnssqctoolkit::AbsoluteTime GeometryFreeEpoch;
  double GeometryFree = 0.0;  ///< m
  gnssqctoolkit::AbsoluteTime CurrentEpoch;
  gnssqctoolkit::AbsoluteTime PreviousEpoch;   ///< zero when none
  gnssqctoolkit::AbsoluteTime EphemerisEpoch;  ///< reference of the record behind the stored value
  double LastPseudorange = 0.0;                ///< m
  double LastPhase = 0.0;                      ///< cycles
  double PhaseMinusGeometry = 0.0;             ///< m
  double Difference = 0.0;                     ///< m
  bool SlipFlag = false;
  double WideLaneMean = 0.0;      ///< cycles
  double WideLaneVariance = 0.0;  ///< cycles^2
  std::int32_t WideLaneCount = 0;
  std::int32_t LongestArcCount = 0;
  double LongestArcVariance = 0.0;

  /// The statistic the results report: variance of the longest wide-lane arc, the open one counted in when it
  /// is at least as long as the longest closed one.
  double IonosphereStatistic() const {
    return WideLaneCount >= LongestArcCount ? WideLaneVariance : LongestArcVariance;
  }
};

/// Results of one satellite: per band slot up to ten pairs in ascending (code, partner) order.
class SatIodDetect {
 public:
  virtual ~SatIodDetect() = default;

  std::uint8_t Count[kBandSlots] = {};
  const IodDetect* Pairs[kBandSlots][kPairsPerBand] = {};
};

/// Phase of one carrier.
struct CarrierPhase {
  double Phase = 0.0;       ///< cycles
  double Wavelength = 0.0;  ///< m
};

/// What the geometry-free test of one epoch gave, for the detail observer.
struct GeometryFreeStep {
  bool HasStep = false;
  double Step = 0.0;       ///< m
  double Threshold = 0.0;  ///< m
  IonosphereSlipReason Slip = IonosphereSlipReason::kNone;
};

/// Ionospheric-rate test on the geometry-free phase combination L2 lambda2 - L1 lambda1 of an epoch.
///
/// Does nothing unless both phases and wavelengths are present.
/// @param step  may be null
/// @return whether a slip was found
/// Source: Blewitt 1990, GRL 17(3), for the combination.
bool IonosphereSlip(const gnssqctoolkit::AbsoluteTime& epoch, const CarrierPhase& first,
                    const CarrierPhase& second, bool counting, IodDetect& state, GeometryFreeStep* step);

/// The satellite of an epoch as the phase-minus-geometry test sees it.
struct SatelliteGeometry {
  const gnssqctoolkit::Ephemeris* Records = nullptr;
  gnssqctoolkit::EphemerisChoice Choice;  ///< record selected for the epoch, empty when there is none
  bool HasPosition = false;
  gnssqctoolkit::SatelliteState Satellite;
  double Station[3] = {0.0, 0.0, 0.0};  ///< ECEF, m
};

/// Forms lambda L - rho + c dt_s and its change since the value before it.
///
/// With another record than the one behind the stored value, that value is formed again first, with the
/// record now in use.
/// @param new_record  set when the stored value was formed again; may be null
/// @return whether a change was formed
bool PhaseGeometryDifference(const gnssqctoolkit::AbsoluteTime& epoch, const CodeObservation& observation,
                             double wavelength, const SatelliteGeometry& geometry, IodDetect& state,
                             bool* new_record);

/// Change beyond which a slip is counted, by the time between the values, metres.
double SlipThreshold(double gap);

/// Melbourne-Wuebbena combination in cycles; 0 when an input has magnitude 1e-16 or less.
double WideLane(double p_a, double p_b, double l_a, double l_b, double lambda_a, double lambda_b);

/// Common-mode phase change of the last epochs: those not older than the longest gap that is tested.
class EpochMedians {
 public:
  virtual ~EpochMedians() = default;

  /// Adds the change of an epoch and drops what no later test can reach.
  void Store(const gnssqctoolkit::AbsoluteTime& epoch, double median);

  /// `start` plus the changes of the epochs previous + interval, previous + 2 interval, ... before `current`,
  /// added in that order. Epochs count when they lie on such a step within kTimeTolerance.
  double AddBetween(double start, const gnssqctoolkit::AbsoluteTime& previous,
                    const gnssqctoolkit::AbsoluteTime& current, double interval) const;

  std::size_t Size() const { return entries_.size() - head_; }
  void Clear();

 private:
  struct Entry {
    gnssqctoolkit::AbsoluteTime Epoch;
    double Median;
  };
  std::vector<Entry>::const_iterator FirstAfter(const gnssqctoolkit::AbsoluteTime& t) const;

  std::vector<Entry> entries_;  // ascending; those before head_ are dropped
  std::size_t head_ = 0;
};

/// Element n/2 of the ascending differences, the upper middle for even n. Reorders them.
/// @return false when there are none
bool EpochMedian(std::vector<double>& differences, double& median);

/// What the counting of one epoch gave, for the detail observer.
struct SlipStep {
  bool Tested = false;
  double Excess = 0.0;     ///< change less the common one, m
  double Threshold = 0.0;  ///< m
  GeometrySlipReason Slip = GeometrySlipReason::kNone;
};

/// Compares the change of a pair with the common one and counts a slip.
/// @param median      common change of this epoch, 0 when none
/// @param new_record  the stored value was formed again in this epoch
/// @param step        may be null
void CountSlip(IodDetect& state, bool counting, const EpochMedians& medians, double median, double interval,
               bool new_record, SlipStep* step);

/// Updates the running mean and variance of the wide-lane arc; a slip in the epoch starts a new arc.
void UpdateWideLane(IodDetect& state, double wide_lane);

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_IONOSPHERE_H
