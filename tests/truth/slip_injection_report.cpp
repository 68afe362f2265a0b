// Prints how many injected slips the detector finds, by kind, elevation and system.
//
// slip_injection_report FOLDER SET [seed=N] [runs=N] [step=N] [bands=1|2] [storm] [nonav] [spacing=N]
// [holes=N] [misses=N] slip_injection_report FOLDER SET events     the events of the file itself, as CSV SET
// is esbc, sept078, gras or kms3, or OBS,NAV,... of other files in FOLDER.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"
#include "tests/truth/slip_injection.h"

namespace {

using namespace orsolva_truth;
using orsolva_host::NameOf;

struct Request {
  InjectionPlan plan;
  int runs = 1;
  std::size_t step = 1;
  int bands = 0;
  int misses = 0;
  bool storm = false;
  bool no_navigation = false;
  bool events = false;
};

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ',') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

std::string FilesOf(const std::string& set) {
  if (set == "esbc") return "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz,ESBC00DNK_R_20201770000_01D_MN.rnx.gz";
  if (set == "sept078") return "SEPT078M.21O,SEPT078M.21P";
  if (set == "gras") return "GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz";
  if (set == "kms3") return "KMS300DNK_R_20221591000_01H_30S_MO.crx,KMS300DNK_R_20221591000_01H_MN.rnx.gz";
  return set;
}

Request Parse(int count, char** words) {
  Request request;
  for (int i = 3; i < count; ++i) {
    const std::string word = words[i];
    const std::size_t equals = word.find('=');
    const int value = equals == std::string::npos ? 0 : std::atoi(word.c_str() + equals + 1);
    const std::string key = word.substr(0, equals);
    if (key == "seed") request.plan.seed = static_cast<std::uint64_t>(value);
    if (key == "runs") request.runs = value;
    if (key == "step") request.step = static_cast<std::size_t>(value);
    if (key == "bands") request.bands = value;
    if (key == "misses") request.misses = value;
    if (key == "holes") request.plan.hole_epochs = static_cast<std::size_t>(value);
    if (key == "spacing") request.plan.spacing_steps = value;
    if (key == "storm") request.storm = true;
    if (key == "nonav") request.no_navigation = true;
    if (key == "events") request.events = true;
  }
  return request;
}

std::string ElevationBin(const InjectedSlip& slip) {
  if (std::isnan(slip.elevation_deg)) return "no elevation";
  if (slip.elevation_deg < 10) return "05-10 deg";
  if (slip.elevation_deg < 20) return "10-20 deg";
  return slip.elevation_deg < 40 ? "20-40 deg" : "40-90 deg";
}

std::string Target(const InjectedSlip& slip) {
  const bool low = slip.elevation_deg < 10;
  return std::string(slip.whole ? "whole" : "half") + (slip.bands > 1 ? ", 2 bands and more" : ", one band") +
         (low ? ", 5-10 deg" : ", from 10 deg");
}

/// Whether every band slips by the same number of cycles.
bool IsEqualOnAll(const InjectedSlip& slip) {
  std::set<char> bands;
  for (const auto code : slip.signals) bands.insert(code.band);
  return static_cast<int>(bands.size()) == slip.bands &&
         std::all_of(slip.sizes.begin(), slip.sizes.end(), [&](double z) { return z == slip.sizes[0]; });
}

/// Whole cycles on satellites of two bands and more: those that only the ionosphere-free phase shows apart.
std::string Equality(const InjectedSlip& slip) {
  return IsEqualOnAll(slip) ? "equal on all bands" : "all but equal on all bands";
}

/// Ends of the 95 % interval of a rate (Wilson 1927, JASA 22:209), per cent.
struct Interval {
  double from, to;
};

Interval Wilson(int right, int all) {
  constexpr double z = 1.959964, z2 = z * z;
  const double n = all, p = right / n;
  const double middle = p + z2 / (2 * n), half = z * std::sqrt(p * (1 - p) / n + z2 / (4 * n * n));
  const double scale = 100 / (1 + z2 / n);
  return {std::max(scale * (middle - half), 0.0), std::min(scale * (middle + half), 100.0)};
}

/// One row of a table in Markdown, "right" with signals and sizes, and its interval.
void Table(const char* title, const std::vector<InjectedSlip>& slips,
           const std::function<std::string(const InjectedSlip&)>& key) {
  struct Row {
    int slips = 0, found = 0, right = 0, sure_and_wrong = 0;
  };
  std::map<std::string, Row> rows;
  for (const InjectedSlip& slip : slips) {
    Row& row = rows[key(slip)];
    ++row.slips;
    row.found += slip.found;
    row.right += slip.size_right;
    row.sure_and_wrong += slip.sure_and_wrong;
  }
  std::printf(
      "\n| %s | injected | missed | found %% | right %% | 95 %% interval of right | sure and wrong %% |\n",
      title);
  std::printf("|---|---|---|---|---|---|---|\n");
  for (const auto& [name, row] : rows) {
    const Interval interval = Wilson(row.right, row.slips);
    std::printf("| %s | %d | %d | %.2f | %.2f | %.2f-%.2f | %.2f |\n", name.c_str(), row.slips,
                row.slips - row.found, 100.0 * row.found / row.slips, 100.0 * row.right / row.slips,
                interval.from, interval.to, 100.0 * row.sure_and_wrong / row.slips);
  }
}

/// How many of those that are missed lie in steps that the report calls weakly tested.
void WeakTable(const std::vector<InjectedSlip>& slips, std::int64_t tested, std::int64_t weak) {
  struct Row {
    int slips = 0, weak = 0, missed = 0, missed_weak = 0;
  };
  std::map<std::string, Row> rows;
  for (const InjectedSlip& slip : slips) {
    Row& row = rows[Target(slip) + (slip.whole && slip.bands > 1 ? ", " + Equality(slip) : "")];
    ++row.slips;
    row.weak += slip.weakly_tested;
    row.missed += !slip.found;
    row.missed_weak += !slip.found && slip.weakly_tested;
  }
  std::printf("\nOf the tested steps %lld, %.1f %%, are weakly tested.\n", static_cast<long long>(weak),
              100.0 * static_cast<double>(weak) / static_cast<double>(tested));
  std::printf("\n| weakly tested | injected | in such steps | missed | of these in such steps | %% |\n");
  std::printf("|---|---|---|---|---|---|\n");
  for (const auto& [name, row] : rows) {
    std::printf("| %s | %d | %d | %d | %d | %.1f |\n", name.c_str(), row.slips, row.weak, row.missed,
                row.missed_weak, row.missed > 0 ? 100.0 * row.missed_weak / row.missed : 100.0);
  }
}

void PrintEvents(const InjectionData& data) {
  std::printf(
      "time_gpst,satellite,elevation_deg,kind,signals,size_cycles,sure,score,margin,gap_s,loss_of_lock,"
      "evidence\n");
  for (const auto& event : RunDetector(data).events) {
    std::string signals, sizes;
    for (const auto code : event.signals) signals += (signals.empty() ? "" : " ") + NameOf(code);
    for (const double size : event.sizes) {
      char text[40];
      std::snprintf(text, sizeof text, "%s%g", sizes.empty() ? "" : " ", size);
      sizes += text;
    }
    const Time_gbt time = {event.time_ns / 1000000000,
                           static_cast<double>(event.time_ns % 1000000000) * 1e-9};
    std::printf("%s,%s,%.1f,%s,%s,%s,%d,%.1f,%.1f,%g,%d,%s\n", orsolva_host::TimeText(time).c_str(),
                NameOf(event.satellite).c_str(), event.elevation_deg,
                orsolva_host::analysis::NameOf(event.kind), signals.c_str(), sizes.c_str(), event.sure,
                event.score, event.margin, event.gap_s, event.loss_of_lock, event.evidence.c_str());
  }
}

void PrintMisses(const std::vector<InjectedSlip>& slips, int most) {
  for (const InjectedSlip& slip : slips) {
    if (slip.size_right || most-- <= 0) continue;
    std::string sizes;
    for (std::size_t i = 0; i < slip.signals.size(); ++i) {
      char text[40];
      std::snprintf(text, sizeof text, " %s %g", NameOf(slip.signals[i]).c_str(), slip.sizes[i]);
      sizes += text;
    }
    const Time_gbt time = {slip.time_ns / 1000000000, 0};
    std::printf("%s %s %s el %.1f, %s,%s: %s\n", slip.found ? "wrong " : "missed",
                NameOf(slip.satellite).c_str(), orsolva_host::TimeText(time).c_str(), slip.elevation_deg,
                slip.kind.c_str(), sizes.c_str(), slip.answer.c_str());
  }
}

/// Those of unknown elevation too.
std::vector<InjectedSlip> FromTenDegrees(const std::vector<InjectedSlip>& slips) {
  std::vector<InjectedSlip> kept;
  for (const InjectedSlip& slip : slips) {
    if (!(slip.elevation_deg < 10)) kept.push_back(slip);
  }
  return kept;
}

std::vector<InjectedSlip> WholeOnSeveralBands(const std::vector<InjectedSlip>& slips) {
  std::vector<InjectedSlip> kept;
  for (const InjectedSlip& slip : slips) {
    if (slip.whole && slip.bands > 1 && !slip.signals.empty()) kept.push_back(slip);
  }
  return kept;
}

int Run(const std::string& folder, const std::string& set, const Request& request) {
  std::vector<std::string> files = Split(FilesOf(set));
  for (std::string& file : files) file = folder + "/" + file;
  InjectionData data = LoadData(set, files[0], {files.begin() + 1, files.end()});
  if (request.no_navigation) data.records = {};
  if (request.step > 1) Decimate(data, request.step);
  if (request.bands > 0) LimitBands(data, request.bands);
  if (request.storm) std::printf("%s\n", AddStorm(data, request.plan.seed).c_str());
  if (request.events) {
    PrintEvents(data);
    return 0;
  }
  std::vector<InjectedSlip> slips;
  std::vector<orsolva_host::analysis::Event> fresh;
  std::int64_t tested = 0, weak = 0, of_the_file = 0;
  for (int run = 0; run < request.runs; ++run) {
    InjectionPlan plan = request.plan;
    plan.seed += static_cast<std::uint64_t>(run);
    const InjectionResult result = Inject(data, plan);
    slips.insert(slips.end(), result.slips.begin(), result.slips.end());
    fresh.insert(fresh.end(), result.fresh.begin(), result.fresh.end());
    tested += result.tested_steps;
    weak += result.weakly_tested_steps;
    of_the_file = result.base_slips;
  }
  const auto missed = std::count_if(slips.begin(), slips.end(), [](const auto& s) { return !s.found; });
  std::printf(
      "Seeds %llu to %llu: %lld tested steps, %zu slips injected, %lld missed, %zu new false alarms; the "
      "file "
      "itself has %lld slips.\n",
      static_cast<unsigned long long>(request.plan.seed),
      static_cast<unsigned long long>(request.plan.seed) + static_cast<unsigned long long>(request.runs) - 1,
      static_cast<long long>(tested), slips.size(), static_cast<long long>(missed), fresh.size(),
      static_cast<long long>(of_the_file));
  const auto open = std::count_if(slips.begin(), slips.end(), [](const auto& s) { return s.left_open; });
  if (request.plan.hole_epochs > 0)
    std::printf("Of the %lld that are missed %lld are reported as unresolved.\n",
                static_cast<long long>(missed), static_cast<long long>(open));
  Table("target", slips, Target);
  if (request.storm) WeakTable(slips, tested, weak);
  Table("whole, 2 bands and more, from 10 degrees", WholeOnSeveralBands(FromTenDegrees(slips)), Equality);
  Table("kind, from 10 degrees", FromTenDegrees(slips),
        [](const InjectedSlip& s) { return s.kind + (s.bands == 1 ? " (one-band satellite)" : ""); });
  Table("system", slips, [](const InjectedSlip& s) { return std::string(1, s.satellite.system); });
  Table("elevation", slips, ElevationBin);
  PrintMisses(slips, request.misses);
  for (std::size_t i = 0; i < fresh.size() && i < static_cast<std::size_t>(request.misses); ++i) {
    const Time_gbt time = {fresh[i].time_ns / 1000000000, 0};
    std::printf("false  %s %s %s\n", orsolva_host::TimeText(time).c_str(), Described(fresh[i]).c_str(),
                fresh[i].evidence.c_str());
  }
  return 0;
}

}  // namespace

int main(int count, char** words) {
  if (count < 3) {
    std::fprintf(
        stderr,
        "usage: slip_injection_report FOLDER SET [seed=N] [runs=N] [step=N] [bands=1|2] [storm] [nonav] "
        "[spacing=N] [holes=N] [misses=N] [events]\n");
    return 2;
  }
  try {
    return Run(words[1], words[2], Parse(count, words));
  } catch (const orsolva_host::FileError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
