// Expected epochs: at how many nominal epochs a satellite was above the elevation cut-off.
//
// The first epoch of a satellite counts only itself. Every later one closes the gap since the last: the
// nominal epochs last + k * interval, while they lie more than half an interval before the current one, and
// then the current one itself. Each counts when the satellite is above the cut-off then.
#ifndef ORSOLVA_QC_EXPECTED_EPOCHS_H
#define ORSOLVA_QC_EXPECTED_EPOCHS_H

#include <cstdint>

#include "orsolva/records.h"
#include "qc/elevations.h"
#include "toolkit/satellite.h"

namespace orsolva {

/// Nominal epochs strictly between two epochs, and how many of them are above the cut-off.
///
/// Up to kLiteralSteps nominal epochs are visited one by one, or where they are whole seconds all at once
/// that lie between two samples of the elevation on one side of the cut-off. In a longer gap the flag is
/// checked once per minute where broadcast records cover the satellite (every second close to the cut-off,
/// where a satellite may graze it) and at both ends of spans where none do; between two checks it changes at
/// most once, and the step at which it does is found by halving. So neither a tiny interval nor a gap of
/// years makes the count long. In a long gap the nominal epochs are last + k * interval in one product, which
/// differs from repeated addition by rounding only. Gaps count at most 2^52 nominal epochs.
///
/// Nominal epochs at which the satellite cannot have risen to the cut-off yet, because it does not move fast
/// enough, are not checked: they count nothing either way.
class NominalGap {
 public:
  static constexpr double kLiteralSteps = 256.0;

  NominalGap(const Time_gbt& last, const Time_gbt& current, double interval, QcEleList& elevations);
  virtual ~NominalGap() = default;

  std::uint64_t CountAboveCutoff() const;

 private:
  std::uint64_t CountOneByOne() const;
  bool IsWhole() const;
  std::uint64_t CountBetweenSamples() const;
  Time_gbt WholeNominal(std::int64_t k) const;
  std::uint64_t CountRuns() const;
  std::uint64_t CountRun(std::int64_t first, std::int64_t last) const;
  std::uint64_t CountMonotone(std::int64_t first, std::int64_t last) const;
  std::int64_t SurelyBelow(std::int64_t first) const;
  std::int64_t StepsBetweenChecks() const;
  std::int64_t RunEnd(std::int64_t first) const;
  Time_gbt Nominal(std::int64_t k) const;

  Time_gbt last_;
  Time_gbt current_;
  double interval_;
  QcEleList& elevations_;
  double gap_s_;
};

/// The last counted epoch of every satellite.
class ExpectedEpochs {
 public:
  virtual ~ExpectedEpochs() = default;

  /// Takes an epoch at which the satellite (number 1 to 208) has an elevation.
  ///
  /// @param sequence  number of the epoch in the run; an epoch that lists a satellite twice counts it once
  /// @param above     its cut-off flag at the epoch
  /// @return the expected epochs it adds
  std::uint64_t Advance(int number, const Time_gbt& epoch, std::uint32_t sequence, bool above,
                        double interval, QcEleList& elevations);

  /// Whether an epoch of the satellite was taken.
  bool Holds(int number) const { return last_[number - 1].Set; }

 private:
  struct LastCounted {
    Time_gbt Time{};
    std::uint32_t Sequence = 0;
    bool Set = false;
  };
  LastCounted last_[gnssqctoolkit::kMaxSatellites];
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_EXPECTED_EPOCHS_H
