// Simulated streams, and a station over one of them.
#ifndef ORSOLVA_TESTS_LIVE_CORE_JUDGED_STREAM_H
#define ORSOLVA_TESTS_LIVE_CORE_JUDGED_STREAM_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/live/live_board.h"
#include "host/live/settings.h"
#include "host/simulator/scenario.h"

namespace orsolva_test {

/// A folder of its own, removed at the end.
class TestFolder {
 public:
  TestFolder();
  ~TestFolder() { std::filesystem::remove_all(path_); }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

std::string ReadAll(const std::string& path);

/// GPS and Galileo at 1 Hz.
orsolva_host::Scenario Short(double hours);
orsolva_host::Fault FaultOf(orsolva_host::FaultKind kind, double at_s, double duration_s, double size);

/// Writes a stream of MSM7. @return its path
std::string StreamOf(const orsolva_host::Scenario& scenario, const std::string& folder);

/// Time of the first epoch: those of a simulation count from it.
std::int64_t StartOf(const std::string& stream);

struct Judged {
  orsolva_host::live::LiveBoard board;
  std::vector<orsolva_host::live::LiveEvent> events;
  std::shared_ptr<const orsolva_host::live::StationState> state;
  std::int64_t start_ns = 0;

  /// Seconds from the start of the span.
  double SecondsOf(const orsolva_host::live::LiveEvent& event) const;
  /// The same of the first event of the kind from a time on.
  std::optional<double> At(
      const std::string& kind, const std::string& subject,
      orsolva_host::live::LiveEvent::State what = orsolva_host::live::LiveEvent::State::kRaised,
      double from_s = 0) const;
  int Raised() const;
  std::string Text() const;
};

/// Takes each frame's message at a time, seconds from the start; gives what is sent instead.
using Change = std::function<std::string(const std::string& message, double at_s)>;

/// Replays a stream. Without a change all its ephemerides are known at the beginning, as they are to qc,
/// which reads a file twice.
void JudgeStream(const std::string& path, const orsolva_host::live::StationSettings& settings,
                 const Change& change, Judged& judged);

/// The same as it comes from a connection. @param delay_s  from the time of an epoch to its arrival
void JudgeLive(const std::string& path, const std::function<double(double at_s)>& delay_s, Judged& judged);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_LIVE_CORE_JUDGED_STREAM_H
