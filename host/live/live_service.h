// Many stations, each on a thread of its own, and what their events set off.
#ifndef ORSOLVA_LIVE_LIVE_SERVICE_H
#define ORSOLVA_LIVE_LIVE_SERVICE_H

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/live/file_writer.h"
#include "host/live/live_board.h"
#include "host/live/settings.h"
#include "host/live/stations/station_thread.h"

namespace orsolva_host::live {

struct ServiceSettings {
  std::vector<StationSettings> stations;
  std::string events;    ///< file that lines of JSON are appended to; "-" is standard output, empty: none
  std::string on_alarm;  ///< command that is run by the shell for every alarm raised or cleared; empty: none
  std::string listen;    ///< address of the server; empty: none
};

/// What is wrong with the stations as a whole or with one of them; empty when nothing is. Stations without a
/// name get that of their mount point, host, device or file, with "-2" and so on where it is taken.
std::string Complete(ServiceSettings& settings);

class LiveService {
 public:
  /// @param write  takes lines of events, each with its end; null: none @pre completed settings
  LiveService(const ServiceSettings& settings, LiveBoard& board,
              std::function<void(const std::string&)> write);
  ~LiveService();

  void Start();
  /// Whether every station has ended by itself.
  bool Ended() const;
  /// Ends all stations, and hands out what is left of the events.
  void Stop();
  bool AnyAlarm() const;
  /// Whether a report or ephemerides could not be written.
  bool LostFiles() const { return lost_files_; }
  /// "NAME: why" of stations that failed.
  std::vector<std::string> Failures() const;

 private:
  void PassEvents();
  void Pass(const LiveEvent& event, std::chrono::steady_clock::time_point until);

  ServiceSettings settings_;
  LiveBoard* board_;
  std::function<void(const std::string&)> write_;
  std::vector<std::unique_ptr<StationThread>> stations_;
  FileWriter files_;
  std::thread events_thread_;
  std::atomic<bool> last_round_{false}, lost_files_{false};
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_LIVE_SERVICE_H
