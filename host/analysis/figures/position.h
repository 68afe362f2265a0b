// Positions from codes, epoch by epoch, and what their scatter says.
//
// Each epoch with a modelled range is solved (point_solution.h): satellites from 10 degrees up whose record
// says healthy, codes without ionosphere (code_range.h); where those are too few, codes of the first band of
// each system, ionosphere included. Broadcast orbits and clocks leave a metre or two, so a day's median is
// good to about a metre, an hour's to some metres; of one band to some metres more in height. The troposphere
// is the model of station.h.
//   mean_m           median of the solutions east, north and up of the first position used
//   residual_rms_m   root mean square of all residuals of solutions, outliers of SolvePoint left out
//   pdop             of those satellites, each system with a clock of its own
//   scatter_enu_m    half the distance between the quantiles 15.87 % and 84.13 %: one sigma of a normal
//                    distribution
//   moving           one of these:
//                    - phases show a shift of the antenna in at least a fifth of the steps;
//                    - ten epochs lie farther than 10 m from the first one by the shifts of the phases, and
//                      by their codes;
//                    - the quantiles 10 % and 90 % of east or north lie farther apart than
//                      max(10 m, 8 sigma, 4 RMS PDOP), sigma being the noise of a solution as successive
//                      ones differ: median of horizontal differences / (1.1774 sqrt 2), where 1.1774 =
//                      sqrt(2 ln 2) is the median of a Rayleigh distribution
//
// Median, scatter and distances are those of an antenna at rest and absent for a moving one. Solutions are
// binned to 2 cm within 100 m of the first position; everything needs at least ten of them.
#ifndef ORSOLVA_ANALYSIS_FIGURES_POSITION_H
#define ORSOLVA_ANALYSIS_FIGURES_POSITION_H

#include <array>
#include <optional>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/point_solution.h"
#include "host/analysis/numeric/quantile_histogram.h"
#include "host/analysis/slips/detector_observer.h"

namespace orsolva_host::analysis {

class Position {
 public:
  /// Of one epoch.
  struct Solution {
    double pdop = kAbsent;
    Vector3 enu_m = {};  ///< east, north and up of the first position used
  };

  Position();

  /// Solves an epoch. @return the receiver clock, m: of GPS where it is there, else of the first of GLONASS,
  /// Galileo and BDS; NaN without a solution
  double AddRanges(const ObservationEpoch& epoch, const Station& station,
                   const std::vector<ModelledSatellite>& satellites);
  /// Of the epoch added last that has one.
  const Solution& Last() const { return last_solution_; }
  /// Takes the step that leads to an epoch.
  void AddStep(const ReceiverStep& step);

  /// @param header  position of the header
  /// @param given   by the user
  void FillIn(const std::optional<Vector3>& header, const std::optional<Vector3>& given,
              PositionFigures& figures) const;

 private:
  bool GatherSamples(const ObservationEpoch& epoch, const std::vector<ModelledSatellite>& satellites,
                     bool two_bands);
  void AddSolution(const PointSolution& solution, const Station& station);
  bool IsMoving() const;

  std::vector<CodeSample> samples_;
  std::optional<Vector3> origin_;
  std::array<Vector3, 3> axes_ = {};  ///< east, north, up at the origin
  std::array<QuantileHistogram, 3> offsets_;
  QuantileHistogram changes_;  ///< from solution to solution, horizontal
  QuantileHistogram pdops_;
  std::optional<Vector3> last_;
  Solution last_solution_;
  Count solutions_ = 0, failed_ = 0, one_band_ = 0;
  Count steps_ = 0, shifts_ = 0, far_ = 0;
  double squares_m2_ = 0;
  Count residuals_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_POSITION_H
