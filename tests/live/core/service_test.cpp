// The service with its threads: stations that replay and follow, second sources, files, and who reads the
// board.
#include "host/live/live_service.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "host/live/sources/descriptor_stream.h"
#include "tests/live/core/judged_stream.h"
#include "tests/live/core/listener.h"

namespace {

using namespace orsolva_host::live;
using namespace orsolva_test;
using std::chrono::milliseconds;

/// What was put on the disk, and by how many threads.
struct Syncs {
  std::mutex mutex;
  std::set<std::string> names;
  std::set<std::thread::id> threads;
};
Syncs& AllSyncs() {
  static Syncs all;
  return all;
}

/// Sends bytes to every client until it is destroyed, and keeps the connection.
class Sender {
 public:
  explicit Sender(std::string bytes) : bytes_(std::move(bytes)), thread_([this] { Serve(); }) {}
  ~Sender() {
    listener_.Close();
    thread_.join();
  }
  std::string Source() const { return listener_.Source(); }

 private:
  void Serve() {
    std::vector<Descriptor> clients;
    while (true) {
      Descriptor client(listener_.Accept());
      if (client.Number() < 0) return;
      std::size_t sent = 0;
      while (sent < bytes_.size()) {
        const ssize_t count = send(client.Number(), bytes_.data() + sent, bytes_.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) break;
        sent += static_cast<std::size_t>(count);
      }
      clients.push_back(std::move(client));
    }
  }

  std::string bytes_;
  Listener listener_{false};
  std::thread thread_;
};

/// Reads everything on the board again and again, as servers do.
class BoardReader {
 public:
  explicit BoardReader(const LiveBoard& board) : thread_([this, &board] { Read(board); }) {}
  ~BoardReader() {
    stopped_ = true;
    thread_.join();
  }

 private:
  void Read(const LiveBoard& board) {
    while (!stopped_) {
      for (const auto& state : board.Stations()) read_ += state->epochs_total + state->alarms.size();
      read_ += board.WaitForEvents(board.LastEventId(), 10, milliseconds(1)).size();
    }
  }

  std::atomic<bool> stopped_{false};
  Count read_ = 0;
  std::thread thread_;
};

bool Within(std::chrono::seconds time, const std::function<bool()>& holds) {
  const auto until = std::chrono::steady_clock::now() + time;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > until) return false;
    std::this_thread::sleep_for(milliseconds(10));
  }
  return true;
}

TEST(LiveService, StationsOnTheirThreadsJudgeWriteAndStop) {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(0.05), folder / "data");
  const std::string bytes = ReadAll(stream);
  const Sender sender(bytes), ephemerides(bytes);
  ServiceSettings settings;
  settings.stations.resize(3);
  for (StationSettings& station : settings.stations) {
    station.source = stream;
    station.navigation = ephemerides.Source();
    station.state_folder = folder / "state";
    station.reports_folder = folder / "reports";
  }
  settings.stations[2].source = sender.Source();
  settings.stations[2].start_gps_ns = StartOf(stream);
  ASSERT_EQ(Complete(settings), "");
  LiveBoard board;
  std::size_t lines = 0;  // written by one thread, looked at after its end
  {
    LiveService service(settings, board, [&lines](const std::string&) { ++lines; });
    const BoardReader reader(board);
    service.Start();
    const auto epochs = [&board](const StationSettings& station) {
      const auto state = board.Station(station.name);
      return state ? state->epochs_total : 0;
    };
    for (const StationSettings& station : settings.stations)
      EXPECT_TRUE(Within(std::chrono::seconds(120), [&] { return epochs(station) == 180; })) << station.name;
    EXPECT_FALSE(service.Ended()) << "a followed source has no end";
    const auto begin = std::chrono::steady_clock::now();
    service.Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_TRUE(service.Ended());
    EXPECT_TRUE(service.Failures().empty());
  }
  EXPECT_EQ(lines, board.LastEventId());
  // Each went to the disk under its hidden name, so before it took the place of an older one, and no station
  // waited.
  std::size_t files = 0;
  const std::lock_guard lock(AllSyncs().mutex);
  for (const char* of : {"state", "reports"}) {
    for (const auto& file : std::filesystem::directory_iterator(folder / of)) {
      ++files;
      EXPECT_EQ(AllSyncs().names.count(".part-" + file.path().filename().string()), 1U) << file.path();
    }
  }
  EXPECT_EQ(files, 6U);
  EXPECT_EQ(AllSyncs().threads.size(), 1U);
}

TEST(LiveService, AFailureOfOneStationStopsNoOther) {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(0.01), folder / "data");
  ServiceSettings settings;
  settings.stations.resize(2);
  settings.stations[0].source = folder / "missing.rtcm3";
  settings.stations[1].source = stream;
  ASSERT_EQ(Complete(settings), "");
  LiveBoard board;
  LiveService service(settings, board, nullptr);
  service.Start();
  EXPECT_TRUE(Within(std::chrono::seconds(60), [&service] { return service.Ended(); }));
  service.Stop();
  ASSERT_EQ(service.Failures().size(), 1U);
  EXPECT_EQ(service.Failures()[0].rfind("missing: ", 0), 0U) << service.Failures()[0];
  EXPECT_EQ(board.Station(settings.stations[1].name)->epochs_total, 36U);
}

}  // namespace

/// In the place of that of the system.
extern "C" int fsync(int descriptor) {
  std::error_code none;
  const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), none);
  {
    const std::lock_guard lock(AllSyncs().mutex);
    AllSyncs().names.insert(path.filename().string());
    AllSyncs().threads.insert(std::this_thread::get_id());
  }
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}
