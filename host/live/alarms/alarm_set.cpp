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

AlarmSet::Machine* AlarmSet::Find(const Key& key, Standing standing) {
  const auto place = machines_.find(key);
  if (place != machines_.end()) return &place->second;
  return standing == Standing::kBad ? &machines_[key] : nullptr;
}

void AlarmSet::Update(AlarmKind kind, const std::string& subject, Standing standing,
                      const Hysteresis& hysteresis, std::int64_t now_utc_ns,
                      const std::function<Finding()>& finding) {
  const Key key{kind, subject};
  Machine* const machine = Find(key, standing);
  if (machine == nullptr) return;
  machine->bad_history = machine->bad_history << 1 | (standing == Standing::kBad ? 1U : 0U);
  machine->good = standing == Standing::kGood ? machine->good + 1 : 0;
  const Step step = {standing, BadOf(machine->bad_history, hysteresis.of) >= hysteresis.bad,
                     machine->good >= hysteresis.good, machine->bad_history == 0};
  Move(key, *machine, step, now_utc_ns, finding);
}

void AlarmSet::Update(AlarmKind kind, const std::string& subject, Standing standing, const Lasting& lasting,
                      std::int64_t now_utc_ns, const std::function<Finding()>& finding) {
  const Key key{kind, subject};
  Machine* const machine = Find(key, standing);
  if (machine == nullptr) return;
  machine->bad_ns = standing == Standing::kBad ? machine->bad_ns + lasting.step_ns : 0;
  machine->good_ns = standing == Standing::kGood ? machine->good_ns + lasting.step_ns : 0;
  const bool bad = standing == Standing::kBad, good = standing == Standing::kGood;
  const Step step = {standing, bad && machine->bad_ns >= lasting.time_ns,
                     good && machine->good_ns >= lasting.time_ns, !bad};
  Move(key, *machine, step, now_utc_ns, finding);
}

void AlarmSet::Move(const Key& key, Machine& machine, const Step& step, std::int64_t now_utc_ns,
                    const std::function<Finding()>& finding) {
  if (!machine.raised) {
    if (step.raise)
      Raise(key, machine, finding(), now_utc_ns);
    else if (step.forget)
      machines_.erase(key);
    return;
  }
  if (step.clear) return Clear(key, machine, finding().seen, now_utc_ns);
  if (step.standing != Standing::kBad) return;
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
  machine.good_ns = 0;
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
