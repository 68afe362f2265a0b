#include "host/report/event_table.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "host/report/csv_writer.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

using analysis::Event;
using analysis::EventKind;
using Json = nlohmann::ordered_json;

/// Sizes of clock events are milliseconds and go into the evidence.
bool HasSizeInCycles(const Event& event) {
  return !event.sizes.empty() && event.kind != EventKind::kReceiverClockReset &&
         event.kind != EventKind::kCodeClockJump;
}

std::string EvidenceOf(const Event& event) {
  if (!event.evidence.empty() || event.sizes.empty() || HasSizeInCycles(event)) return event.evidence;
  return fmt::format("{} by {:.6f} ms",
                     event.kind == EventKind::kCodeClockJump ? "codes alone" : "codes and phases",
                     event.sizes.front());
}

std::string SignalsOf(const Event& event) {
  std::string text;
  for (const SignalCode code : event.signals) text += (text.empty() ? "" : " ") + NameOf(code);
  return text;
}

/// Rounded to a decimal; absent when it is not finite.
std::optional<double> Rounded(double value, double steps) {
  if (!std::isfinite(value)) return std::nullopt;
  return std::round(value * steps) / steps;
}

/// Events that rest on no comparison of explanations have no score.
std::optional<double> ScoreOf(const Event& event, double nats) {
  if (event.score == 0 && event.margin == 0) return std::nullopt;
  return Rounded(nats, 100);
}

std::string Field(const std::optional<double>& value) { return value ? fmt::format("{}", *value) : ""; }

std::string SatelliteOf(const Event& event) {
  return event.satellite.system == ' ' ? std::string() : NameOf(event.satellite);
}

std::string CsvLine(const Event& event) {
  std::string sizes;
  for (const double size : HasSizeInCycles(event) ? event.sizes : std::vector<double>()) {
    sizes += (sizes.empty() ? "" : " ") + fmt::format("{}", size);
  }
  return fmt::format("{},{},{},{},{},{},{},{},{},{},{},{}\n", TimeText(TimeOfNanoseconds(event.time_ns)),
                     SatelliteOf(event), Field(Rounded(event.elevation_deg, 1000)),
                     analysis::NameOf(event.kind), SignalsOf(event), sizes, event.sure ? 1 : 0,
                     Field(ScoreOf(event, event.score)), Field(ScoreOf(event, event.margin)), event.gap_s,
                     event.loss_of_lock ? 1 : 0, CsvField(EvidenceOf(event)));
}

Json NumberOf(const std::optional<double>& value) { return value ? Json(*value) : Json(nullptr); }

std::string JsonLine(const Event& event) {
  const auto text = [](const std::string& s) { return s.empty() ? Json(nullptr) : Json(s); };
  Json j;
  j["time_gpst"] = TimeText(TimeOfNanoseconds(event.time_ns));
  j["satellite"] = text(SatelliteOf(event));
  j["elevation_deg"] = NumberOf(Rounded(event.elevation_deg, 1000));
  j["kind"] = analysis::NameOf(event.kind);
  j["signals"] = text(SignalsOf(event));
  j["size_cycles"] = HasSizeInCycles(event) ? Json(event.sizes) : Json(nullptr);
  j["sure"] = event.sure;
  j["score"] = NumberOf(ScoreOf(event, event.score));
  j["margin"] = NumberOf(ScoreOf(event, event.margin));
  j["gap_s"] = event.gap_s;
  j["loss_of_lock"] = event.loss_of_lock;
  j["evidence"] = text(EvidenceOf(event));
  return j.dump() + "\n";
}

}  // namespace

const char* const kEventCsvHeading =
    "time_gpst,satellite,elevation_deg,kind,signals,size_cycles,sure,score,margin,gap_s,loss_of_lock,"
    "evidence\n";

std::string EventLine(const Event& event, TableForm form) {
  return form == TableForm::kCsv ? CsvLine(event) : JsonLine(event);
}

std::string EventsJson(const AnalysisReport& report) {
  std::string text = fmt::format("{{\"further\":{},\"events\":[", report.further_events);
  for (const Event& event : report.events) {
    if (text.back() != '[') text += ',';
    text += JsonLine(event);
  }
  return text + "]}\n";
}

EventTable::EventTable(TableForm form, std::function<void(std::string_view)> write)
    : form_(form), write_(std::move(write)) {
  if (form_ == TableForm::kCsv) write_(kEventCsvHeading);
}

}  // namespace orsolva_host
