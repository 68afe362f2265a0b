#include "host/judging/stream_source.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/formats/rtcm/reader.h"
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

}  // namespace

void RoundAsRinex(ObservationEpoch& epoch) {
  for (SignalObservation& signal : epoch.signals) {
    Round(signal.pseudorange_m);
    Round(signal.phase_cycles);
    Round(signal.doppler_hz);
    Round(signal.snr_dbhz);
  }
}

StreamSource::StreamSource(StreamFormat format, std::string name, Open open,
                           std::optional<std::int64_t> near_ns, Diagnostics& diagnostics)
    : format_(format), name_(std::move(name)), open_(std::move(open)), diagnostics_(diagnostics) {
  try {
    Begin(std::nullopt);
  } catch (const FileError& error) {
    if (error.Found() != rtcm::kFoundNoDate) throw;
    undated_ = error;
    if (near_ns) Begin(near_ns);
  }
}

void StreamSource::Begin(std::optional<std::int64_t> near_ns) {
  Survey(near_ns);
  StreamOptions options;
  options.near_ns = header_.first_epoch ? header_.first_epoch->time * kNanosecondsPerSecond : near_ns;
  header_.first_epoch.reset();
  reader_ = ReadStream(format_, open_(diagnostics_), name_, diagnostics_, options);
  undated_.reset();
  if (navigation_) TakeChannels(navigation_->broadcast);
}

/// Reads the whole recording without its epochs. Its notices are those of the second reading.
void StreamSource::Survey(std::optional<std::int64_t> near_ns) {
  Diagnostics unused;
  const std::unique_ptr<StreamReading> reading =
      ReadStream(format_, open_(unused), name_, unused, {near_ns, false});
  ObservationEpoch none;
  while (reading->Recording().Next(none)) continue;
  StreamNavigation ephemerides;
  reading->GiveEphemerides(ephemerides);
  if (!ephemerides.Empty()) {
    auto navigation = std::make_shared<ReadNavigation>();
    navigation->files = {name_};
    navigation->has_record_files = true;
    ephemerides.AppendTo(navigation->set, navigation->broadcast);
    navigation_ = std::move(navigation);
  }
  reading->Describe(header_);
  antenna_ = header_.antenna;
  receiver_ = header_.receiver;
  if (const auto first = reading->FirstTime()) {
    header_.first_epoch = Time_gbt{*first / kNanosecondsPerSecond, 0};
  }
}

void StreamSource::TakeChannels(const BroadcastRecords& records) {
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

bool StreamSource::Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
  if (undated_) throw FileError(*undated_);
  if (!reader_->Recording().Next(full)) return false;
  RoundAsRinex(full);
  FillLibraryEpoch(full, name_, diagnostics_, epoch);
  NoteChanges();
  return true;
}

void StreamSource::NoteChanges() {
  const auto compare = [this](const char* what, std::string& known, const std::string& stated) {
    if (stated.empty() || stated == known) return;
    if (changes_.size() < kMaxChanges) changes_.push_back({what, known, stated});
    known = stated;
  };
  compare("antenna", antenna_, reader_->Antenna());
  compare("receiver", receiver_, reader_->Receiver());
}

}  // namespace orsolva_host
