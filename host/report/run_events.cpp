#include "host/report/run_events.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "host/report/finding_limits.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kSignalBits = 31;

/// The events of the pairs that figures come from, those of one satellite, epoch and kind in one row.
std::vector<EventRow> RowsOf(const DetailCollector& detail) {
  std::map<std::tuple<EpochIndex, int, int>, EventRow> rows;
  int place = 0;
  for (const auto& [number, columns] : detail.Satellites()) {
    for (const DetailEvent& event : columns.events) {
      const PairColumn* pair = detail.PairOf(columns, event.code);
      if (pair == nullptr || pair->partner != event.partner) continue;
      EventRow& row = rows[{event.epoch, place, static_cast<int>(event.kind)}];
      row.epoch = event.epoch;
      row.satellite = place;
      row.kind = event.kind;
      row.elevation = event.elevation;
      for (std::size_t i = 0; i < std::min(columns.signals.size(), kSignalBits); ++i) {
        if (columns.signals[i].code == event.code) row.signals |= 1U << i;
      }
    }
    ++place;
  }
  std::vector<EventRow> list;
  list.reserve(rows.size());
  for (const auto& [key, row] : rows) list.push_back(row);
  return list;
}

std::vector<EpochSpan> HolesOf(const DetailCollector& detail) {
  std::vector<Arc> arcs;
  for (const auto& [number, columns] : detail.Satellites()) {
    arcs.insert(arcs.end(), columns.arcs.begin(), columns.arcs.end());
  }
  std::sort(arcs.begin(), arcs.end(), [](const Arc& a, const Arc& b) { return a.first < b.first; });
  std::vector<EpochSpan> holes;
  EpochIndex last = arcs.empty() ? 0 : arcs.front().last;
  for (const Arc& arc : arcs) {
    if (arc.first > last + 1) holes.push_back({last + 1, arc.first});
    last = std::max(last, arc.last);
  }
  return holes;
}

/// Whether no satellite at all was there between two arcs.
bool IsHole(const std::vector<EpochSpan>& holes, EpochIndex last, EpochIndex next) {
  const auto after =
      std::upper_bound(holes.begin(), holes.end(), last + 1,
                       [](EpochIndex epoch, const EpochSpan& hole) { return epoch < hole.first; });
  return after != holes.begin() && std::prev(after)->end >= next;
}

std::vector<EpochSpan> GapsOf(const SatelliteColumns& columns, const std::vector<EpochSpan>& holes,
                              double interval_s) {
  std::vector<EpochSpan> gaps;
  for (std::size_t i = 1; i < columns.arcs.size(); ++i) {
    const Arc& before = columns.arcs[i - 1];
    const Arc& after = columns.arcs[i];
    const double length_s = (after.first - before.last) * interval_s;
    if (length_s > kFindingLimits.longest_gap_s || IsHole(holes, before.last, after.first)) continue;
    if (before.last_above && after.first_above) gaps.push_back({before.last + 1, after.first});
  }
  return gaps;
}

std::size_t TrackedAt(const DetailCollector& detail, EpochIndex epoch) {
  std::size_t count = 0;
  for (const auto& [number, columns] : detail.Satellites()) {
    const auto next = std::upper_bound(columns.arcs.begin(), columns.arcs.end(), epoch,
                                       [](EpochIndex e, const Arc& arc) { return e < arc.first; });
    if (next != columns.arcs.begin() && std::prev(next)->last >= epoch) ++count;
  }
  return count;
}

/// Counts the hard events of one epoch for their satellites, or finds them to be of the whole receiver.
void AddHardEvents(const DetailCollector& detail, const std::vector<const EventRow*>& rows,
                   RunEvents& events) {
  std::set<int> struck;
  for (const EventRow* row : rows) struck.insert(row->satellite);
  const EpochIndex epoch = rows.front()->epoch;
  if (struck.size() >= kFindingLimits.least_common &&
      static_cast<double>(struck.size()) >
          kFindingLimits.common_share * static_cast<double>(TrackedAt(detail, epoch))) {
    events.receiver_epochs.push_back(epoch);
    return;
  }
  for (const EventRow* row : rows) {
    SatelliteEvents& satellite = events.satellites[static_cast<std::size_t>(row->satellite)];
    ++(row->kind == EventKind::kJump ? satellite.code_jumps : satellite.geometry_free_slips);
  }
}

void CountHardEvents(const DetailCollector& detail, RunEvents& events) {
  std::vector<const EventRow*> rows;
  for (const EventRow& row : events.rows) {
    if (!IsHard(row.kind)) continue;
    if (!rows.empty() && rows.front()->epoch != row.epoch) {
      AddHardEvents(detail, rows, events);
      rows.clear();
    }
    rows.push_back(&row);
  }
  if (!rows.empty()) AddHardEvents(detail, rows, events);
}

}  // namespace

std::string NameOf(const orsolva::DetailSatellite& satellite) {
  const int slot = SystemSlotOfCode(satellite.sys);
  return SatelliteName(slot < 0 ? '?' : kSystemTable[slot].letter, satellite.prn);
}

std::string RunEvents::Clock(EpochIndex epoch) const {
  constexpr std::size_t kDateColumns = 11;
  const double seconds = first.sec + epoch * interval_s;
  const double whole = std::floor(seconds);
  const std::string text = TimeText({first.time + static_cast<std::int64_t>(whole), seconds - whole});
  const std::string clock = text.size() > kDateColumns ? text.substr(kDateColumns) : text;
  const std::size_t zeros = clock.find(".000");
  return zeros == std::string::npos ? clock : clock.substr(0, zeros);
}

RunEvents EventsOf(const DetailCollector& detail) {
  RunEvents events;
  events.first = detail.First();
  events.interval_s = detail.IntervalS();
  events.rows = RowsOf(detail);
  events.holes = HolesOf(detail);
  for (const auto& [number, columns] : detail.Satellites()) {
    SatelliteEvents satellite;
    satellite.name = NameOf(columns.satellite);
    satellite.gaps = GapsOf(columns, events.holes, events.interval_s);
    events.satellites.push_back(std::move(satellite));
  }
  CountHardEvents(detail, events);
  return events;
}

}  // namespace orsolva_host
