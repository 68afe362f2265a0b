#include "host/analysis/slips/glonass_channel.h"

#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kBase_hz = 1602e6;
constexpr double kStep_hz = 0.5625e6;
constexpr double kLargestFraction = 0.2;
constexpr double kBreak_m =
    30;  // of code minus phase from epoch to epoch, beyond what a wrong wavelength makes
constexpr double kWavelengthRange = 0.0025;  // relative, from the middle to the last channel

}  // namespace

void GlonassChannel::Add(double pseudorange_m, double phase_cycles) {
  if (channel_ || !std::isfinite(pseudorange_m) || !std::isfinite(phase_cycles)) return;
  const double wavelength = kLightSpeed_m_s / kBase_hz;
  const double change = pseudorange_m - last_range_m_;
  const double off = change - wavelength * (phase_cycles - last_phase_);
  if (!started_ || std::fabs(off) > kBreak_m + kWavelengthRange * std::fabs(change)) {
    started_ = true;
    first_range_m_ = pseudorange_m;
    first_phase_ = phase_cycles;
  }
  last_range_m_ = pseudorange_m;
  last_phase_ = phase_cycles;
  const double range = pseudorange_m - first_range_m_;
  if (std::fabs(range) < enough_range_m_) return;
  const double frequency = kLightSpeed_m_s * (phase_cycles - first_phase_) / range;
  const double channel = (frequency - kBase_hz) / kStep_hz;
  const double whole = std::nearbyint(channel);
  if (whole >= -7 && whole <= 6 && std::fabs(channel - whole) < kLargestFraction)
    channel_ = static_cast<int>(whole);
}

}  // namespace orsolva_host::analysis
