#include "host/live/alarms/alarm_set.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <iterator>

namespace orsolva_host::live {
namespace {

constexpr int kHistory = 64;

int BadOf(std::uint64_t history, int of) {
  const std::uint64_t mask = of >= kHistory ? ~std::uint64_t{0} : (std::uint64_t{1} << of) - 1;
  return static_cast<int>(std::bitset<kHistory>(history & mask).count());
}

}  // namespace

void AlarmSet::Update(AlarmKind kind, const std::string& subject, Standing standing,
                      const Hysteresis& hysteresis, std::int64_t now_utc_ns,
                      const std::function<Finding()>& finding) {
  const Key key{kind, subject};
  auto place = machines_.find(key);
  if (place == machines_.end()) {
    if (standing != Standing::kBad) return;
    place = machines_.emplace(key, Machine()).first;
  }
  Machine& machine = place->second;
  machine.bad_history = machine.bad_history << 1 | (standing == Standing::kBad ? 1U : 0U);
  machine.good = standing == Standing::kGood ? machine.good + 1 : 0;
  if (!machine.raised) {
    if (BadOf(machine.bad_history, hysteresis.of) >= hysteresis.bad)
      Raise(key, machine, finding(), now_utc_ns);
    else if (machine.bad_history == 0)
      machines_.erase(place);
    return;
  }
  if (machine.good >= hysteresis.good) return Clear(key, machine, finding().seen, now_utc_ns);
  if (standing != Standing::kBad) return;
  Finding now = finding();
  if (now.severity > machine.alarm.severity) return Raise(key, machine, std::move(now), now_utc_ns);
  machine.alarm.seen = std::move(now.seen);
}

void AlarmSet::Keep(AlarmKind kind, const std::vector<std::string>& subjects, std::int64_t now_utc_ns) {
  for (auto place = machines_.begin(); place != machines_.end();) {
    const auto next = std::next(place);
    const bool kept = place->first.first != kind ||
                      std::find(subjects.begin(), subjects.end(), place->first.second) != subjects.end();
    if (!kept && place->second.raised) {
      Clear(Key(place->first), place->second, "no longer judged", now_utc_ns);
    } else if (!kept) {
      machines_.erase(place);
    }
    place = next;
  }
}

/// An alarm that becomes worse keeps its beginning.
void AlarmSet::Raise(const Key& key, Machine& machine, Finding finding, std::int64_t now_utc_ns) {
  LiveEvent event;
  event.time_utc_ns = now_utc_ns;
  event.station = station_;
  event.kind = kAlarmKinds[static_cast<std::size_t>(key.first)];
  event.subject = key.second;
  event.state = LiveEvent::State::kRaised;
  event.severity = finding.severity;
  event.seen = finding.seen;
  event.advice = finding.advice;
  Alarm& alarm = machine.alarm;
  if (!machine.raised) alarm.since_utc_ns = now_utc_ns;
  alarm.kind = event.kind;
  alarm.subject = event.subject;
  alarm.severity = finding.severity;
  alarm.seen = std::move(finding.seen);
  alarm.advice = std::move(finding.advice);
  machine.raised = true;
  machine.good = 0;
  alarm.event_id = report_(std::move(event));
}

void AlarmSet::Clear(const Key& key, Machine& machine, std::string seen, std::int64_t now_utc_ns) {
  LiveEvent event;
  event.time_utc_ns = now_utc_ns;
  event.station = station_;
  event.kind = machine.alarm.kind;
  event.subject = key.second;
  event.state = LiveEvent::State::kCleared;
  event.severity = machine.alarm.severity;
  event.seen = std::move(seen);
  machines_.erase(key);
  report_(std::move(event));
}

bool AlarmSet::IsRaised(AlarmKind kind, const std::string& subject) const {
  const auto place = machines_.find({kind, subject});
  return place != machines_.end() && place->second.raised;
}

bool AlarmSet::IsRaised(AlarmKind kind) const {
  return std::any_of(machines_.begin(), machines_.end(),
                     [kind](const auto& m) { return m.first.first == kind && m.second.raised; });
}

std::vector<Alarm> AlarmSet::Raised() const {
  std::vector<Alarm> alarms;
  for (const auto& [key, machine] : machines_) {
    if (machine.raised) alarms.push_back(machine.alarm);
  }
  std::stable_sort(alarms.begin(), alarms.end(), [](const Alarm& a, const Alarm& b) {
    return a.severity != b.severity ? a.severity > b.severity : a.since_utc_ns < b.since_utc_ns;
  });
  return alarms;
}

}  // namespace orsolva_host::live
