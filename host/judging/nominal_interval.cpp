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
constexpr double kAgreement = 0.01;  // header and data differ by less than this part of the header's

}  // namespace

std::optional<double> MostFrequentInterval(const ObsEpoch_QC_gbt* epochs, std::size_t count) {
  constexpr double kTicksPerSecond = 1e4;
  constexpr double kLongest_s = 1e6;
  std::map<std::int64_t, int> counts;
  for (std::size_t i = 1; i < std::min(count, kEpochsForInterval); ++i) {
    const double difference = std::fabs(Difference(epochs[i].time, epochs[i - 1].time));
    if (difference < kLongest_s) ++counts[std::llround(difference * kTicksPerSecond)];
  }
  counts.erase(0);
  const auto most = std::max_element(counts.begin(), counts.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  if (most == counts.end()) return std::nullopt;
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
  if (data && std::fabs(*data - *header) > kAgreement * *header) {
    diagnostics.Add(source.Name(), 0,
                    fmt::format("the header says an interval of {:g} s and the data have {:g} s; the "
                                "header's is used unless --interval says otherwise",
                                *header, *data));
  }
  return {*header, "header"};
}

}  // namespace orsolva_host
