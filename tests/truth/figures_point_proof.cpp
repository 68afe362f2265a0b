// Residuals, DOP and scatter of the positions against what the geometry of each epoch makes of white noise.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/observation/carriers.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteId;
using orsolva_host::SatelliteObservation;
using orsolva_host::Scenario;
using orsolva_host::Simulation;
using orsolva_host::analysis::Count;

constexpr double kCodeNoise_m = 0.4;
constexpr double kLowestUsed_deg = 10;
constexpr double kMaxPdop = 30;
constexpr std::size_t kClocks = 4;  // of G with J, R, E, C
constexpr std::size_t kUnknowns = 3 + kClocks;
constexpr const char* kSignals =
    R"({"signals": {"G": ["1C", "2W"], "R": ["1C", "2C"], "E": ["1C", "7Q"], "C2": ["2I", "6I"],
        "C3": ["2I", "6I"], "C3G": ["2I", "6I"], "J": ["1C", "2L"]},
        "errors": {"code_noise_m": {"zenith": 0.4, "horizon": 0.4},
                   "multipath_m": {"zenith": 0, "horizon": 0}}})";

struct PointCase {
  const char* name;
  const char* systems;
  double lowest_deg;  ///< of the receiver
  const char* faults;
  /// The troposphere of the simulator and that of the analysis differ by decimetres below 15 degrees, which
  /// is no white noise: residuals and scatter are held from there up.
  bool noise;
};

constexpr PointCase kCases[] = {
    {"all systems", "GREJC", 15, "{}", true},
    {"GPS", "G", 15, "{}", true},
    {"GLONASS", "R", 15, "{}", true},
    {"Galileo", "E", 15, "{}", true},
    {"BDS", "C", 15, "{}", true},
    {"all systems, tracked from 5 degrees", "GREJC", 5, "{}", false},
    {"GPS, tracked from 5 degrees", "G", 5, "{}", false},
    {"GPS and QZSS without L2 for an hour, and without GPS for half an hour", "GJ", 15,
     R"({"faults": [{"kind": "outage", "satellite": "G", "signal": "2W", "at_s": 20000, "duration_s": 3600},
         {"kind": "outage", "satellite": "J", "signal": "2L", "at_s": 20000, "duration_s": 3600},
         {"kind": "outage", "satellite": "G", "at_s": 40000, "duration_s": 1800}]})",
     false},
};

std::size_t ClockOf(char system) { return system == 'R' ? 1 : system == 'E' ? 2 : system == 'C' ? 3 : 0; }

/// Noise of the code without ionosphere, g P1 + (1 - g) P2 with g = f1^2 / (f1^2 - f2^2).
double FreeOfIonosphere_m(char system) {
  const char first = system == 'C' ? '2' : '1';
  const char second = system == 'E' ? '7' : system == 'C' ? '6' : '2';
  const double f1 = orsolva_host::CarrierFrequency(system, first, 0);
  const double f2 = orsolva_host::CarrierFrequency(system, second, 0);
  const double g = f1 * f1 / (f1 * f1 - f2 * f2);
  return kCodeNoise_m * std::hypot(g, 1 - g);
}

using Unknowns = std::array<double, kUnknowns>;
using Square = std::array<Unknowns, kUnknowns>;

/// Inverse by Gauss and Jordan; unknowns that nothing observes are left out. @return false when singular
bool Invert(Square a, Square& inverse) {
  inverse = {};
  for (std::size_t i = 0; i < kUnknowns; ++i) {
    if (a[i][i] == 0) a[i][i] = 1;  // of a clock that is not there
    inverse[i][i] = 1;
  }
  for (std::size_t i = 0; i < kUnknowns; ++i) {
    std::size_t pivot = i;
    for (std::size_t k = i; k < kUnknowns; ++k)
      if (std::fabs(a[k][i]) > std::fabs(a[pivot][i])) pivot = k;
    if (std::fabs(a[pivot][i]) < 1e-9) return false;
    std::swap(a[i], a[pivot]);
    std::swap(inverse[i], inverse[pivot]);
    const double scale = 1 / a[i][i];
    for (std::size_t c = 0; c < kUnknowns; ++c) a[i][c] *= scale, inverse[i][c] *= scale;
    for (std::size_t k = 0; k < kUnknowns; ++k) {
      const double factor = k == i ? 0 : a[k][i];
      for (std::size_t c = 0; c < kUnknowns; ++c)
        a[k][c] -= factor * a[i][c], inverse[k][c] -= factor * inverse[i][c];
    }
  }
  return true;
}

struct Row {
  Unknowns design = {};
  double weight = 1;
  double sigma_m = 1;
};

Square Normal(const std::vector<Row>& rows, bool weighted) {
  Square normal = {};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kUnknowns; ++i)
      for (std::size_t k = 0; k < kUnknowns; ++k)
        normal[i][k] += (weighted ? row.weight : 1) * row.design[i] * row.design[k];
  }
  return normal;
}

/// What the epochs' geometry says of the figures.
class Expected {
 public:
  void Take(const Simulation& simulation, const ObservationEpoch& epoch) {
    std::map<SatelliteId, const orsolva_host::SatelliteMoment*> moments;
    for (const auto& m : simulation.Moments()) moments[{m.system, static_cast<std::uint8_t>(m.number)}] = &m;
    std::vector<Row> two_bands, one_band;
    for (const SatelliteObservation& s : epoch.satellites) {
      const auto& m = *moments.at(s.id);
      if (m.elevation_rad < kLowestUsed_deg * orsolva_host::kRadian) continue;
      const Row row = RowOf(m, s.id.system);
      if (s.signal_count > 1) two_bands.push_back(row);
      one_band.push_back(row);
    }
    if (!epoch.satellites.empty()) Solve(two_bands, one_band);
  }

  double ResidualRms() const { return std::sqrt(squares_ / static_cast<double>(residuals_)); }
  Count Solutions() const { return pdops_.size(); }
  Count Failed() const { return failed_; }
  Count OneBand() const { return one_band_; }
  double Pdop(double part) {
    std::sort(pdops_.begin(), pdops_.end());
    return pdops_[static_cast<std::size_t>(part * static_cast<double>(pdops_.size() - 1))];
  }

  /// Half the distance of the quantiles of the mixture of all epochs' normal errors.
  double Scatter(std::size_t axis) const {
    double low = 0, high = 100;
    while (high - low > 1e-6) {
      const double x = (low + high) / 2;
      double below = 0;
      for (const double sigma : sigmas_[axis]) below += std::erfc(-x / (sigma * std::sqrt(2.0))) / 2;
      (below < 0.8413 * static_cast<double>(sigmas_[axis].size()) ? low : high) = x;
    }
    return low;
  }

 private:
  static Row RowOf(const orsolva_host::SatelliteMoment& m, char system) {
    const double level = std::cos(m.elevation_rad), sine = std::sin(m.elevation_rad);
    Row row;
    row.design[0] = -level * std::sin(m.azimuth_rad);
    row.design[1] = -level * std::cos(m.azimuth_rad);
    row.design[2] = -sine;
    row.design[3 + ClockOf(system)] = 1;
    row.weight = sine * sine * (system == 'R' ? 0.25 : 1);
    row.sigma_m = FreeOfIonosphere_m(system);
    return row;
  }

  static std::optional<double> PdopOf(const std::vector<Row>& rows) {
    std::array<int, kClocks> satellites = {};
    for (const Row& row : rows)
      for (std::size_t c = 0; c < kClocks; ++c) satellites[c] += row.design[3 + c] != 0;
    int redundant = 0;
    for (const int n : satellites) redundant += std::max(n - 1, 0);
    Square inverse;
    if (redundant < 4 || !Invert(Normal(rows, false), inverse)) return std::nullopt;
    const double pdop = std::sqrt(inverse[0][0] + inverse[1][1] + inverse[2][2]);
    if (!(pdop < kMaxPdop)) return std::nullopt;
    return pdop;
  }

  void Solve(const std::vector<Row>& two_bands, const std::vector<Row>& one_band) {
    const std::optional<double> pdop = PdopOf(two_bands);
    if (pdop) {
      pdops_.push_back(*pdop);
      AddNoise(two_bands);
    } else if (const std::optional<double> other = PdopOf(one_band)) {
      pdops_.push_back(*other);
      ++one_band_;
    } else {
      ++failed_;
    }
  }

  /// The solution is x = G y with G = N^-1 A^T W, the residuals are (I - A G) y.
  void AddNoise(const std::vector<Row>& rows) {
    Square inverse;
    if (!Invert(Normal(rows, true), inverse)) return;
    std::vector<Unknowns> gains(rows.size());
    Unknowns variances = {};
    for (std::size_t j = 0; j < rows.size(); ++j) {
      for (std::size_t i = 0; i < kUnknowns; ++i) {
        for (std::size_t k = 0; k < kUnknowns; ++k)
          gains[j][i] += inverse[i][k] * rows[j].design[k] * rows[j].weight;
        variances[i] += std::pow(gains[j][i] * rows[j].sigma_m, 2);
      }
    }
    for (std::size_t axis = 0; axis < 3; ++axis) sigmas_[axis].push_back(std::sqrt(variances[axis]));
    for (std::size_t i = 0; i < rows.size(); ++i) {
      for (std::size_t j = 0; j < rows.size(); ++j) {
        double left = i == j ? 1 : 0;
        for (std::size_t k = 0; k < kUnknowns; ++k) left -= rows[i].design[k] * gains[j][k];
        squares_ += std::pow(left * rows[j].sigma_m, 2);
      }
    }
    residuals_ += rows.size();
  }

  std::vector<double> pdops_;
  std::array<std::vector<double>, 3> sigmas_;
  double squares_ = 0;
  Count residuals_ = 0, failed_ = 0, one_band_ = 0;
};

/// A figure against what it should be; @return the two for a table
std::array<std::string, 2> Compare(const std::string& what, double expected,
                                   const std::optional<double>& found, double tolerance, Proof& proof) {
  proof.Check(found && std::fabs(*found / expected - 1) <= tolerance,
              fmt::format("{}: {:.4f} instead of {:.4f}", what, found.value_or(0), expected));
  return {Number(expected, 3), found ? Number(*found, 3) : "-"};
}

std::vector<std::string> ProveCase(const PointCase& one, double hours, Proof& proof) {
  Scenario scenario;
  ReadScenario(kSignals, scenario);
  ReadScenario(one.faults, scenario);
  scenario.systems = one.systems;
  scenario.seed = 7601;
  scenario.hours = hours;
  scenario.receiver.cutoff_deg = one.lowest_deg;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  RunOptions options;
  options.given_position_m = scenario.receiver.position_m;
  for (std::size_t i = 0; i < 3; ++i) (*options.given_position_m)[i] += 10;
  Expected expected;
  const AnalyzedRun run = Analyze(
      scenario, options, [&](const Simulation& s, const ObservationEpoch& e) { expected.Take(s, e); });
  const auto& found = run.result.position;
  const std::string name = one.name;
  proof.Check(
      found.solutions == expected.Solutions(),
      fmt::format("{}: {} solutions instead of {}", name, found.solutions.value_or(0), expected.Solutions()));
  proof.Check(found.failed == expected.Failed(),
              fmt::format("{}: {} failed instead of {}", name, found.failed.value_or(0), expected.Failed()));
  proof.Check(found.one_band_solutions == expected.OneBand(), name + ": one-band solutions");
  std::vector<std::string> row = {name, std::to_string(expected.Solutions()),
                                  std::to_string(expected.Failed()), std::to_string(expected.OneBand())};
  const auto add = [&row](const std::array<std::string, 2>& two) {
    row.insert(row.end(), two.begin(), two.end());
  };
  add(Compare(name + ": median PDOP", expected.Pdop(0.5), found.pdop_median, 0.01, proof));
  add(Compare(name + ": 95 % PDOP", expected.Pdop(0.95), found.pdop_p95, 0.02, proof));
  if (!one.noise) {
    row.insert(row.end(), 8, "-");
    return row;
  }
  const double to_given = found.distance_to_given_m.value_or(0);
  proof.Check(std::fabs(to_given - 10 * std::sqrt(3.0)) < 0.5, name + ": distance to the position given");
  add(Compare(name + ": residual RMS", expected.ResidualRms(), found.residual_rms_m, 0.02, proof));
  constexpr const char* kAxes[] = {"east", "north", "up"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::optional<double> scatter =
        found.scatter_enu_m ? std::optional<double>((*found.scatter_enu_m)[axis]) : std::nullopt;
    add(Compare(name + ": scatter " + kAxes[axis], expected.Scatter(axis), scatter, 0.06, proof));
  }
  return row;
}

}  // namespace

void ProvePointFigures(bool long_form, Proof& proof) {
  proof.figures = {"position_solutions", "failed_solutions",   "one_band_solutions", "code_residual_rms_m",
                   "pdop_median",        "pdop_p95",           "scatter_east_m",     "scatter_north_m",
                   "scatter_up_m",       "solution_to_given_m"};
  proof.injected =
      "white code noise of 0.4 m on two signals of each satellite, systems together and alone; epochs with "
      "one "
      "band, and with four QZSS satellites only; a given position 17.3 m off";
  proof.must_say =
      "from the simulated azimuths and elevations of each epoch: the solutions that satellites and PDOP "
      "allow, the "
      "PDOP with a clock for each system, and what least squares with the weights of the rule make of the "
      "noise "
      "of the code without ionosphere: the covariance G S G' of a position and (I - A G) S (I - A G)' of its "
      "residuals; the scatter is that of the mixture of all epochs";
  proof.tolerance =
      "none for counts, 1 % for the median of PDOP and 2 % for its 95th percentile, 2 % for the residual "
      "RMS, 6 % "
      "for the scatter, 0.5 m for the distance";
  proof.reason =
      "an RMS of 20,000 residuals scatters by 0.5 %; half the distance of two quantiles of n solutions "
      "scatters by "
      "1.07/sqrt(n), 2 % for a day, and the tropospheres of simulator and analysis differ by 0.1 m at 15 "
      "degrees. "
      "PDOP comes from classes of 0.005, and a satellite within 0.005 degrees of the limit may count or not";
  ProofTable table{"By case; expected and found.",
                   {"case", "solutions", "failed", "of one band", "PDOP median", "found", "95 %", "found",
                    "residual RMS, m", "found", "east, m", "found", "north, m", "found", "up, m", "found"},
                   {},
                   1};
  for (const PointCase& one : kCases) table.rows.push_back(ProveCase(one, long_form ? 48 : 24, proof));
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
