// The cost of a judged epoch of a live station: a simulated stream of five systems, MSM7 at 1 Hz.
//
// usage: bench_live_station judging|everything|published [HOURS]
//   judging     library and analysis, hour by hour, over epochs that are decoded already
//   everything  the bytes of an epoch: frames, messages, windows and alarms, too
//   published   the same, and the state handed to the board after every epoch
//
// A minute's and an hour's work counts with the epoch that ends it.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "bench/memory.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/reader.h"
#include "host/live/live_board.h"
#include "host/live/stations/ephemeris_book.h"
#include "host/live/stations/hour_run.h"
#include "host/live/stations/station_judge.h"
#include "host/live/windows/minute_store.h"
#include "host/rinex/byte_source.h"
#include "host/simulator/file_set.h"

namespace orsolva_bench {
namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;

/// Processor time of this thread, s.
double Now() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Seconds of each epoch.
class Timing {
 public:
  template <typename Work>
  void Time(const Work& work) {
    const double start = Now();
    work();
    open_ += Now() - start;
  }
  void EndEpoch() {
    epochs_.push_back(open_);
    open_ = 0;
  }
  /// What followed the last epoch counts with it.
  void EndAll() {
    if (!epochs_.empty()) epochs_.back() += open_;
  }
  void Print(const char* what) {
    std::sort(epochs_.begin(), epochs_.end());
    const auto at = [this](double share) {
      return epochs_[static_cast<std::size_t>(share * static_cast<double>(epochs_.size() - 1))] * 1e6;
    };
    double sum = 0;
    for (const double seconds : epochs_) sum += seconds;
    std::printf("%s, %zu epochs: mean %.0f us, median %.0f us, 99%% %.0f us, longest %.0f us\n", what,
                epochs_.size(), sum * 1e6 / static_cast<double>(epochs_.size()), at(0.5), at(0.99), at(1));
    std::printf("  memory: peak of the process %.0f MB\n", PeakMb());
  }

 private:
  std::vector<double> epochs_;
  double open_ = 0;
};

/// @return path of the stream, in a folder that is left to the caller
std::string SimulatedStream(const std::string& folder, double hours) {
  Scenario scenario;
  scenario.systems = "GRECJ";
  scenario.hours = hours;
  scenario.interval_s = 1;
  const FileSetOptions options = {folder, false, false, 7};
  WriteFileSet(scenario, options, [](std::uint64_t, std::uint64_t) {});
  return FileNames(scenario, options).stream;
}

/// Everything of a stream, decoded.
struct DecodedStream {
  explicit DecodedStream(const std::string& path) {
    Diagnostics unused;
    rtcm::Reader reader(OpenBytes(path, unused), path, unused);
    ObservationEpoch epoch;
    while (reader.Next(epoch)) epochs.push_back(epoch);
    station = reader.Station();
    messages = reader.TakeEphemerides();
    records = reader.TakeBroadcast();
  }

  std::vector<ObservationEpoch> epochs;
  rtcm::StationDescription station;
  std::vector<rtcm::EphemerisMessage> messages;
  BroadcastRecords records;
};

class NoEvents : public EventSink {
 public:
  void Add(const analysis::Event&) override {}
};

/// Library and analysis, each hour as a run of its own, as a station has them.
void RunJudging(const std::string& path, Timing& timing) {
  DecodedStream stream(path);
  EphemerisBook book;
  book.Add(stream.messages, stream.records, EphemerisBook::Origin::kStream);
  const auto navigation = book.Navigation("bench");
  const ReadNavigation no_more;
  JudgingSettings settings;
  settings.figures = FigureChoice::kBoth;
  settings.analysis_on_own_thread = false;
  settings.position.source = PositionSource::kHeader;
  ObservationHeader header;
  header.position = stream.station.position_m;
  NoEvents events;
  std::unique_ptr<HourRun> run;
  for (std::size_t i = 0; i < stream.epochs.size(); ++i) {
    ObservationEpoch& epoch = stream.epochs[i];
    if (!run)
      timing.Time([&] { run = std::make_unique<HourRun>(settings, "bench", header, navigation, events); });
    const std::int64_t next_ns = epoch.time_ns + kNanosecondsPerSecond;
    timing.Time([&] { run->Add(epoch); });
    if (BeginOfMinute(next_ns) == next_ns) {
      timing.Time([&] {
        run->EndMinute(no_more);
        run->TakeMultipath();
      });
    }
    if (BeginOfHour(next_ns) == next_ns || i + 1 == stream.epochs.size()) {
      timing.Time([&] {
        run->Finish();
        run.reset();
      });
    }
    timing.EndEpoch();
  }
}

/// A station over the messages of the stream.
void RunStation(const std::string& path, bool published, Timing& timing) {
  const DecodedStream stream(path);
  const std::int64_t start_ns = stream.epochs.front().time_ns;
  StationSettings settings;
  settings.name = "BENCH";
  settings.start_gps_ns = start_ns;
  LiveBoard board;
  StationJudge judge(settings, "simulated", true, board);
  judge.UseEphemerides(stream.messages, stream.records, start_ns);
  judge.Connected(start_ns);
  std::ifstream file(path, std::ios::binary);
  rtcm::FrameScanner frames;
  frames.Append(std::string(std::istreambuf_iterator<char>(file), {}));
  Count epochs = 0;
  while (const auto message = frames.Next()) {
    const std::string frame = rtcm::FrameOf(*message);
    timing.Time([&] { judge.Take(frame, start_ns); });
    if (judge.Epochs() == epochs) continue;
    epochs = judge.Epochs();
    if (published) timing.Time([&] { judge.Publish(start_ns); });
    timing.EndEpoch();
  }
  timing.Time([&] { judge.Finish(start_ns); });
  timing.EndAll();
}

int Run(int count, char** arguments) {
  const std::string what = count > 1 ? arguments[1] : "";
  const double hours = count > 2 ? std::atof(arguments[2]) : 3;
  if ((what != "judging" && what != "everything" && what != "published") || !(hours > 0)) {
    std::fprintf(stderr, "usage: bench_live_station judging|everything|published [HOURS]\n");
    return 2;
  }
  std::string folder = (std::filesystem::temp_directory_path() / "bench-live-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) return 1;
  const std::string path = SimulatedStream(folder, hours);
  Timing timing;
  if (what == "judging") {
    RunJudging(path, timing);
  } else {
    RunStation(path, what == "published", timing);
  }
  std::filesystem::remove_all(folder);
  timing.Print(what.c_str());
  return 0;
}

}  // namespace
}  // namespace orsolva_bench

int main(int count, char** arguments) { return orsolva_bench::Run(count, arguments); }
