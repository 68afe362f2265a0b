#include "host/analysis/slips/evidence.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace orsolva_host::analysis {
namespace {

std::string Fixed(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  const bool zero =
      std::all_of(text, text + std::strlen(text), [](char c) { return c == '-' || c == '0' || c == '.'; });
  return text + (zero && text[0] == '-');
}

/// Cycles as they are spoken: "-12" or "0.5".
std::string Plain(double cycles) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", cycles);
  return text;
}

const SignalTrack& SignalAt(const SatelliteTrack& track, const StepTest& test, int place) {
  return track.signals[test.signal[static_cast<std::size_t>(place)]];
}

std::string SlippedSignals(const SatelliteTrack& track, const StepTest& test, const Cycles& slip) {
  std::string text;
  for (int i = 0; i < test.count; ++i) {
    const double cycles = slip[static_cast<std::size_t>(i)];
    if (cycles == 0) continue;
    text += (text.empty() ? "" : ", ") + NameOf(SignalAt(track, test, i).code) + " by " + Plain(cycles);
  }
  return text.empty() ? text : text + " cycles; ";
}

std::string OtherSignals(const SatelliteTrack& track, const StepTest& test, const Cycles& slip) {
  int count = 0;
  double largest = 0;
  for (int i = 0; i < test.count; ++i) {
    const auto place = static_cast<std::size_t>(i);
    if (slip[place] != 0) continue;
    ++count;
    largest = std::max(largest, std::fabs(test.r[place]) / SignalAt(track, test, i).wavelength_m);
  }
  if (count == 0) return "no other signal; ";
  if (count == test.count) return {};
  return (count == 1 ? "the other signal within " : "the others within ") + Fixed(largest, 2) + " cycles; ";
}

std::string TestVector(const SatelliteTrack& track, const StepTest& test) {
  std::string text = "phases off by";
  for (int i = 0; i < test.count; ++i) {
    const SignalTrack& s = SignalAt(track, test, i);
    text += " " + NameOf(s.code) + " " + Fixed(test.r[static_cast<std::size_t>(i)] / s.wavelength_m, 2);
  }
  return text + " cycles; ";
}

std::string WideLanes(const SatelliteTrack& track, const StepTest& test, const WideLaneEvidence& wide_lanes) {
  std::string text;
  for (int i = 0; i < wide_lanes.count; ++i) {
    const WideLaneJump& jump = wide_lanes.jumps[static_cast<std::size_t>(i)];
    text += (i == 0 ? "wide lane " : ", ") + NameOf(SignalAt(track, test, jump.first).code) + "-" +
            NameOf(SignalAt(track, test, jump.second).code) + " " + Fixed(jump.cycles, 1) + " +- " +
            Fixed(jump.sigma, 1);
  }
  return text.empty() ? text : text + "; ";
}

}  // namespace

std::string EvidenceText(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                         const WideLaneEvidence& wide_lanes, const Cycles& slip) {
  const StepState& s = track.At(step);
  return SlippedSignals(track, test, slip) + OtherSignals(track, test, slip) + TestVector(track, test) +
         WideLanes(track, test, wide_lanes) + "range +- " + Fixed(s.range_scale_m, 3) + " m, ionosphere +- " +
         Fixed(s.ionosphere_scale_m, 3) + " m";
}

}  // namespace orsolva_host::analysis
