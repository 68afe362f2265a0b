#include "host/simulator/stream_writer.h"

#include <cmath>
#include <utility>

#include "host/formats/rtcm/ephemeris.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/station.h"
#include "host/simulator/header_lines.h"

namespace orsolva_host {
namespace {

constexpr int kStation = 1;
constexpr std::int64_t kEphemerides_ns = 300 * kNanosecondsPerSecond;
constexpr double kIssueStep_s = 3600;
constexpr int kIssues = 32;            // those of BDS, of 5 bits
constexpr int kGalileoAccuracy = 107;  // 3.12 m

int MessageOfSystem(char system) {
  switch (system) {
    case 'G':
      return 1019;
    case 'C':
      return 1042;
    case 'J':
      return 1044;
    case 'E':
      return 1046;
    default:
      return 0;
  }
}

/// Of each satellite the record whose reference time is nearest, in the order of satellites.
template <class Record>
std::map<SatelliteId, const Record*> Nearest(const std::vector<Record>& records, std::int64_t time_ns) {
  const double now_s = static_cast<double>(time_ns) / 1e9;
  std::map<SatelliteId, const Record*> nearest;
  for (const Record& record : records) {
    const Record*& best = nearest[record.satellite];
    if (best == nullptr || std::fabs(record.toe_s - now_s) < std::fabs(best->toe_s - now_s)) best = &record;
  }
  return nearest;
}

}  // namespace

rtcm::ChannelTable ChannelsOf(const BroadcastRecords& records) {
  rtcm::ChannelTable channels;
  for (const StateVectorRecord& record : records.state_vectors) {
    if (record.satellite.system == 'R') channels[record.satellite.number] = record.channel;
  }
  return channels;
}

StreamWriter::StreamWriter(std::unique_ptr<ByteSink> sink, int kind, BroadcastRecords records,
                           const std::array<double, 3>& position_m, std::int64_t start_ns)
    : sink_(std::move(sink)),
      epochs_(kind, kStation),
      channels_(ChannelsOf(records)),
      records_(std::move(records)),
      position_m_(position_m),
      decoder_({start_ns, rtcm::EpochEnd::kNextTime, true}),
      next_ephemerides_ns_(start_ns) {
  for (std::size_t number = 1; number < channels_.size(); ++number) {
    if (channels_[number]) decoder_.TakeChannel(static_cast<int>(number), *channels_[number]);
  }
}

void StreamWriter::Send(std::string_view message) {
  const std::string frame = rtcm::FrameOf(message);
  sink_->Write(frame.data(), frame.size());
  decoder_.Take(message);
}

void StreamWriter::SendStation() {
  rtcm::StationDescription station;
  station.id = kStation;
  station.position_m = position_m_;
  station.receiver = kSimulatedReceiver;
  station.antenna = kSimulatedAntenna;
  Send(rtcm::WritePosition(station));
  Send(rtcm::WriteEquipment(station));
}

void StreamWriter::SendEphemerides(std::int64_t time_ns) {
  for (const auto& [satellite, record] : Nearest(records_.kepler, time_ns)) {
    const int type = MessageOfSystem(satellite.system);
    if (type == 0) continue;
    rtcm::EphemerisMessage message = rtcm::MessageOf(*record, type);
    message.values[rtcm::term::kIssue] = std::llround(record->toe_s / kIssueStep_s) % kIssues;
    if (satellite.system == 'E') message.values[rtcm::term::kAccuracy] = kGalileoAccuracy;
    Send(rtcm::WriteEphemeris(message));
  }
  for (const auto& [satellite, record] : Nearest(records_.state_vectors, time_ns)) {
    if (satellite.system == 'R') Send(rtcm::WriteEphemeris(rtcm::MessageOf(*record)));
  }
}

void StreamWriter::Write(const ObservationEpoch& epoch) {
  if (epoch.time_ns >= next_ephemerides_ns_) {
    SendEphemerides(epoch.time_ns);
    SendStation();
    while (next_ephemerides_ns_ <= epoch.time_ns) next_ephemerides_ns_ += kEphemerides_ns;
  }
  for (const std::string& message : epochs_.Write(epoch, channels_)) Send(message);
}

void StreamWriter::Close() {
  decoder_.Finish();
  sink_->Close();
}

}  // namespace orsolva_host
