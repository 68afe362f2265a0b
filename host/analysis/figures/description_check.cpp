#include "host/analysis/figures/description_check.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>

namespace orsolva_host::analysis {
namespace {

constexpr double kSameInterval = 0.01;
constexpr double kMinTolerance_s = 0.1;
constexpr double kNameTolerance_s = 60;
constexpr double kFarPosition_m = 50;
constexpr double kFarOneBandPosition_m = 100;
constexpr Count kMinEpochs = 3;
constexpr std::size_t kMarkerCharacters = 4;

std::string Decimal(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return text;
}

/// "30 s"
std::string SecondsText(double seconds) {
  char text[64];
  std::snprintf(text, sizeof text, "%.10g s", seconds);
  return text;
}

/// "2020-06-25 00:00:30", with milliseconds where they are not zero.
std::string TimeText(std::int64_t time_ns) {
  using namespace std::chrono;
  const auto time = sys_time<nanoseconds>(nanoseconds(time_ns));
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss<milliseconds> clock(floor<milliseconds>(time - day));
  char text[64];
  const auto fraction = static_cast<int>(clock.subseconds().count());
  const int length =
      std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                    static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                    static_cast<int>(clock.seconds().count()));
  std::string whole(text, static_cast<std::size_t>(length));
  return fraction == 0 ? whole : whole + Decimal(fraction / 1000.0, 3).substr(1);
}

std::string PositionText(const std::array<double, 3>& p) {
  return Decimal(p[0], 1) + " " + Decimal(p[1], 1) + " " + Decimal(p[2], 1) + " m";
}

std::int64_t Nanoseconds(double seconds) { return std::llround(seconds * 1e9); }

void CheckInterval(const char* id, const std::optional<double>& stated_s, double found_s,
                   std::vector<Contradiction>& found) {
  if (!stated_s || !(*stated_s > 0) || !(found_s > 0)) return;
  if (std::fabs(*stated_s - found_s) <= kSameInterval * found_s) return;
  found.push_back({id, SecondsText(*stated_s), SecondsText(found_s)});
}

void CheckTime(const char* id, const std::optional<std::int64_t>& stated_ns, std::int64_t found_ns,
               double interval_s, std::vector<Contradiction>& found) {
  if (!stated_ns) return;
  const double tolerance_s = std::max(interval_s / 2, kMinTolerance_s);
  if (std::fabs(SecondsBetween(*stated_ns, found_ns)) <= tolerance_s) return;
  found.push_back({id, TimeText(*stated_ns), TimeText(found_ns)});
}

void CheckNameTimes(const FileNameStatement& name, const SpanFigures& span,
                    std::vector<Contradiction>& found) {
  if (!name.begin_ns) return;
  const double tolerance_s = std::max(span.interval_s, kNameTolerance_s);
  const double begin_s = SecondsBetween(span.first_ns, *name.begin_ns);
  const double end_s = SecondsBetween(span.last_ns, *name.begin_ns);
  const bool late = name.period_s && begin_s > *name.period_s + tolerance_s;
  if (begin_s < -tolerance_s || late) {
    found.push_back({"file_name_start", TimeText(*name.begin_ns), TimeText(span.first_ns)});
  } else if (name.period_s && end_s > *name.period_s + tolerance_s) {
    const std::int64_t end_ns = *name.begin_ns + Nanoseconds(*name.period_s);
    found.push_back({"file_name_period", "until " + TimeText(end_ns), "until " + TimeText(span.last_ns)});
  }
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return upper;
}

void CheckMarker(const StationDescription& stated, std::vector<Contradiction>& found) {
  const std::string marker = UpperCase(stated.marker);
  if (marker.size() < kMarkerCharacters || stated.name.station.size() < kMarkerCharacters) return;
  if (marker == "UNKNOWN") return;
  const std::string station = UpperCase(stated.name.station.substr(0, kMarkerCharacters));
  if (marker.find(station) == std::string::npos) {
    found.push_back({"marker", stated.marker, stated.name.station + " in the file name"});
  }
}

void CheckPosition(const StationDescription& stated, const PositionFigures& position,
                   std::vector<Contradiction>& found) {
  if (!stated.position_m || !position.mean_m || !position.distance_to_header_m) return;
  const bool one_band = 2 * position.one_band_solutions.value_or(0) > position.solutions.value_or(0);
  if (*position.distance_to_header_m <= (one_band ? kFarOneBandPosition_m : kFarPosition_m)) return;
  found.push_back(
      {"position", PositionText(*stated.position_m),
       PositionText(*position.mean_m) + ", " + Decimal(*position.distance_to_header_m, 0) + " m away"});
}

}  // namespace

void DescriptionCheck::AddEpoch(const ObservationEpoch& epoch) {
  for (const SatelliteObservation& satellite : epoch.satellites) {
    if (satellite.id.system != 'R') continue;
    Learned& learned = channels_[satellite.id.number];
    if (learned.channel.Known()) continue;
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& o = epoch.signals[satellite.first_signal + i];
      if (o.code.band != '1' || !std::isfinite(o.pseudorange_m + o.phase_cycles)) continue;
      if (learned.code == SignalCode{}) learned.code = o.code;
      if (o.code == learned.code) learned.channel.Add(o.pseudorange_m, o.phase_cycles);
    }
  }
}

void DescriptionCheck::CheckChannels(const StationDescription& stated,
                                     std::vector<Contradiction>& found) const {
  for (const auto& [slot, learned] : channels_) {
    if (slot >= stated.glonass_channels.size() || !learned.channel.Known()) continue;
    const std::optional<int>& channel = stated.glonass_channels[slot];
    if (!channel || *channel == *learned.channel.Known()) continue;
    const std::string name = NameOf(SatelliteId{'R', slot}) + ": ";
    found.push_back({"glonass_channel", name + std::to_string(*channel),
                     name + std::to_string(*learned.channel.Known())});
  }
}

void DescriptionCheck::FillIn(const StationDescription& stated, AnalysisResult& result) const {
  std::vector<Contradiction>& found = result.contradictions;
  const SpanFigures& span = result.span;
  if (span.present_epochs.value_or(0) >= kMinEpochs) {
    CheckInterval("interval", stated.interval_s, span.interval_s, found);
    CheckInterval("file_name_interval", stated.name.interval_s, span.interval_s, found);
    CheckTime("first_epoch", stated.first_ns, span.first_ns, span.interval_s, found);
    CheckTime("last_epoch", stated.last_ns, span.last_ns, span.interval_s, found);
    CheckNameTimes(stated.name, span, found);
    CheckPosition(stated, result.position, found);
    CheckChannels(stated, found);
  }
  CheckMarker(stated, found);
  for (const DescriptionChange& change : stated.changes) {
    found.push_back({change.what + "_change", change.before, change.after});
  }
}

}  // namespace orsolva_host::analysis
