// Single point positioning of one epoch from pseudoranges and broadcast ephemerides.
#ifndef ORSOLVA_NAVIGATION_POSITIONING_SPP_H
#define ORSOLVA_NAVIGATION_POSITIONING_SPP_H

#include <vector>

#include "navigation/ephemerides/ephemeris.h"
#include "navigation/positioning/positioning_epoch.h"
#include "navigation/positioning/spp_residuals.h"
#include "navigation/positioning/spp_solution.h"

namespace gnssqctoolkit {

/// The solver. Refers to the ephemerides and the settings it is given.
class SPP {
 public:
  SPP(const Ephemeris& ephemeris, const SPPOption& option) : ephemeris_(ephemeris), option_(option) {}
  virtual ~SPP() = default;

  /// Positions an epoch with all satellites, and when that fails with one of them left out.
  /// @param result  gives the start (zeros = none) and takes the solution
  /// @return false for an epoch without observations or without any solution; only Status, which is 0, is
  ///         then defined in the result
  bool Position(const PositioningEpoch& epoch, SPPResult& result);

  /// What the last epoch's solution says about each of its observations.
  const std::vector<SppMark>& Marks() const { return marks_; }

 private:
  SppEpoch WithSatelliteStates(const PositioningEpoch& epoch) const;

  const Ephemeris& ephemeris_;
  const SPPOption& option_;
  std::vector<SppMark> marks_;
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_POSITIONING_SPP_H
