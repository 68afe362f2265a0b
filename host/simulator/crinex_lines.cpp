#include "host/simulator/crinex_lines.h"

#include <algorithm>

#include "host/simulator/header_lines.h"

namespace orsolva_host {
namespace {

/// The characters of `now` that differ from `before`, '&' for a character that became blank.
std::string Changes(const std::string& before, const std::string& now) {
  std::string changes(std::max(before.size(), now.size()), ' ');
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const char old_one = i < before.size() ? before[i] : ' ';
    const char new_one = i < now.size() ? now[i] : ' ';
    if (old_one != new_one) changes[i] = new_one == ' ' ? '&' : new_one;
  }
  changes.erase(changes.find_last_not_of(' ') + 1);
  return changes;
}

}  // namespace

std::string CrinexLines::Preamble() {
  return HeaderLine("3.0                 COMPACT RINEX FORMAT", "CRINEX VERS   / TYPE") +
         HeaderLine("ORSOLVA SIMULATE", "CRINEX PROG / DATE");
}

void CrinexLines::Append(const ObservationEpoch& epoch, std::string& out) {
  ++epoch_;
  AppendEpochLine(epoch, out);
  out += '\n';  // no receiver clock offset
  for (const SatelliteObservation& satellite : epoch.satellites) AppendSatellite(epoch, satellite, out);
}

void CrinexLines::AppendEpochLine(const ObservationEpoch& epoch, std::string& out) {
  constexpr std::size_t kSatelliteColumn = 41;
  std::string line = EpochLine(epoch);
  line.resize(kSatelliteColumn, ' ');
  for (const SatelliteObservation& satellite : epoch.satellites) line += NameOf(satellite.id);
  out += last_line_.empty() ? line : Changes(last_line_, line);
  out += '\n';
  last_line_ = line;
}

void CrinexLines::AppendSatellite(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                                  std::string& out) {
  SatelliteArcs& state = satellites_[satellite.id];
  TakeCells(epoch, satellite, cells_);
  if (state.epoch != epoch_ - 1) {
    state.arcs.assign(cells_.size(), Arc());
    state.flags.clear();
  }
  state.epoch = epoch_;
  std::string flags;
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    AppendCell(cells_[i].value, state.arcs[i], out);
    out += ' ';
    flags += cells_[i].loss_of_lock;
    flags += cells_[i].strength;
  }
  out += Changes(state.flags, flags);
  state.flags = flags;
  out.erase(out.find_last_not_of(' ') + 1);
  out += '\n';
}

void CrinexLines::AppendCell(std::int64_t value, Arc& arc, std::string& out) {
  if (value == 0) {
    arc.reached = -1;
    return;
  }
  if (arc.reached < 0) {
    arc.reached = 0;
    arc.last[0] = value;
    out += std::to_string(kOrder) + "&" + std::to_string(value);
    return;
  }
  if (arc.reached < kOrder) ++arc.reached;
  std::int64_t difference = value;
  for (std::size_t k = 0; k < static_cast<std::size_t>(arc.reached); ++k) {
    const std::int64_t before = arc.last[k];
    arc.last[k] = difference;
    difference -= before;
  }
  arc.last[static_cast<std::size_t>(arc.reached)] = difference;
  out += std::to_string(difference);
}

}  // namespace orsolva_host
