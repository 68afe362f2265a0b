#include "host/analysis/figures/position.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/figures/code_range.h"
#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kReach_m = 100;
constexpr std::size_t kBins = 10000;
constexpr double kMaxPdop = 50;
constexpr Count kMinSolutions = 10;
constexpr double kLowQuantile = 0.1587, kHighQuantile = 0.8413;
constexpr double kLowExtent = 0.1, kHighExtent = 0.9;
constexpr double kMinMotion_m = 10;
constexpr double kMotionSigmas = 8;
constexpr double kMotionErrors = 4;  // of the size that residuals and PDOP give to an error of position
constexpr double kRayleighMedian = 1.1774;
constexpr Count kStepsPerShift = 5;
constexpr Count kMinFarEpochs = 10;

/// East, north and up of a place.
std::array<Vector3, 3> AxesAt(const Station& station) {
  const Vector3& up = station.Up();
  const double level = std::max(std::hypot(up[0], up[1]), 1e-12);
  const Vector3 east = {-up[1] / level, up[0] / level, 0};
  const Vector3 north = {-up[2] * east[1], up[2] * east[0], up[0] * east[1] - up[1] * east[0]};
  return {east, north, up};
}

QuantileHistogram Offsets() { return {-kReach_m, kReach_m, kBins}; }

}  // namespace

Position::Position()
    : offsets_{Offsets(), Offsets(), Offsets()}, changes_(0, kReach_m, kBins), pdops_(0, kMaxPdop, kBins) {}

/// @return whether there may be enough for a solution
bool Position::GatherSamples(const ObservationEpoch& epoch, const std::vector<ModelledSatellite>& satellites,
                             bool two_bands) {
  samples_.clear();
  for (const ModelledSatellite& modelled : satellites) {
    const ModelledRange& range = modelled.range;
    const SatelliteObservation& satellite = epoch.satellites[modelled.place];
    const std::size_t clock = ClockPlace(satellite.id.system);
    if (!range.healthy || range.sin_elevation < kSineOfTenDegrees || clock == kClockSystems) continue;
    const CodeRange codes = CodeRangeOf(epoch, satellite, range);
    const double code_m = two_bands ? codes.two_bands_m : codes.one_band_m;
    if (std::isnan(code_m)) continue;
    samples_.push_back({range.line_of_sight, range.sin_elevation, code_m, code_m - range.metres, clock});
  }
  return samples_.size() > 4;
}

double Position::AddRanges(const ObservationEpoch& epoch, const Station& station,
                           const std::vector<ModelledSatellite>& satellites) {
  std::optional<PointSolution> solution;
  if (GatherSamples(epoch, satellites, true)) solution = SolvePoint(samples_);
  if (!solution && GatherSamples(epoch, satellites, false)) {
    solution = SolvePoint(samples_);
    if (solution) ++one_band_;
  }
  if (!solution) {
    ++failed_;
    return kAbsent;
  }
  AddSolution(*solution, station);
  const auto known = std::find_if(solution->clock_m.begin(), solution->clock_m.end(),
                                  [](double metres) { return std::isfinite(metres); });
  return known == solution->clock_m.end() ? kAbsent : *known;
}

void Position::AddSolution(const PointSolution& solution, const Station& station) {
  if (!origin_) {
    origin_ = station.Position();
    axes_ = AxesAt(station);
  }
  ++solutions_;
  squares_m2_ += solution.sum_of_squares_m2;
  residuals_ += solution.used;
  pdops_.Add(solution.pdop);
  Vector3 offset = Difference(station.Position(), *origin_);
  const double by_phases_m = std::hypot(Dot(axes_[0], offset), Dot(axes_[1], offset));
  for (std::size_t k = 0; k < 3; ++k) offset[k] += solution.shift_m[k];
  Vector3 local;
  for (std::size_t k = 0; k < 3; ++k) {
    local[k] = Dot(axes_[k], offset);
    offsets_[k].Add(local[k]);
  }
  if (by_phases_m > kMinMotion_m && std::hypot(local[0], local[1]) > kMinMotion_m) ++far_;
  if (last_) changes_.Add(std::hypot(local[0] - (*last_)[0], local[1] - (*last_)[1]));
  last_ = local;
  last_solution_ = {solution.pdop, local};
}

void Position::AddStep(const ReceiverStep& step) {
  if (!step.clock_known) return;
  ++steps_;
  if (Dot(step.shift_m, step.shift_m) > 0) ++shifts_;
}

bool Position::IsMoving() const {
  if ((kStepsPerShift * shifts_ >= steps_ && shifts_ > 0) || far_ >= kMinFarEpochs) return true;
  const double noise_m = changes_.Quantile(0.5) / (kRayleighMedian * std::sqrt(2.0));
  const double error_m = std::sqrt(squares_m2_ / static_cast<double>(residuals_)) * pdops_.Quantile(0.5);
  const double limit_m = std::max({kMinMotion_m, kMotionSigmas * noise_m, kMotionErrors * error_m});
  const auto extent = [](const QuantileHistogram& h) {
    return h.Quantile(kHighExtent) - h.Quantile(kLowExtent);
  };
  return extent(offsets_[0]) > limit_m || extent(offsets_[1]) > limit_m;
}

void Position::FillIn(const std::optional<Vector3>& header, const std::optional<Vector3>& given,
                      PositionFigures& figures) const {
  if (solutions_ + failed_ == 0) return;
  figures.solutions = solutions_;
  figures.failed = failed_;
  if (solutions_ < kMinSolutions) return;
  figures.one_band_solutions = one_band_;
  figures.residual_rms_m = std::sqrt(squares_m2_ / static_cast<double>(residuals_));
  figures.pdop_median = pdops_.Quantile(0.5);
  figures.pdop_p95 = pdops_.Quantile(0.95);
  figures.moving = IsMoving();
  if (*figures.moving) return;
  Vector3 median = *origin_;
  std::array<double, 3> scatter;
  for (std::size_t k = 0; k < 3; ++k) {
    const double offset = offsets_[k].Quantile(0.5);
    scatter[k] = 0.5 * (offsets_[k].Quantile(kHighQuantile) - offsets_[k].Quantile(kLowQuantile));
    for (std::size_t i = 0; i < 3; ++i) median[i] += offset * axes_[k][i];
  }
  figures.mean_m = median;
  figures.scatter_enu_m = scatter;
  const auto distance = [&](const Vector3& to) { return Norm(Difference(median, to)); };
  if (header) figures.distance_to_header_m = distance(*header);
  if (given) figures.distance_to_given_m = distance(*given);
}

}  // namespace orsolva_host::analysis
