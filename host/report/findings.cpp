#include "host/report/findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "host/report/finding_limits.h"
#include "host/report/headline.h"
#include "host/report/median.h"
#include "host/report/run_events.h"

namespace orsolva_host {
namespace {

/// "1 slip", "3 slips"
std::string Many(Count count, std::string_view one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

/// "C01, G05 and 3 more"
std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  const std::size_t shown = std::min(names.size(), kFindingLimits.most_names);
  for (std::size_t i = 0; i < shown; ++i) text += (i > 0 ? ", " : "") + names[i];
  return names.size() > shown ? text + fmt::format(" and {} more", names.size() - shown) : text;
}

std::string Metres(double value) { return fmt::format("{:.3f} m", value); }
std::string Percent(double ratio) { return fmt::format("{:.2f} %", 100 * ratio); }
std::string NameOf(const SignalReport& s) { return fmt::format("{} {}", s.letter, s.signal); }

/// A satellite and how often something happened to it.
using Tally = std::pair<std::string, Count>;

/// The satellites with any, the most frequent first, in the order of satellites where equal.
std::vector<Tally> TalliesOf(const RunEvents& events, Count (*count)(const SatelliteEvents&)) {
  std::vector<Tally> tallies;
  for (const SatelliteEvents& satellite : events.satellites) {
    if (count(satellite) > 0) tallies.emplace_back(satellite.name, count(satellite));
  }
  std::stable_sort(tallies.begin(), tallies.end(),
                   [](const Tally& a, const Tally& b) { return a.second > b.second; });
  return tallies;
}

std::vector<std::string> NamesOf(const std::vector<Tally>& tallies) {
  std::vector<std::string> names;
  for (const Tally& tally : tallies) names.push_back(tally.first);
  return names;
}

/// "G05 (3), E12 (1)"
std::string Counted(const std::vector<Tally>& tallies) {
  std::vector<std::string> names;
  for (const auto& [name, count] : tallies) names.push_back(fmt::format("{} ({})", name, count));
  return Listed(names);
}

class Finder {
 public:
  Finder(const Report& report, const RunEvents* events) : report_(report), events_(events) {}

  std::vector<Finding> All() {
    Damage();
    if (report_.run.library_absence) {
      NoLibraryFigures(*report_.run.library_absence);
    } else {
      NotJudged();
      NothingJudged();
      NoCompleteness();
    }
    Position();
    LostEpochs();
    if (events_ != nullptr) {
      ReceiverSlips();
      GapsInView();
      SatelliteSlips();
      CodeJumps();
      NoSlips();
    }
    WorstMultipath();
    LeastComplete();
    // What is in order comes last.
    std::stable_partition(found_.begin(), found_.end(),
                          [](const Finding& f) { return f.severity != "good"; });
    return std::move(found_);
  }

 private:
  Finding& Add(const char* id, const char* severity, std::string title, std::string text) {
    found_.push_back({id, severity, std::move(title), std::move(text), {}, {}, {}});
    return found_.back();
  }

  bool IsNothingJudged() const {
    const std::optional<Count>& judged = report_.headline.satellites_judged;
    return judged ? *judged == 0 : report_.signals.empty();
  }

  void Damage() {
    if (report_.read_error.empty()) return;
    Add("damaged", "warning", "Damaged file", report_.read_error + " The report covers what precedes it.");
  }

  void NoLibraryFigures(const LibraryAbsence& absence) {
    const bool navigation = absence.id == "no-navigation";
    Add(absence.id.c_str(), "warning", navigation ? "No broadcast records" : "Not judged by the library",
        absence.text);
  }

  void NotJudged();
  void NothingJudged();

  void NoCompleteness() {
    if (report_.headline.completeness || IsNothingJudged()) return;
    const bool strengths = std::any_of(report_.signals.begin(), report_.signals.end(),
                                       [](const SignalReport& s) { return s.snr_dbhz.has_value(); });
    Add("no-completeness", "warning", "No completeness",
        strengths || report_.signals.empty()
            ? "No system counts complete observations."
            : "The file has no signal strengths (S), without which no observation counts as complete.");
  }

  void Position() {
    const std::optional<double> distance_m = report_.run.distance_from_header_m;
    if (!distance_m || *distance_m <= kFindingLimits.far_from_header_m) return;
    Add("position-far", "warning", fmt::format("Position {:.0f} m from the header's", *distance_m),
        "The header's approximate position, or the one used here, is wrong.")
        .figures = {{"distance_from_header_position_m", *distance_m}};
  }

  void LostEpochs() {
    const std::int64_t lost = report_.run.lost_epochs.value_or(0);
    if (lost <= 0) return;
    std::vector<std::string> times;
    if (events_ != nullptr) {
      for (const EpochSpan& hole : events_->holes) times.push_back(events_->Clock(hole.first));
    }
    Add("lost-epochs", "warning", Many(static_cast<Count>(lost), "epoch") + " lost",
        times.empty() ? "" : fmt::format("Gaps begin at {}.", Listed(times)))
        .figures = {{"lost_epochs", static_cast<double>(lost)}};
  }

  void ReceiverSlips() {
    if (events_->receiver_epochs.empty()) return;
    std::vector<std::string> times;
    for (const EpochIndex epoch : events_->receiver_epochs) times.push_back(events_->Clock(epoch));
    Add("receiver-slips", "warning", "Slips of the whole receiver",
        fmt::format("Many satellites slipped at once at {}: look for an outage or a reset.", Listed(times)))
        .figures = {{"receiver_slip_epochs", static_cast<double>(times.size())}};
  }

  void GapsInView() {
    const auto gaps = TalliesOf(*events_, [](const SatelliteEvents& s) { return Count{s.gaps.size()}; });
    if (gaps.empty()) return;
    const Count total = report_.headline.gaps_in_view.value_or(0);
    Finding& finding = Add("gaps-in-view", "warning", Many(total, "gap") + " while in view",
                           fmt::format("Single satellites were lost above the cut-off: {}.", Counted(gaps)));
    finding.figures = {{"gaps_in_view", static_cast<double>(total)}};
    finding.satellites = NamesOf(gaps);
  }

  void SatelliteSlips();

  void CodeJumps() {
    const auto jumps = TalliesOf(*events_, [](const SatelliteEvents& s) { return s.code_jumps; });
    if (jumps.empty()) return;
    const Count total = report_.headline.code_jumps.value_or(0);
    Finding& finding =
        Add("code-jumps", "warning", Many(total, "code jump"),
            fmt::format("The multipath combination departed from its running mean on {}.", Counted(jumps)));
    finding.figures = {{"code_jumps", static_cast<double>(total)}};
    finding.satellites = NamesOf(jumps);
  }

  void NoSlips() {
    const Headline& h = report_.headline;
    if (h.geometry_free_slips != Count{0} || h.code_jumps != Count{0} || h.receiver_slip_epochs != Count{0}) {
      return;
    }
    if (IsNothingJudged()) return;
    Add("no-slips", "good", "No slips", "No slip of the geometry-free phase and no code jump was found.");
  }

  void WorstMultipath();
  void LeastComplete();

  const Report& report_;
  const RunEvents* events_;
  std::vector<Finding> found_;
};

void Finder::NotJudged() {
  std::vector<std::string> names, no_record, unhealthy, other;
  for (const NavigationCoverage& row : report_.run.navigation_coverage) {
    const std::string state = StateOf(report_, row);
    if (state == "judged" || state == "excluded" || state == "below_cutoff") continue;
    names.push_back(row.satellite);
    (state == "no_record" ? no_record : state == "unhealthy" ? unhealthy : other).push_back(row.satellite);
  }
  if (names.empty()) return;
  std::string text;
  const auto say = [&text](const char* why, const std::vector<std::string>& list) {
    if (!list.empty()) text += (text.empty() ? "" : " ") + fmt::format("{}: {}.", why, Listed(list));
  };
  say("No broadcast record", no_record);
  say("Unhealthy", unhealthy);
  say("No record of their time, or no known kind of orbit", other);
  const auto observed = report_.run.navigation_coverage.size();
  Finding& finding = Add("not-judged", "warning",
                         fmt::format("{} of {} satellites not judged", names.size(), observed), text);
  finding.figures = {
      {"satellites_observed", static_cast<double>(observed)},
      {"satellites_judged", static_cast<double>(report_.headline.satellites_judged.value_or(0))}};
  finding.satellites = names;
}

void Finder::NothingJudged() {
  if (!IsNothingJudged()) return;
  const Headline& h = report_.headline;
  std::string why;
  const auto say = [&why](const std::optional<Count>& count, const char* what) {
    if (count.value_or(0) > 0) why += fmt::format("{}{} {}", why.empty() ? ": " : ", ", *count, what);
  };
  say(h.satellites_excluded, "excluded");
  say(h.satellites_unhealthy, "unhealthy");
  say(h.satellites_without_record, "without record");
  say(h.satellites_without_position, "without position");
  say(h.satellites_below_cutoff, "below the cut-off");
  if (h.satellites_observed.value_or(0) == 0) {
    Add("nothing-judged", "warning", "Nothing judged", "No satellite of the systems chosen was observed.");
    return;
  }
  Add("nothing-judged", "warning", "Nothing judged",
      fmt::format("None of the satellites observed was judged{}.", why))
      .figures = {{"satellites_observed", static_cast<double>(*h.satellites_observed)},
                  {"satellites_judged", static_cast<double>(h.satellites_judged.value_or(0))}};
}

void Finder::SatelliteSlips() {
  const auto slips = TalliesOf(*events_, [](const SatelliteEvents& s) { return s.geometry_free_slips; });
  if (slips.empty()) return;
  const Count most = slips.front().second;
  const auto next =
      std::find_if(slips.begin(), slips.end(), [most](const Tally& tally) { return tally.second < most; });
  const std::vector<Tally> first(slips.begin(), next), rest(next, slips.end());
  const std::vector<std::string> names = NamesOf(first);
  constexpr std::size_t kInTitle = 3;
  Finding& finding =
      Add("satellite-slips", "warning",
          "Most slips: " + (names.size() > kInTitle ? Many(names.size(), "satellite") : Listed(names)),
          fmt::format("{} of the geometry-free phase{}.{}", Many(most, "slip"),
                      names.size() > 1 ? " each: " + Listed(names) : "",
                      rest.empty() ? "" : " Then " + Counted(rest) + "."));
  finding.figures = {
      {"geometry_free_slips", static_cast<double>(report_.headline.geometry_free_slips.value_or(0))}};
  finding.satellites = NamesOf(slips);
}

void Finder::WorstMultipath() {
  const SignalReport* worst = nullptr;
  std::vector<double> all;
  for (const SignalReport& s : report_.signals) {
    if (!s.mp_m) continue;
    all.push_back(*s.mp_m);
    if (worst == nullptr || *s.mp_m > *worst->mp_m) worst = &s;
  }
  if (worst == nullptr) return;
  Finding& finding = Add("worst-multipath", "info", "Worst multipath: " + NameOf(*worst),
                         fmt::format("RMS {} on {}; the median of all signals is {}.", Metres(*worst->mp_m),
                                     worst->band.empty() ? "its band" : worst->band, Metres(MedianOf(all))));
  finding.figures = {{"mp_rms_m", *worst->mp_m}};
  finding.signal = NameOf(*worst);
}

void Finder::LeastComplete() {
  const SignalReport* worst = nullptr;
  for (const SignalReport& s : report_.signals) {
    if (s.completeness && (worst == nullptr || *s.completeness < *worst->completeness)) worst = &s;
  }
  if (worst == nullptr) return;
  const Count expected = worst->expected.value_or(0), observed = worst->observed.value_or(0);
  if (observed >= expected) {
    Add("nothing-missing", "good", "Nothing missing", "Every signal was observed whenever it was expected.");
    return;
  }
  Finding& finding = Add("least-complete", "info", "Least complete: " + NameOf(*worst),
                         fmt::format("{} of the expected epochs; {} are missing.",
                                     Percent(*worst->completeness), expected - observed));
  finding.figures = {{"completeness_ratio", *worst->completeness}};
  finding.signal = NameOf(*worst);
}

}  // namespace

std::vector<Finding> FindingsOf(const Report& report, const RunEvents* events) {
  return Finder(report, events).All();
}

}  // namespace orsolva_host
