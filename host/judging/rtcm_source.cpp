#include "host/judging/rtcm_source.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/judging/library_epoch.h"
#include "host/judging/stream_navigation.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kMaxChanges = 100;

void Round(double& value) {
  constexpr double kThousand = 1000;
  value = std::round(value * kThousand) / kThousand;
  if (value == 0) value = kAbsent;
}

/// A time of the day or days that records are for.
std::optional<double> TimeOf(const BroadcastRecords& records) {
  if (!records.kepler.empty()) return records.kepler.front().toe_s;
  if (!records.state_vectors.empty()) return records.state_vectors.front().toe_s;
  return std::nullopt;
}

/// Whether messages give phases in the steps of MSM4 and MSM5.
bool IsCoarse(rtcm::MsmType type) { return type.kind == 4 || type.kind == 5; }

}  // namespace

void RoundAsRinex(ObservationEpoch& epoch) {
  for (SignalObservation& signal : epoch.signals) {
    Round(signal.pseudorange_m);
    Round(signal.phase_cycles);
    Round(signal.doppler_hz);
    Round(signal.snr_dbhz);
  }
}

StreamFacts StreamOf(const rtcm::Reader& reader) {
  StreamFacts stream;
  stream.format = "RTCM 3";
  const rtcm::FrameCounts& frames = reader.Frames();
  stream.frames = frames.frames;
  stream.crc_errors = frames.crc_errors;
  stream.skipped_bytes = frames.skipped_bytes;
  for (const auto& [type, count] : reader.Messages().Counts().types) {
    stream.messages.push_back({type, count.messages, count.damaged, rtcm::IsDecoded(type)});
    const auto msm = rtcm::MsmTypeOf(type);
    if (!msm || !IsCoarse(*msm) || stream.coarse_systems.find(msm->system) != std::string::npos) continue;
    stream.coarse_systems += msm->system;
  }
  return stream;
}

RtcmSource::RtcmSource(std::string name, Open open, std::optional<std::int64_t> near_ns,
                       Diagnostics& diagnostics)
    : name_(std::move(name)), open_(std::move(open)), diagnostics_(diagnostics) {
  try {
    Begin(std::nullopt);
  } catch (const FileError& error) {
    if (error.Found() != rtcm::kFoundNoDate) throw;
    undated_ = error;
    if (near_ns) Begin(near_ns);
  }
}

void RtcmSource::Begin(std::optional<std::int64_t> near_ns) {
  Survey(near_ns);
  rtcm::ReaderOptions options;
  options.near_ns = header_.first_epoch ? header_.first_epoch->time * kNanosecondsPerSecond : near_ns;
  header_.first_epoch.reset();
  reader_ = std::make_unique<rtcm::Reader>(open_(diagnostics_), name_, diagnostics_, options);
  undated_.reset();
  if (navigation_) TakeChannels(navigation_->broadcast);
}

/// Reads the whole recording without its epochs. Its notices are those of the second reading.
void RtcmSource::Survey(std::optional<std::int64_t> near_ns) {
  Diagnostics unused;
  rtcm::ReaderOptions options;
  options.near_ns = near_ns;
  options.epochs = false;
  rtcm::Reader reader(open_(unused), name_, unused, options);
  ObservationEpoch none;
  while (reader.Next(none)) continue;
  StreamNavigation ephemerides;
  ephemerides.Take(reader);
  if (!ephemerides.Empty()) {
    auto navigation = std::make_shared<ReadNavigation>();
    navigation->files = {name_};
    navigation->has_record_files = true;
    ephemerides.AppendTo(navigation->set, navigation->broadcast);
    navigation_ = std::move(navigation);
  }
  const rtcm::StationDescription& station = reader.Messages().FirstStation();
  header_.receiver = station.receiver;
  header_.antenna = station.antenna;
  header_.position = station.position_m;
  antenna_ = header_.antenna;
  receiver_ = header_.receiver;
  if (const auto first = reader.Messages().FirstTime()) {
    header_.first_epoch = Time_gbt{*first / kNanosecondsPerSecond, 0};
  }
}

void RtcmSource::TakeChannels(const BroadcastRecords& records) {
  if (undated_) {
    const std::optional<double> near_s = TimeOf(records);
    if (near_s) Begin(static_cast<std::int64_t>(*near_s) * kNanosecondsPerSecond);
  }
  if (!reader_) return;
  for (const StateVectorRecord& record : records.state_vectors) {
    if (record.satellite.system != 'R' || !record.channel) continue;
    reader_->TakeChannel(record.satellite.number, *record.channel);
    header_.glonass_channels[record.satellite.number] = record.channel;
  }
}

bool RtcmSource::Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
  if (undated_) throw FileError(*undated_);
  if (!reader_->Next(full)) return false;
  RoundAsRinex(full);
  FillLibraryEpoch(full, name_, diagnostics_, epoch);
  NoteChanges();
  return true;
}

void RtcmSource::NoteChanges() {
  const rtcm::StationDescription& now = reader_->Station();
  const auto compare = [this](const char* what, std::string& known, const std::string& stated) {
    if (stated.empty() || stated == known) return;
    if (changes_.size() < kMaxChanges) changes_.push_back({what, known, stated});
    known = stated;
  };
  compare("antenna", antenna_, now.antenna);
  compare("receiver", receiver_, now.receiver);
}

}  // namespace orsolva_host
