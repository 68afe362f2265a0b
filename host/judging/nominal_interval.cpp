#include "host/judging/nominal_interval.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

#include "host/judging/run_error.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kEpochsForInterval = 600;
constexpr double kAgreement = 0.01;  // two intervals agree that differ by less than this part
constexpr std::size_t kMinSteps = 10;

/// How the steps between neighbouring epochs are spread; those of 0 are left out.
struct Steps {
  std::map<std::int64_t, std::size_t> counts;  ///< by length in ticks
  std::size_t total = 0;
};

constexpr double kTicksPerSecond = 1e4;

Steps StepsOf(const ObsEpoch_QC_gbt* epochs, std::size_t count) {
  constexpr double kLongest_s = 1e6;
  Steps steps;
  for (std::size_t i = 1; i < std::min(count, kEpochsForInterval); ++i) {
    const double difference = std::fabs(Difference(epochs[i].time, epochs[i - 1].time));
    const std::int64_t ticks = difference < kLongest_s ? std::llround(difference * kTicksPerSecond) : 0;
    if (ticks == 0) continue;
    ++steps.counts[ticks];
    ++steps.total;
  }
  return steps;
}

bool Agree(double a, double b) { return std::fabs(a - b) <= kAgreement * b; }

/// Whether the steps leave no doubt about the interval of the data.
bool AreSure(const Steps& steps, double interval_s) {
  std::size_t agreeing = 0;
  for (const auto& [ticks, count] : steps.counts) {
    if (Agree(static_cast<double>(ticks) / kTicksPerSecond, interval_s)) agreeing += count;
  }
  return steps.total >= kMinSteps && 2 * agreeing >= steps.total;
}

}  // namespace

std::optional<double> MostFrequentInterval(const ObsEpoch_QC_gbt* epochs, std::size_t count) {
  const Steps steps = StepsOf(epochs, count);
  const auto most = std::max_element(steps.counts.begin(), steps.counts.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  if (most == steps.counts.end()) return std::nullopt;
  return static_cast<double>(most->first) / kTicksPerSecond;
}

NominalInterval ChooseInterval(const JudgingSettings& settings, const EpochSource& source,
                               const ObsEpoch_QC_gbt* epochs, std::size_t count, Diagnostics& diagnostics) {
  if (settings.interval_s) return {*settings.interval_s, "option"};
  const std::optional<double> header = source.Header().interval_s;
  const std::optional<double> data = MostFrequentInterval(epochs, count);
  if (!header && !data) {
    throw RunError(source.Name() +
                   ": the interval is not in the header and cannot be found from the epochs. Give it with "
                   "--interval SECONDS.");
  }
  if (!header) return {*data, "data"};
  if (!data || Agree(*data, *header)) return {*header, "header"};
  const bool sure = AreSure(StepsOf(epochs, count), *data);
  diagnostics.Add(source.Name(), 0,
                  fmt::format("the header says an interval of {:g} s and the data have {:g} s; {} is used "
                              "unless --interval says otherwise",
                              *header, *data, sure ? "that of the data" : "the header's"));
  return sure ? NominalInterval{*data, "data"} : NominalInterval{*header, "header"};
}

}  // namespace orsolva_host
