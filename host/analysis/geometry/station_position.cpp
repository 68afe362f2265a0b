#include "host/analysis/geometry/station_position.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "host/analysis/geometry/constants.h"
#include "host/analysis/geometry/range_model.h"
#include "host/analysis/geometry/station.h"
#include "host/analysis/numeric/linear_solve.h"
#include "host/analysis/numeric/robust.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kIterations = 10;
constexpr int kIterationsForAll = 4;  // until then satellites of every elevation take part
constexpr double kOutlier_m = 5;
constexpr double kEarth_m = 6.37e6;
constexpr double kNearGround_m = 1e5;
constexpr double kHeaderIsGood_m = 6;
constexpr std::size_t kMinEpochs = 3;
constexpr std::size_t kMinSatellites = 6;
constexpr std::size_t kMaxClocks = 7;
const std::string kClockSystems = "GREJCIS";

struct Code {
  SatelliteRecords* records;
  std::size_t record;
  std::size_t clock;   ///< place in kClockSystems
  double raw_m;        ///< for the time of transmission
  double corrected_m;  ///< without the ionosphere where two carriers are there
};

/// GLONASS carriers are taken without their channels: the combination is good to the metre.
std::optional<Code> CodeOf(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                           BroadcastStore& records) {
  Code code{records.Find(satellite.id), 0, kClockSystems.find(satellite.id.system), 0, 0};
  if (!code.records || code.clock == std::string::npos) return std::nullopt;
  const auto selected = code.records->Select(epoch.time_ns);
  if (!selected) return std::nullopt;
  code.record = *selected;
  double high = 0, low = 1e12, high_m = 0, low_m = 0;
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    const double frequency = CarrierFrequency(satellite.id.system, o.code.band, 0);
    if (!(frequency > 0) || !IsRange(o.pseudorange_m)) continue;
    if (frequency > high) high = frequency, high_m = o.pseudorange_m;
    if (frequency < low) low = frequency, low_m = o.pseudorange_m;
  }
  if (high == 0) return std::nullopt;
  code.raw_m = code.corrected_m = high_m;
  if (high - low > 50e6) {
    const double gain = high * high / (high * high - low * low);
    code.corrected_m = gain * high_m + (1 - gain) * low_m;
  }
  return code;
}

using Unknowns = std::array<double, 3 + kMaxClocks>;

double Norm(const Unknowns& x) { return std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]); }

/// Gives each system that is there a clock of its own among the unknowns. @return number of unknowns
std::size_t NumberClocks(std::vector<Code>& codes) {
  std::array<std::size_t, kMaxClocks> place = {};
  std::size_t unknowns = 3;
  for (Code& code : codes) {
    if (place[code.clock] == 0) place[code.clock] = unknowns++;
    code.clock = place[code.clock];
  }
  return unknowns;
}

/// One step of least squares. @return false when the equations do not fix the unknowns
bool Improve(const std::vector<Code>& codes, std::size_t unknowns, std::int64_t time_ns, int iteration,
             Unknowns& x) {
  const Station station({x[0], x[1], x[2]});
  const bool on_ground = std::fabs(Norm(x) - kEarth_m) < kNearGround_m;
  NormalSystem<3 + kMaxClocks> normal(unknowns);
  std::size_t used = 0;
  for (const Code& code : codes) {
    const ModelledRange range = RangeAt(*code.records, code.record, station, time_ns, code.raw_m);
    if (!range.valid || (iteration > kIterationsForAll && range.sin_elevation < kSineOfTenDegrees)) continue;
    double expected = range.metres + x[code.clock];
    if (!on_ground) expected -= station.TroposphereDelay(range.sin_elevation);
    const double off = code.corrected_m - expected;
    double weight = std::max(range.sin_elevation, 0.1);
    if (iteration > kIterationsForAll + 1) weight /= std::max(1.0, std::fabs(off) / kOutlier_m);
    Unknowns row = {-range.line_of_sight[0], -range.line_of_sight[1], -range.line_of_sight[2]};
    row[code.clock] = 1;
    normal.Add(row, off, weight * weight);
    ++used;
  }
  Unknowns step = {};
  if (used < unknowns || !normal.Solve(step)) return false;
  for (std::size_t i = 0; i < unknowns; ++i) x[i] += step[i];
  return true;
}

}  // namespace

std::optional<Vector3> PointPosition(const ObservationEpoch& epoch, BroadcastStore& records,
                                     const Vector3& guess) {
  std::vector<Code> codes;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    if (const auto code = CodeOf(epoch, satellite, records)) codes.push_back(*code);
  }
  if (codes.size() < kMinSatellites) return std::nullopt;
  const std::size_t unknowns = NumberClocks(codes);
  Unknowns x = {guess[0], guess[1], guess[2]};
  for (int iteration = 0; iteration < kIterations; ++iteration) {
    if (!Improve(codes, unknowns, epoch.time_ns, iteration, x)) return std::nullopt;
  }
  if (!(std::fabs(Norm(x) - kEarth_m) < kNearGround_m)) return std::nullopt;
  return Vector3{x[0], x[1], x[2]};
}

std::optional<Vector3> StationPosition(const std::vector<ObservationEpoch>& epochs, BroadcastStore& records,
                                       const std::optional<Vector3>& header) {
  std::array<std::vector<double>, 3> found;
  Vector3 guess = header.value_or(Vector3{});
  for (const ObservationEpoch& epoch : epochs) {
    const auto position = PointPosition(epoch, records, guess);
    if (!position) continue;
    guess = *position;
    for (std::size_t i = 0; i < 3; ++i) found[i].push_back((*position)[i]);
  }
  if (found[0].size() < kMinEpochs) return header;
  const Vector3 median = {Median(found[0]), Median(found[1]), Median(found[2])};
  return header && Norm(Difference(*header, median)) < kHeaderIsGood_m ? header : median;
}

}  // namespace orsolva_host::analysis
