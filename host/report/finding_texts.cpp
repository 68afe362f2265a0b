#include "host/report/finding_texts.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/observation/observation_epoch.h"
#include "host/report/finding_limits.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {

std::string Many(Count count, std::string_view one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  const std::size_t shown = std::min(names.size(), kFindingLimits.most_names);
  for (std::size_t i = 0; i < shown; ++i) text += (i > 0 ? ", " : "") + names[i];
  return names.size() > shown ? text + fmt::format(" and {} more", names.size() - shown) : text;
}

std::vector<Tally> MostFirst(std::vector<Tally> tallies) {
  const auto none = [](const Tally& tally) { return tally.second == 0; };
  tallies.erase(std::remove_if(tallies.begin(), tallies.end(), none), tallies.end());
  std::stable_sort(tallies.begin(), tallies.end(),
                   [](const Tally& a, const Tally& b) { return a.second > b.second; });
  return tallies;
}

std::vector<std::string> NamesOf(const std::vector<Tally>& tallies) {
  std::vector<std::string> names;
  for (const Tally& tally : tallies) names.push_back(tally.first);
  return names;
}

std::string Counted(const std::vector<Tally>& tallies) {
  std::vector<std::string> names;
  for (const auto& [name, count] : tallies) names.push_back(fmt::format("{} ({})", name, count));
  return Listed(names);
}

std::string Metres(double value) { return fmt::format("{:.3f} m", value); }

std::string Distance(double metres) {
  constexpr double kKilometres = 1e4;
  return metres < kKilometres ? fmt::format("{:.0f} m", metres) : fmt::format("{:.0f} km", metres / 1000);
}

std::string Percent(double ratio) { return fmt::format("{:.2f} %", 100 * ratio); }

std::string Seconds(double seconds) { return fmt::format("{:g} s", seconds); }

std::string MomentText(std::int64_t time_ns) {
  const std::string text = TimeText(TimeOfNanoseconds(time_ns));
  const std::size_t zeros = text.find(".000");
  return zeros == std::string::npos ? text : text.substr(0, zeros);
}

std::string SystemText(char letter) {
  const int slot = SystemSlot(letter);
  if (slot >= 0) return kSystemTable[slot].name;
  return letter == 'S' ? "SBAS" : letter == 'I' ? "NavIC" : std::string(1, letter);
}

std::string NameOf(const analysis::SignalFigures& signal) {
  return std::string(1, signal.system) + " " + NameOf(signal.code);
}

Finding& AddFinding(std::vector<Finding>& findings, const char* id, const char* severity, std::string title,
                    std::string text) {
  findings.push_back({id, severity, std::move(title), std::move(text), {}, {}, {}});
  return findings.back();
}

}  // namespace orsolva_host
