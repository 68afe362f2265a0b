#include "python/src/event_tables.h"

#include <string>

#include "host/report/run_events.h"
#include "python/src/cells.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

/// Events that rest on no comparison of explanations have no score.
double ScoreOf(const analysis::Event& event, double nats) {
  return event.score == 0 && event.margin == 0 ? kAbsent : nats;
}

}  // namespace

Table EventTable(const std::vector<analysis::Event>& events) {
  Table table;
  Column& times = table.Add("time", ColumnKind::kTime);
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& kinds = table.Add("kind", ColumnKind::kName);
  Column& elevations = table.Add("elevation_deg", ColumnKind::kReal);
  Column& signals = table.Add("signals", ColumnKind::kTexts);
  Column& cycles = table.Add("size_cycles", ColumnKind::kReals);
  Column& milliseconds = table.Add("clock_size_ms", ColumnKind::kReal);
  Column& is_slip = table.Add("is_slip", ColumnKind::kYesNo);
  Column& sure = table.Add("sure", ColumnKind::kYesNo);
  Column& scores = table.Add("score", ColumnKind::kReal);
  Column& margins = table.Add("margin", ColumnKind::kReal);
  Column& gaps = table.Add("gap_s", ColumnKind::kReal);
  Column& locks = table.Add("loss_of_lock", ColumnKind::kYesNo);
  Column& evidence = table.Add("evidence", ColumnKind::kText);
  for (const analysis::Event& event : events) {
    const bool is_clock = event.kind == analysis::EventKind::kReceiverClockReset ||
                          event.kind == analysis::EventKind::kCodeClockJump;
    times.AddTime(event.time_ns);
    satellites.AddTextOrNull(event.satellite.system == ' ' ? std::string() : NameOf(event.satellite));
    kinds.AddText(analysis::NameOf(event.kind));
    elevations.AddReal(event.elevation_deg);
    signals.AddTexts(Names(event.signals));
    cycles.AddReals(is_clock ? std::vector<double>() : event.sizes);
    milliseconds.AddReal(is_clock && !event.sizes.empty() ? event.sizes.front() : kAbsent);
    is_slip.AddYesNo(analysis::IsSlip(event.kind));
    sure.AddYesNo(event.sure);
    scores.AddReal(ScoreOf(event, event.score));
    margins.AddReal(ScoreOf(event, event.margin));
    gaps.AddReal(event.gap_s);
    locks.AddYesNo(event.loss_of_lock);
    evidence.AddTextOrNull(event.evidence);
  }
  return table;
}

Table ArcTable(const DetailCollector& detail) {
  Table table;
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& firsts = table.Add("first_epoch", ColumnKind::kTime);
  Column& lasts = table.Add("last_epoch", ColumnKind::kTime);
  Column& first_above = table.Add("first_above_cutoff", ColumnKind::kYesNo);
  Column& last_above = table.Add("last_above_cutoff", ColumnKind::kYesNo);
  const auto time = [&](EpochIndex epoch) {
    return Nanoseconds(detail.First()) + std::llround(epoch * detail.IntervalS() * 1e9);
  };
  for (const auto& [number, columns] : detail.Satellites()) {
    for (const Arc& arc : columns.arcs) {
      satellites.AddText(orsolva_host::NameOf(columns.satellite));
      firsts.AddTime(time(arc.first));
      lasts.AddTime(time(arc.last));
      first_above.AddYesNo(arc.first_above);
      last_above.AddYesNo(arc.last_above);
    }
  }
  return table;
}

}  // namespace orsolva_python
