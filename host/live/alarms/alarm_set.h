// The alarms of a station as state machines.
#ifndef ORSOLVA_LIVE_ALARMS_ALARM_SET_H
#define ORSOLVA_LIVE_ALARMS_ALARM_SET_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/live/live_state.h"

namespace orsolva_host::live {

/// In the order of kAlarmKinds.
enum class AlarmKind : std::uint8_t {
  kDataGap,
  kLatency,
  kSlipBurst,
  kSnrDrop,
  kCompleteness,
  kMultipath,
  kSatellitesFew,
  kEphemerisOld,
  kMessagesMissing,
  kPositionMoved,
  kIdentityChanged,
  kCrcErrors,
};

/// Where a figure is: beyond its limit, well within it, or between both, where nothing changes.
enum class Standing : std::uint8_t { kGood, kBetween, kBad };

/// Standing of a figure that must not be above a limit, and is good again from a lower value down.
inline Standing Above(double value, double limit, double good) {
  return value > limit ? Standing::kBad : value <= good ? Standing::kGood : Standing::kBetween;
}
/// The same of one that must not be below.
inline Standing Below(double value, double limit, double good) { return Above(-value, -limit, -good); }

/// Raised when `bad` of the last `of` updates were bad; cleared after `good` good ones in a row.
struct Hysteresis {
  int bad = 1;
  int of = 1;  ///< at most 64
  int good = 1;
};

/// Raised when figures were bad without a break for a time; cleared when they were good for so long. An
/// update stands for a step of time; time without updates does not count.
struct Lasting {
  std::int64_t time_ns = 0;
  std::int64_t step_ns = 0;
};

/// What an update says, made only when it is shown.
struct Finding {
  Severity severity = Severity::kBad;
  std::string seen;    ///< a sentence with figures
  std::string advice;  ///< what to do
};

class AlarmSet {
 public:
  /// Takes an event and returns the id that it got.
  using Report = std::function<std::uint64_t(LiveEvent)>;

  AlarmSet(std::string station, Report report) : station_(std::move(station)), report_(std::move(report)) {}

  /// @param finding  asked when the alarm is raised, becomes worse, is cleared, or stays raised and bad
  void Update(AlarmKind kind, const std::string& subject, Standing standing, const Hysteresis& hysteresis,
              std::int64_t now_utc_ns, const std::function<Finding()>& finding);
  void Update(AlarmKind kind, const std::string& subject, Standing standing, const Lasting& lasting,
              std::int64_t now_utc_ns, const std::function<Finding()>& finding);
  /// Clears every alarm of a kind whose subject is not among those given, as those that are no more.
  void Keep(AlarmKind kind, const std::vector<std::string>& subjects, std::int64_t now_utc_ns);
  bool IsRaised(AlarmKind kind, const std::string& subject) const;
  bool IsRaised(AlarmKind kind) const;

  /// Bad ones first, then by time.
  std::vector<Alarm> Raised() const;

 private:
  struct Machine {
    std::uint64_t bad_history = 0;  ///< the latest in the lowest bit
    int good = 0;
    std::int64_t bad_ns = 0, good_ns = 0;  ///< without a break, where time counts
    bool raised = false;
    Alarm alarm;
  };
  using Key = std::pair<AlarmKind, std::string>;

  /// What becomes of an alarm with an update.
  struct Step {
    Standing standing;
    bool raise, clear;
    bool forget;  ///< nothing bad is remembered
  };
  /// Null while nothing was bad.
  Machine* Find(const Key& key, Standing standing);
  void Move(const Key& key, Machine& machine, const Step& step, std::int64_t now_utc_ns,
            const std::function<Finding()>& finding);
  void Raise(const Key& key, Machine& machine, Finding finding, std::int64_t now_utc_ns);
  void Clear(const Key& key, Machine& machine, std::string seen, std::int64_t now_utc_ns);

  std::string station_;
  Report report_;
  std::map<Key, Machine> machines_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_ALARMS_ALARM_SET_H
