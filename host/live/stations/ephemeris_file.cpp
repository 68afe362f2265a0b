#include "host/live/stations/ephemeris_file.h"

#include <memory>
#include <system_error>
#include <utility>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/frame.h"
#include "host/judging/opened_file.h"
#include "host/judging/run_error.h"
#include "host/rinex/navigation_reader.h"

namespace orsolva_host::live {
namespace {

constexpr std::size_t kPieceBytes = 64 * 1024;

/// The message that carries records of a satellite; 0 where there is none.
int MessageFor(const KeplerRecord& record) {
  switch (record.satellite.system) {
    case 'G':
      return 1019;
    case 'I':
      return 1041;
    case 'C':
      return 1042;
    case 'J':
      return 1044;
    case 'E':
      return record.second_message ? 1045 : 1046;
    default:
      return 0;
  }
}

FileEphemerides OfStream(ByteSource& bytes, std::int64_t near_ns) {
  rtcm::DecoderOptions options;
  options.near_ns = near_ns;
  options.epochs = false;
  rtcm::Decoder decoder(options);
  rtcm::FrameScanner frames;
  std::string buffer(kPieceBytes, '\0');
  while (const std::size_t count = bytes.Read(buffer.data(), buffer.size())) {
    frames.Append({buffer.data(), count});
    while (const auto message = frames.Next()) decoder.Take(*message);
  }
  frames.Finish();
  while (const auto message = frames.Next()) decoder.Take(*message);
  FileEphemerides found;
  found.messages = decoder.TakeEphemerides();
  found.records = decoder.TakeBroadcast();
  return found;
}

FileEphemerides OfNavigation(std::unique_ptr<ByteSource> bytes, const std::string& path,
                             Diagnostics& notices) {
  NavigationReader reader(notices);
  reader.Read(std::move(bytes), path);
  FileEphemerides found;
  for (const KeplerRecord& record : reader.Broadcast().kepler) {
    const int message = MessageFor(record);
    if (message == 0) continue;
    found.messages.push_back(rtcm::MessageOf(record, message));
    found.records.kepler.push_back(record);
  }
  for (const StateVectorRecord& record : reader.Broadcast().state_vectors) {
    if (record.satellite.system != 'R') continue;
    found.messages.push_back(rtcm::MessageOf(record));
    found.records.state_vectors.push_back(record);
  }
  return found;
}

}  // namespace

FileEphemerides ReadEphemerides(const std::string& path, std::int64_t near_ns) {
  Diagnostics notices;
  OpenedFile file = OpenAnyFile(path, notices, {});
  FileEphemerides found;
  if (file.kind == ContentKind::kStream) {
    found = OfStream(*file.bytes, near_ns);
  } else if (file.kind == ContentKind::kNavigation) {
    found = OfNavigation(std::move(file.bytes), path, notices);
  }
  if (found.messages.empty())
    throw RunError(path + ": it holds no ephemerides; expected a RINEX navigation file or RTCM 3");
  return found;
}

FileEphemerides Since(const FileEphemerides& all, double oldest_s) {
  FileEphemerides kept;
  auto kepler = all.records.kepler.begin();
  auto vector = all.records.state_vectors.begin();
  for (const rtcm::EphemerisMessage& message : all.messages) {
    if (rtcm::IsStateVector(message)) {
      const StateVectorRecord& record = *vector++;
      if (record.toe_s < oldest_s) continue;
      kept.records.state_vectors.push_back(record);
    } else {
      const KeplerRecord& record = *kepler++;
      if (record.toe_s < oldest_s) continue;
      kept.records.kepler.push_back(record);
    }
    kept.messages.push_back(message);
  }
  return kept;
}

bool FileWatch::Changed() {
  std::error_code failed;
  const auto written = std::filesystem::last_write_time(path_, failed);
  if (failed) return false;
  const bool changed = written_ && *written_ != written;
  written_ = written;
  return changed;
}

}  // namespace orsolva_host::live
