#include "navigation/positioning/spp_residuals.h"

#include <cmath>

#include "navigation/orbits/constants.h"
#include "navigation/orbits/geometry.h"
#include "navigation/positioning/atmosphere.h"
#include "toolkit/trace.h"

namespace gnssqctoolkit {
namespace {

constexpr double kLargestAccuracyVariance = 90000.0;  // m^2, an accuracy of 300 m
constexpr double kRelativeHumidity = 0.7;
constexpr double kGlonassFactor = 1.5;  // standard deviation of GLONASS code over that of GPS
constexpr double kWavelengthL1 = 0.19029367279836487;
constexpr double kIonosphereError = 0.5;   // of the modelled delay
constexpr double kTroposphereError = 0.3;  // m at the zenith
constexpr double kPseudoRowVariance = 0.01;
constexpr double kBroadcastCoefficients[8] = {};  // all zero: the model's default set

/// Column of a system's clock term among the unknowns, -1 for a system without one.
int ClockColumn(int system) {
  switch (system) {
    case kGps:
      return 3;
    case kGlonass:
      return 4;
    case kBds:
      return 5;
    case kGalileo:
      return 6;
    default:
      return -1;
  }
}

/// The assumed receiver.
struct Receiver {
  const double* Unknowns;
  GeodeticPosition Geodetic;
  bool Known;  // a position exists
};

double ScaledIonosphere(const AbsoluteTime& t, const Receiver& receiver, const double azel[2],
                        double wavelength) {
  const double ratio = wavelength > 0.0 ? wavelength / kWavelengthL1 : 1.0;
  return KlobucharDelay(t, receiver.Geodetic, azel, kBroadcastCoefficients) * (ratio * ratio);
}

double Variance(const SppObservation& observation, const SPPOption& option, double elevation,
                double ionosphere) {
  const double sin_el = std::sin(elevation);
  const double factor = observation.Satellite.system == kGlonass ? kGlonassFactor : 1.0;
  const double code = option.ErrRatio * option.ErrRatio *
                      (option.ErrA * option.ErrA + option.ErrB * option.ErrB / sin_el) * (factor * factor);
  const double ion = kIonosphereError * ionosphere;
  const double trop = kTroposphereError / (sin_el + 0.1);
  return code + observation.State.Variance + ion * ion + trop * trop;
}

/// The equation of one observation; false when it has none.
bool FormRow(const SppObservation& observation, const AbsoluteTime& t, const SPPOption& option,
             const Receiver& receiver, SppRow& row, SppMark& mark) {
  const int column = ClockColumn(observation.Satellite.system);
  double unit[3];
  const double range = GeometricRange(observation.State.Position, receiver.Unknowns, unit);
  if (column < 0 || !(range > 0.0)) return false;
  double azel[2];
  AzimuthElevation(receiver.Geodetic, unit, azel);
  if (receiver.Known && azel[1] < option.ElevationMask) return false;

  const double ionosphere =
      option.IonoOpt == 1 ? ScaledIonosphere(t, receiver, azel, observation.Wavelength) : 0.0;
  const double troposphere =
      option.TropOpt == 2 ? SaastamoinenDelay(receiver.Geodetic, azel[1], kRelativeHumidity) : 0.0;
  row = SppRow{};
  row.Residual =
      observation.Pseudorange - (range + receiver.Unknowns[column] - kSpeedOfLight * observation.State.Clock +
                                 ionosphere + troposphere);
  for (int i = 0; i < 3; ++i) row.Design[static_cast<std::size_t>(i)] = -unit[i];
  row.Design[static_cast<std::size_t>(column)] = 1.0;
  row.Variance = Variance(observation, option, azel[1], ionosphere);
  if (!std::isfinite(row.Residual) || !std::isfinite(row.Variance) || !(row.Variance > 0.0)) return false;
  mark = {true, {azel[0], azel[1]}, row.Residual};
  return true;
}

bool HasUsableRange(const SppObservation& observation) {
  return std::isfinite(observation.Pseudorange) && observation.Pseudorange >= kAbsentRange;
}

}  // namespace

bool SatelliteExcluded(const SatelliteId& satellite, double variance, std::int32_t svh,
                       const SPPOption& option) {
  const int number = SatelliteIndex(satellite);
  if (number <= 0 || number > kMaxSatellites || svh < 0) return true;
  if ((satellite.system & option.NavSys) == 0) return true;
  const std::int32_t use = option.SatUse[number - 1];
  if (use == 0) return true;
  if (use == 1) return false;
  if (satellite.system == kQzss) svh &= ~1;
  if (svh != 0) {
    Trace(3, "unhealthy satellite: sat=%3d svh=%02X\n", number, static_cast<unsigned>(svh));
    return true;
  }
  if (!(variance <= kLargestAccuracyVariance)) {
    if (TraceEnabled()) Trace(3, "invalid ura satellite: sat=%3d ura=%.2f\n", number, std::sqrt(variance));
    return true;
  }
  return false;
}

int FormRows(const SppEpoch& epoch, const SPPOption& option, const double unknowns[kSppUnknowns],
             std::vector<SppRow>& rows, std::vector<SppMark>& marks) {
  rows.clear();
  marks.assign(epoch.Observations.size(), SppMark{});
  const bool known = unknowns[0] != 0.0 || unknowns[1] != 0.0 || unknowns[2] != 0.0;
  const Receiver receiver{unknowns, EcefToGeodetic(unknowns), known};
  bool seen[kMaxSatellites + 1] = {};
  bool has_satellites[kSppUnknowns] = {};
  int satellites = 0;
  for (std::size_t i = 0; i < epoch.Observations.size() && satellites < kMaxSppSatellites; ++i) {
    const SppObservation& observation = epoch.Observations[i];
    const SatelliteState& state = observation.State;
    if (!HasUsableRange(observation)) continue;
    if (SatelliteExcluded(observation.Satellite, state.Variance, state.Health, option)) continue;
    bool& repeated = seen[SatelliteIndex(observation.Satellite)];
    SppRow row;
    if (repeated || !FormRow(observation, epoch.Time, option, receiver, row, marks[i])) continue;
    repeated = true;
    has_satellites[ClockColumn(observation.Satellite.system)] = true;
    rows.push_back(row);
    ++satellites;
  }
  // A clock term that no satellite observes is held at its value, so that the normal matrix stays regular.
  for (std::size_t column = 3; column < kSppUnknowns; ++column) {
    if (has_satellites[column]) continue;
    SppRow row;
    row.Design[column] = 1.0;
    row.Variance = kPseudoRowVariance;
    rows.push_back(row);
  }
  return satellites;
}

}  // namespace gnssqctoolkit
