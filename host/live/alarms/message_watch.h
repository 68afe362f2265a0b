// When messages of each type come, and which stay away.
#ifndef ORSOLVA_LIVE_ALARMS_MESSAGE_WATCH_H
#define ORSOLVA_LIVE_ALARMS_MESSAGE_WATCH_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/live/live_state.h"

namespace orsolva_host::live {

/// The types of an entry, "1074|1077"; empty when it is none.
std::vector<int> TypesOf(const std::string& required);

/// Times are those of arrival on the GPS time scale.
class MessageWatch {
 public:
  /// A type is announced when it has come at so many times, a second or more apart; ephemerides come in
  /// bursts.
  static constexpr int kAnnounced = 4;

  void Take(int type, std::int64_t now_ns);
  /// The stream was away: the time since the last message is nobody's absence.
  void Resume(std::int64_t now_ns);
  /// Begins another minute, of which mean intervals are. Of the first one and of one in which the stream was
  /// away, the time that was really covered counts.
  void EndMinute(std::int64_t now_ns);

  struct Missing {
    std::string subject;  ///< "1077", or of required ones "1074|1077"
    double age_s = 0;
    double allowed_s = 0;
  };
  /// Decoded types that have been away for longer than three times their longest interval so far and 30 s.
  /// Observations of QZSS, NavIC and SBAS, whose few satellites may all set, are left out.
  std::vector<Missing> Announced(std::int64_t now_ns) const;
  /// Of each entry "1074|1077" none of the types has come for two minutes (messages of observations) or ten.
  std::vector<Missing> Required(const std::vector<std::string>& required, std::int64_t now_ns) const;

  void FillIn(std::int64_t now_ns, std::map<int, MessageState>& messages) const;

 private:
  struct Track {
    Count total = 0;
    int times = 0;
    std::int64_t last_ns = 0;
    std::int64_t absent_since_ns = 0;  ///< last_ns, later by what the stream was away since
    double longest_s = 0;
    Count this_minute = 0;
    std::optional<double> interval_s;
  };
  std::map<int, Track> tracks_;
  std::optional<std::int64_t> began_ns_;  ///< later by what the stream was away
  std::int64_t latest_ns_ = 0;            ///< of any type, or when the stream came back
  std::int64_t minute_ns_ = 0;            ///< begin of the minute at hand, later by what the stream was away
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_ALARMS_MESSAGE_WATCH_H
