#include "host/judging/stream_contents.h"

#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "host/judging/nominal_interval.h"
#include "host/judging/settings.h"
#include "host/report/stream_text.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kFirstEpochs = 600;

struct SystemCounts {
  std::set<int> satellites;
  std::uint64_t observations = 0;  ///< satellites summed over epochs
  std::map<std::string, std::uint64_t> signals;
  std::uint64_t ephemerides = 0;
};

Time_gbt TimeOf(std::int64_t time_ns) {
  return {time_ns / kNanosecondsPerSecond, static_cast<double>(time_ns % kNanosecondsPerSecond) / 1e9};
}

std::string TextOf(std::int64_t time_ns) { return TimeText(TimeOf(time_ns)) + " GPST"; }

class Contents {
 public:
  void Add(const ObservationEpoch& epoch) {
    if (epochs_++ == 0) first_ns_ = epoch.time_ns;
    last_ns_ = epoch.time_ns;
    if (start_.size() < kFirstEpochs) start_.emplace_back().time = TimeOf(epoch.time_ns);
    for (const SatelliteObservation& satellite : epoch.satellites) {
      SystemCounts& system = systems_[satellite.id.system];
      system.satellites.insert(satellite.id.number);
      ++system.observations;
      for (std::size_t i = 0; i < satellite.signal_count; ++i) {
        ++system.signals[NameOf(epoch.signals[satellite.first_signal + i].code)];
      }
    }
  }

  void Add(const BroadcastRecords& records) {
    for (const KeplerRecord& record : records.kepler) ++systems_[record.satellite.system].ephemerides;
    for (const StateVectorRecord& record : records.state_vectors) {
      ++systems_[record.satellite.system].ephemerides;
    }
  }

  void Show(const ContentRow& row) const;

 private:
  void ShowSystem(char letter, const ContentRow& row) const;

  std::uint64_t epochs_ = 0;
  std::int64_t first_ns_ = 0;
  std::int64_t last_ns_ = 0;
  std::vector<ObsEpoch_QC_gbt> start_;  ///< times of the first epochs
  std::map<char, SystemCounts> systems_;
};

void Contents::Show(const ContentRow& row) const {
  row("Epochs", fmt::format("{}", epochs_));
  if (epochs_ > 0) {
    row("First epoch", TextOf(first_ns_));
    row("Last epoch", TextOf(last_ns_));
    row("Duration", fmt::format("{:.4f} h", SecondsBetween(last_ns_, first_ns_) / 3600));
    const auto interval_s = MostFrequentInterval(start_.data(), start_.size());
    row("Interval", interval_s ? fmt::format("{:g} s in the data", *interval_s) : "none");
  }
  for (const char letter : kAllSystems) ShowSystem(letter, row);
}

void Contents::ShowSystem(char letter, const ContentRow& row) const {
  const auto found = systems_.find(letter);
  if (found == systems_.end()) return;
  const SystemCounts& counts = found->second;
  std::string text;
  if (counts.observations > 0) {
    text = fmt::format("{} satellites, {} satellite-epochs; signals", counts.satellites.size(),
                       counts.observations);
    for (const auto& [code, count] : counts.signals) text += fmt::format(" {}={}", code, count);
  }
  if (counts.ephemerides > 0) {
    text += fmt::format("{}{} ephemerides", text.empty() ? "" : "; ", counts.ephemerides);
  }
  row(std::string(1, letter), text);
}

void ShowStation(const StreamReading& reading, const ContentRow& row) {
  ObservationHeader header;
  reading.Describe(header);
  if (!header.marker.empty()) row("Marker", header.marker);
  row("Receiver", header.receiver);
  row("Antenna", header.antenna);
  const auto& p = header.position;
  row("Position X Y Z", p ? fmt::format("{:.4f} {:.4f} {:.4f} m, of the stream", (*p)[0], (*p)[1], (*p)[2])
                          : "none in the stream");
}

}  // namespace

void ShowStream(StreamFormat format, std::unique_ptr<ByteSource> bytes, const std::string& name,
                Diagnostics& diagnostics, const ContentRow& row) {
  const std::unique_ptr<StreamReading> reading = ReadStream(format, std::move(bytes), name, diagnostics);
  RecordingReader& recording = reading->Recording();
  Contents contents;
  ObservationEpoch epoch;
  while (recording.Next(epoch)) contents.Add(epoch);
  StreamNavigation navigation;
  reading->GiveEphemerides(navigation);
  NavigationSet unused;
  BroadcastRecords records;
  navigation.AppendTo(unused, records);
  contents.Add(records);
  const StreamFacts stream = reading->Facts();
  row("Kind", StreamText(stream));
  row("Messages", MessagesText(stream));
  ShowStation(*reading, row);
  contents.Show(row);
  if (recording.Failure()) throw FileError(*recording.Failure());
}

}  // namespace orsolva_host
