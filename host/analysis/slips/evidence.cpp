#include "host/analysis/slips/evidence.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace orsolva_host::analysis {
namespace {

constexpr std::size_t kUsualLength = 160;  // of a text, which then takes memory once

/// As "%.*f" prints it, but zero without a sign. @param digits  0 to 3
std::string Fixed(double value, int digits) {
  constexpr std::array<int, 4> kScales = {1, 10, 100, 1000};
  constexpr double kLargest = 1e6, kNearHalf = 1e-6;  // the product is exact to 1e-10
  const int scale = kScales[static_cast<std::size_t>(digits)];
  const double scaled = std::fabs(value) * scale;
  const double part = scaled - std::floor(scaled);
  char text[64];
  if (scaled < kLargest && std::fabs(part - 0.5) > kNearHalf) {  // ten times as quick
    const int rounded = static_cast<int>(scaled) + (part > 0.5);
    char* end = text;
    if (value < 0 && rounded != 0) *end++ = '-';
    end = std::to_chars(end, std::end(text), rounded / scale).ptr;
    if (digits > 0) *end++ = '.';
    for (int unit = scale / 10; unit > 0; unit /= 10) *end++ = static_cast<char>('0' + rounded / unit % 10);
    return {text, end};
  }
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  const bool zero =
      std::all_of(text, text + std::strlen(text), [](char c) { return c == '-' || c == '0' || c == '.'; });
  return text + (zero && text[0] == '-');
}

/// "1 cycle", "-0.5 cycle", "12 cycles"
std::string Cycles1(double cycles) {
  char text[64];
  std::snprintf(text, sizeof text, "%g %s", cycles, std::fabs(cycles) > 1 ? "cycles" : "cycle");
  return text;
}

std::string InWords(int count) {
  static const char* const kWords[] = {"no", "one", "two", "three", "four", "five", "six", "seven"};
  return count < 8 ? kWords[count] : std::to_string(count);
}

const SignalTrack& SignalAt(const SatelliteTrack& track, const StepTest& test, int place) {
  return track.signals[test.signal[static_cast<std::size_t>(place)]];
}

bool Slips(const Cycles& slip, int place) { return slip[static_cast<std::size_t>(place)] != 0; }

/// Mean over the signals once the slip is taken off, m.
double CommonPart(const SatelliteTrack& track, const StepTest& test, const Cycles& slip) {
  double sum = 0;
  for (int i = 0; i < test.count; ++i) {
    const auto place = static_cast<std::size_t>(i);
    sum += test.r[place] - slip[place] * SignalAt(track, test, i).wavelength_m;
  }
  return sum / test.count;
}

std::string OtherSignals(const SatelliteTrack& track, const StepTest& test, const Cycles& slip) {
  int count = 0;
  double largest = 0;
  const double common_m = test.free_range ? CommonPart(track, test, slip) : 0;
  for (int i = 0; i < test.count; ++i) {
    if (Slips(slip, i)) continue;
    ++count;
    const double off_m = std::fabs(test.r[static_cast<std::size_t>(i)] - common_m);
    largest = std::max(largest, off_m / SignalAt(track, test, i).wavelength_m);
  }
  if (count == 0) return "no other signal";
  const std::string others = count == 1 ? "the other signal" : "the other " + InWords(count) + " signals";
  return others + " within " + Fixed(largest, 2) + (largest > 1 ? " cycles" : " cycle");
}

std::string TestVector(const SatelliteTrack& track, const StepTest& test) {
  std::string text;
  text.reserve(kUsualLength);
  text += "phases off by";
  for (int i = 0; i < test.count; ++i) {
    const SignalTrack& s = SignalAt(track, test, i);
    const char name[] = {' ', s.code.band, s.code.attribute, ' '};
    text.append(name, sizeof name);
    text += Fixed(test.r[static_cast<std::size_t>(i)] / s.wavelength_m, 2);
  }
  text += " cycles";
  return text;
}

/// The wide lane that the slip changes and that is known best; without such a one the best known.
std::string WideLane(const WideLaneEvidence& wide_lanes, const Cycles& slip) {
  const WideLaneJump* best = nullptr;
  bool best_changes = false;
  for (int i = 0; i < wide_lanes.count; ++i) {
    const WideLaneJump& jump = wide_lanes.jumps[static_cast<std::size_t>(i)];
    const bool changes =
        slip[static_cast<std::size_t>(jump.first)] != slip[static_cast<std::size_t>(jump.second)];
    if (best != nullptr && (best_changes > changes || (best_changes == changes && jump.sigma >= best->sigma)))
      continue;
    best = &jump;
    best_changes = changes;
  }
  if (best == nullptr) return {};
  return "; wide lane " + Fixed(best->cycles, 1) + " +- " + Fixed(best->sigma, 1);
}

}  // namespace

std::string SlippedText(const std::vector<SignalCode>& signals, const std::vector<double>& cycles,
                        const char* verb) {
  std::string text;
  for (std::size_t i = 0; i < signals.size(); ++i) {
    if (i > 0) text += cycles[i] == cycles[i - 1] ? " " : " and ";
    text += NameOf(signals[i]);
    if (i + 1 < signals.size() && cycles[i + 1] == cycles[i]) continue;
    const bool first = std::all_of(cycles.begin(), cycles.begin() + static_cast<std::ptrdiff_t>(i),
                                   [&](double c) { return c == cycles[i]; });
    text += std::string(" ") + (first ? verb : "by") + " " + Cycles1(cycles[i]);
  }
  return text;
}

std::string EvidenceText(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                         const WideLaneEvidence& wide_lanes, const Cycles& slip) {
  bool slips = false;
  for (int i = 0; i < test.count; ++i) slips = slips || Slips(slip, i);
  if (slips) return OtherSignals(track, test, slip) + WideLane(wide_lanes, slip);
  const StepState& s = track.At(step);
  std::string text = TestVector(track, test);
  text += WideLane(wide_lanes, slip);
  text += "; range +- ";
  text += Fixed(s.range_scale_m, 3);
  text += " m, ionosphere +- ";
  text += Fixed(s.ionosphere_scale_m, 3);
  text += " m";
  return text;
}

}  // namespace orsolva_host::analysis
