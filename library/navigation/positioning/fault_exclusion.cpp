#include "navigation/positioning/fault_exclusion.h"

#include <cmath>
#include <string>

#include "toolkit/trace.h"

namespace gnssqctoolkit {
namespace {

constexpr double kWorstRms = 100.0;  // m
constexpr int kFewestSatellites = 5;

SppEpoch Without(const SppEpoch& epoch, std::size_t left_out) {
  SppEpoch rest;
  rest.Time = epoch.Time;
  rest.Observations.reserve(epoch.Observations.size());
  for (std::size_t i = 0; i < epoch.Observations.size(); ++i) {
    if (i != left_out) rest.Observations.push_back(epoch.Observations[i]);
  }
  return rest;
}

// Root mean square of the residuals of the valid satellites, m; their number in `valid`.
double ResidualRms(const std::vector<SppMark>& marks, int& valid) {
  double sum = 0.0;
  valid = 0;
  for (const SppMark& mark : marks) {
    if (!mark.Valid) continue;
    sum += mark.Residual * mark.Residual;
    ++valid;
  }
  return valid > 0 ? std::sqrt(sum / valid) : 0.0;
}

void CopyMarks(const std::vector<SppMark>& rest, std::size_t left_out, std::vector<SppMark>& marks) {
  std::size_t from = 0;
  for (std::size_t i = 0; i < marks.size() && from < rest.size(); ++i) {
    if (i != left_out) marks[i] = rest[from++];
  }
  marks[left_out].Valid = false;
}

void TraceExcluded(const SppEpoch& epoch, const SatelliteId& satellite) {
  if (!TraceEnabled()) return;
  char time[64];
  TimeText(GNSSTime(epoch.Time), 3, time, sizeof time);
  Trace(3, "%s: %s excluded by raim\n", time, SatelliteIdText(satellite));
}

// True when the epoch without one observation has a solution good enough to be compared.
bool SolveWithout(const SppEpoch& epoch, std::size_t left_out, const SPPOption& option,
                  const SppSolver& solver, SPPResult& solution, std::vector<SppMark>& marks, double& rms) {
  const SatelliteId satellite = epoch.Observations[left_out].Satellite;
  const int number = SatelliteIndex(satellite);
  if (!solver(Without(epoch, left_out), option, solution, marks)) {
    if (TraceEnabled()) Trace(3, "raim_fde: exsat=%2d (%s)\n", number, SatelliteIdText(satellite));
    return false;
  }
  int valid = 0;
  rms = ResidualRms(marks, valid);
  if (valid < kFewestSatellites) {
    Trace(3, "raim_fde: exsat=%2d lack of satellites nvsat=%2d\n", number, valid);
    return false;
  }
  Trace(3, "raim_fde: exsat=%2d rms=%8.3f\n", number, rms);
  return true;
}

}  // namespace

bool ExcludeFault(const SppEpoch& epoch, const SPPOption& option, const SPPResult& start, SPPResult& result,
                  std::vector<SppMark>& marks, const SppSolver& solver) {
  marks.resize(epoch.Observations.size());
  double best = kWorstRms;
  bool found = false;
  SatelliteId excluded;
  std::vector<SppMark> candidate_marks;
  for (std::size_t i = 0; i < epoch.Observations.size(); ++i) {
    SPPResult candidate = start;
    double rms = 0.0;
    if (!SolveWithout(epoch, i, option, solver, candidate, candidate_marks, rms)) continue;
    if (!(rms <= best)) continue;
    CopyMarks(candidate_marks, i, marks);
    result = candidate;
    excluded = epoch.Observations[i].Satellite;
    best = rms;
    found = true;
  }
  if (found) TraceExcluded(epoch, excluded);
  return found;
}

}  // namespace gnssqctoolkit
