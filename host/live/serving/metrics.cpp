#include "host/live/serving/metrics.h"

#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "host/live/serving/state_json.h"
#include "orsolva/version.h"

namespace orsolva_host::live {
namespace {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;
using Label = ClientMetric::Label;

constexpr double kSecondsPerMicrosecond = 1e-6;

/// A family while the values of one station are added.
class Values {
 public:
  Values(MetricFamily& family, std::string station) : family_(family), station_(std::move(station)) {}

  void Add(double value, std::vector<Label> labels = {}) {
    ClientMetric& metric = New(std::move(labels));
    (family_.type == MetricType::Counter ? metric.counter.value : metric.gauge.value) = value;
  }
  void Add(Count value, std::vector<Label> labels = {}) {
    Add(static_cast<double>(value), std::move(labels));
  }
  void Add(const std::optional<double>& value, std::vector<Label> labels = {}) {
    if (value) Add(*value, std::move(labels));
  }

  void AddHistogram(const LatencyHistogram& latency) {
    ClientMetric::Histogram& histogram = New({}).histogram;
    for (std::size_t i = 0; i < latency.counts.size(); ++i) {
      histogram.sample_count += latency.counts[i];
      const double upper = i < LatencyHistogram::kUpper_s.size() ? LatencyHistogram::kUpper_s[i]
                                                                 : std::numeric_limits<double>::infinity();
      histogram.bucket.push_back({histogram.sample_count, upper});
    }
    histogram.sample_sum = latency.sum_s;
  }

 private:
  ClientMetric& New(std::vector<Label> labels) {
    ClientMetric& metric = family_.metric.emplace_back();
    metric.label.push_back({"station", station_});
    for (Label& label : labels) metric.label.push_back(std::move(label));
    return metric;
  }

  MetricFamily& family_;
  const std::string station_;
};

struct FamilyRow {
  const char* name;
  MetricType type;
  const char* help;
  void (*add)(const StationState& station, Values& values);
};

Label SystemLabel(char system) { return {"system", std::string(1, system)}; }

/// A total of every signal.
template <Count SignalSums::*Member>
void AddTotals(const StationState& station, Values& values) {
  for (const auto& [key, totals] : station.totals) {
    values.Add(totals.sums.*Member, {SystemLabel(key.system), {"signal", key.signal}});
  }
}

/// What a system's state holds.
template <typename Get>
void AddSystems(const StationState& station, Values& values, const Get& get) {
  for (const auto& [letter, system] : station.systems) values.Add(get(system), {SystemLabel(letter)});
}

const char* WindowName(std::int64_t length_s) {
  if (length_s == 60) return "1m";
  return length_s == 3600 ? "1h" : "24h";
}

void AddSnr(const StationState& station, Values& values) {
  for (const auto& [key, sums] : station.windows[0].sums.signals) {
    values.Add(sums.SnrLowDbhz(), {SystemLabel(key.system), {"signal", key.signal}, {"elevation", "low"}});
    values.Add(sums.SnrHighDbhz(), {SystemLabel(key.system), {"signal", key.signal}, {"elevation", "high"}});
  }
}

void AddMultipath(const StationState& station, Values& values) {
  for (const Window& window : station.windows) {
    if (window.length_s == 60) continue;  // too few values for a figure worth keeping
    for (const auto& [key, sums] : window.sums.signals) {
      values.Add(sums.MultipathM(),
                 {SystemLabel(key.system), {"signal", key.signal}, {"window", WindowName(window.length_s)}});
    }
  }
}

void AddAlarms(const StationState& station, Values& values) {
  for (const std::string& kind : kAlarmKinds) {
    double level = 0;
    for (const Alarm& alarm : station.alarms) {
      if (alarm.kind == kind) level = std::max(level, alarm.severity == Severity::kBad ? 2.0 : 1.0);
    }
    values.Add(level, {{"kind", kind}});
  }
}

void AddMessages(const StationState& station, Values& values) {
  for (const auto& [type, message] : station.messages) {
    values.Add(message.total, {{"type", std::to_string(type)}});
  }
}

void AddLatency(const StationState& station, Values& values) {
  if (!station.replay) values.AddHistogram(station.latency);
}

std::optional<double> SecondsPerEpoch(const StationState& station) {
  if (!station.judging_us_per_epoch) return std::nullopt;
  return *station.judging_us_per_epoch * kSecondsPerMicrosecond;
}

using S = const StationState&;
using V = Values&;
constexpr MetricType kCounter = MetricType::Counter;
constexpr MetricType kGauge = MetricType::Gauge;

const FamilyRow kFamilies[] = {
    {"orsolva_stream_connected", kGauge, "Whether the stream is connected: 1 or 0.",
     [](S s, V v) { v.Add(s.connected ? 1.0 : 0.0); }},
    {"orsolva_stream_connections_total", kCounter, "Connections established.",
     [](S s, V v) { v.Add(s.connections_total); }},
    {"orsolva_stream_bytes_total", kCounter, "Bytes received.", [](S s, V v) { v.Add(s.bytes_total); }},
    {"orsolva_stream_skipped_bytes_total", kCounter, "Bytes received that belong to no frame.",
     [](S s, V v) { v.Add(s.skipped_bytes_total); }},
    {"orsolva_rtcm_messages_total", kCounter, "RTCM 3 messages with a correct CRC, by type.", AddMessages},
    {"orsolva_rtcm_crc_errors_total", kCounter, "Wrong CRCs where a frame had to begin.",
     [](S s, V v) { v.Add(s.crc_errors_total); }},
    {"orsolva_epochs_total", kCounter, "Epochs judged, each once.", [](S s, V v) { v.Add(s.epochs_total); }},
    {"orsolva_epochs_lost_total", kCounter, "Nominal epochs that did not come.",
     [](S s, V v) { v.Add(s.epochs_lost_total); }},
    {"orsolva_epochs_dropped_total", kCounter, "Epochs that came twice or behind in time.",
     [](S s, V v) { v.Add(s.epochs_dropped_total); }},
    {"orsolva_latency_seconds", MetricType::Histogram,
     "From the time of an epoch to its arrival, by the host's clock.", AddLatency},
    {"orsolva_satellites", kGauge, "Satellites in the latest epoch.",
     [](S s, V v) {
       AddSystems(s, v, [](const SystemState& y) { return static_cast<double>(y.observed); });
     }},
    {"orsolva_satellites_expected", kGauge, "Healthy satellites above the cut-off in the latest epoch.",
     [](S s, V v) {
       AddSystems(s, v, [](const SystemState& y) {
         return y.expected ? std::optional<double>(*y.expected) : std::nullopt;
       });
     }},
    {"orsolva_ephemeris_age_seconds", kGauge, "Since an ephemeris of the system was received.",
     [](S s, V v) { AddSystems(s, v, [](const SystemState& y) { return y.ephemeris_age_s; }); }},
    {"orsolva_observations_expected_total", kCounter,
     "Nominal epochs times healthy satellites above the cut-off that transmit the signal.",
     AddTotals<&SignalSums::expected>},
    {"orsolva_observations_total", kCounter,
     "Those of the expected observations that came with code and phase.", AddTotals<&SignalSums::observed>},
    {"orsolva_slips_total", kCounter, "Cycle slips detected with the signal.", AddTotals<&SignalSums::slips>},
    {"orsolva_jumps_total", kCounter, "Breaks of the phase by an unknown size.",
     AddTotals<&SignalSums::jumps>},
    {"orsolva_lock_losses_total", kCounter, "Losses of lock that the receiver flags.",
     AddTotals<&SignalSums::lock_losses>},
    {"orsolva_snr_dbhz", kGauge,
     "Mean C/N0 of the last minute, below 30 degrees of elevation and from there on.", AddSnr},
    {"orsolva_multipath_rms_meters", kGauge,
     "RMS of code multipath above the cut-off, about a moving mean of 630 s.", AddMultipath},
    {"orsolva_alarm", kGauge, "0: not raised; 1: a warning; 2: bad.", AddAlarms},
    {"orsolva_judging_seconds_per_epoch", kGauge, "Processor time of an epoch, mean of the last minute.",
     [](S s, V v) { v.Add(SecondsPerEpoch(s)); }},
};

MetricFamily BuildInfo() {
  ClientMetric metric;
  metric.label = {{"version", ORSOLVA_VERSION_STRING}};
  metric.gauge.value = 1;
  return {"orsolva_build_info", "The version that runs.", kGauge, {metric}};
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// "# TYPE name_total counter" without "_total", other lines as they are.
std::string FamilyLine(const std::string& line) {
  const std::string total = "_total";
  const std::size_t from = std::string_view("# HELP ").size();
  const std::size_t end = line.find(' ', from);
  if (line.rfind("# ", 0) != 0 || end == std::string::npos) return line;
  if (!EndsWith(std::string_view(line).substr(from, end - from), total)) return line;
  return line.substr(0, end - total.size()) + line.substr(end);
}

}  // namespace

const char* const kPlainMetricsType = "text/plain; version=0.0.4; charset=utf-8";
const char* const kOpenMetricsType = "application/openmetrics-text; version=1.0.0; charset=utf-8";

std::string MetricsText(const std::vector<LiveBoard::StatePointer>& stations) {
  std::vector<MetricFamily> families = {BuildInfo()};
  for (const FamilyRow& row : kFamilies) {
    MetricFamily family = {row.name, row.help, row.type, {}};
    for (const auto& station : stations) {
      Values values(family, ValidUtf8(station->name));
      row.add(*station, values);
    }
    if (!family.metric.empty()) families.push_back(std::move(family));
  }
  std::ostringstream text;
  prometheus::TextSerializer().Serialize(text, families);
  return text.str();
}

std::string OpenMetricsText(const std::string& plain) {
  std::istringstream lines(plain);
  std::string text;
  for (std::string line; std::getline(lines, line);) text += FamilyLine(line) + "\n";
  return text + "# EOF\n";
}

bool WantsOpenMetrics(const std::string& accept) {
  return accept.find("application/openmetrics-text") != std::string::npos;
}

}  // namespace orsolva_host::live
