#include "host/simulator/satellite_work.h"

#include "host/simulator/portable_math.h"
#include "host/simulator/random_streams.h"

namespace orsolva_host {
namespace {

constexpr std::uint64_t kStormStream = 303;
constexpr std::uint64_t kTecStream = 606;

}  // namespace

SatelliteWork::SatelliteWork(const Scenario& scenario, char system, int satellite, std::uint64_t number)
    : tec_rate_(RandomStream(scenario.seed)
                    .Of(kTecStream)
                    .Of(static_cast<unsigned char>(system))
                    .Of(static_cast<unsigned>(satellite))),
      storm_phase_(2 * kPi * RandomStream(scenario.seed).Of(kStormStream).Uniform(number)) {}

void SatelliteWork::AddFault(ActiveFault* active) {
  if (active->fault.kind == FaultKind::kIonoStorm) storms_.push_back(active);
  if (active->fault.kind == FaultKind::kTecRate) rates_.push_back(active);
  if (active->fault.kind == FaultKind::kSatelliteClock) glitches_.push_back(active);
  if (active->fault.kind == FaultKind::kSlip) slips.push_back(active->first);
}

double SatelliteWork::WaveTec(std::int64_t epoch, double time_s, double span_s) const {
  double sum = 0;
  for (const ActiveFault* storm : storms_) {
    if (!storm->At(epoch)) continue;
    const Fault& f = storm->fault;
    const double length = f.duration_s > 0 ? f.duration_s : span_s - f.at_s;
    const double swell = Sine(kPi * (time_s - f.at_s) / length);
    sum += f.size * swell * swell * Sine(2 * kPi * (time_s - f.at_s) / f.period_s + storm_phase_);
  }
  return sum;
}

double SatelliteWork::RandomTec(std::int64_t epoch, double time_s) {
  if (rates_.empty()) return 0;
  double median = 0;
  for (const ActiveFault* rate : rates_) {
    if (rate->At(epoch)) median += rate->fault.size;
  }
  tec_rate_.Advance(time_s, median);
  return tec_rate_.Content();
}

double SatelliteWork::Glitch(std::int64_t epoch) const {
  double sum = 0;
  for (const ActiveFault* glitch : glitches_) {
    if (glitch->At(epoch)) sum += glitch->fault.size;
  }
  return sum;
}

void SatelliteWork::MarkGlitchesSeen(std::int64_t epoch, std::vector<InjectedFault>& log) const {
  for (const ActiveFault* glitch : glitches_) {
    if (glitch->At(epoch)) MarkSeen(*glitch, log);
  }
}

}  // namespace orsolva_host
