#include "host/formats/rtcm/reader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orsolva_host::rtcm {
namespace {

constexpr std::size_t kReadAtOnce = 64 * 1024;
constexpr std::size_t kReadAhead = 4 * 1024 * 1024;

bool IsObservation(std::string_view message) {
  BitReader bits(message);
  return HoldsObservations(static_cast<int>(bits.Unsigned(12)));
}

}  // namespace

Reader::Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
               const ReaderOptions& options)
    : source_(std::move(source)),
      name_(std::move(name)),
      diagnostics_(diagnostics),
      decoder_({options.near_ns, options.epoch_end, options.epochs}) {
  ReadAhead();
}

/// Reads messages until the date is known, and keeps them.
void Reader::ReadAhead() {
  std::size_t kept = 0;
  while (!decoder_.Clock().Known() && kept < kReadAhead) {
    const auto message = frames_.Next();
    if (!message) {
      // Anything may follow a frame, but a file of 4 MB without one is something else.
      if (frames_.Counts().frames == 0 && frames_.Counts().skipped_bytes > kReadAhead) break;
      if (!ReadMore()) break;
      continue;
    }
    decoder_.TakeDateOnly(*message);
    kept += message->size();
    ahead_.emplace_back(*message);
  }
  if (!decoder_.Clock().Known() && frames_.Counts().frames == 0) {
    throw FileError(name_, 0, "no RTCM 3 frame", "frames that begin with D3 hex and have a correct CRC",
                    "Check that the file is a recording of an RTCM 3 stream.");
  }
  if (decoder_.UseWeakDate()) return;
  if (std::any_of(ahead_.begin(), ahead_.end(), IsObservation)) {
    throw FileError(name_, 0, std::string(kFoundNoDate),
                    "a week in an ephemeris, or the date of the recording",
                    "Name a navigation file of the day with --nav, or say with --start at which date the "
                    "recording begins.");
  }
}

bool Reader::ReadMore() {
  if (at_end_) return false;
  std::array<char, kReadAtOnce> bytes;
  const std::size_t count = source_->Read(bytes.data(), bytes.size());
  at_end_ = count == 0;
  if (at_end_) {
    frames_.Finish();
  } else {
    frames_.Append({bytes.data(), count});
  }
  return true;
}

bool Reader::Next(ObservationEpoch& epoch) {
  if (failure_) return decoder_.Next(epoch);
  try {
    const bool found = Advance(epoch);
    any_epoch_ = any_epoch_ || found;
    return found;
  } catch (const FileError& error) {
    if (!any_epoch_) throw;
    failure_ = error;
    diagnostics_.Add(name_, 0,
                     "reading stops here: found " + error.Found() + ", expected " + error.Expected() + ". " +
                         error.Advice(),
                     false);
    Finish();
    return decoder_.Next(epoch);
  }
}

bool Reader::Advance(ObservationEpoch& epoch) {
  while (!decoder_.Next(epoch)) {
    if (finished_) return false;
    if (!ahead_.empty()) {
      decoder_.Take(ahead_.front());
      ahead_.pop_front();
    } else if (const auto message = frames_.Next()) {
      decoder_.Take(*message);
    } else if (!ReadMore()) {
      Finish();
    }
  }
  return true;
}

void Reader::Finish() {
  decoder_.Finish();
  AddNotices();
  finished_ = true;
}

void Reader::AddNotices() {
  const auto add = [&](std::uint64_t count, const std::string& text, bool recovered) {
    if (count == 0) return;
    const std::size_t kind = diagnostics_.AddKind(name_, 0, text, recovered);
    diagnostics_.Again(kind, static_cast<long>(count) - 1);
  };
  const FrameCounts& frames = frames_.Counts();
  const MessageCounts& messages = decoder_.Counts();
  const FieldCounts& fields = decoder_.Fields();
  std::uint64_t damaged = 0;
  for (const auto& [type, count] : messages.types) damaged += count.damaged;
  add(frames.crc_errors, "frame with a wrong CRC", false);
  add(frames.cut_frames, "the data end within a frame", false);
  add(frames.skipped_bytes, "byte outside frames skipped", true);
  add(damaged, "message shorter than its fields", false);
  add(messages.undecoded, "message of a type that is not decoded", true);
  add(messages.undated, "observations before any date", false);
  add(messages.impossible_times, "observations with an impossible time", false);
  add(messages.impossible_ephemerides, "ephemeris with an impossible satellite or time", false);
  add(messages.impossible_dates, "ephemeris with an impossible week or day, placed by the time", true);
  add(fields.impossible, "range outside its field's limits", false);
  add(fields.unknown_satellites, "satellite number that is reserved", false);
  add(fields.unknown_signals, "signal that is reserved", false);
  add(fields.ranges_in_parts, "satellite with a range modulo 1 ms and no whole range before", false);
  add(fields.phases_without_channel, "GLONASS phase before the channel is known", false);
  add(decoder_.Clock().WrongDays(), "GLONASS day of week that disagrees with the date", true);
  add(decoder_.Clock().WrongWeeks(), "week of an ephemeris that disagrees with the date", true);
  add(decoder_.Phases().RollOvers(), "phase rolled over by 1500 cycles, taken back", true);
  add(decoder_.Phases().UnknownJumps(),
      "phase set to its range again with lock unbroken, marked as loss of lock", true);
  add(decoder_.Epochs().LateMessages(), "observations after their epoch was complete", false);
  add(decoder_.Epochs().OtherStations(), "observations of another station", false);
  add(decoder_.Epochs().Duplicates(), "signal in several messages of an epoch, the finest taken", true);
}

}  // namespace orsolva_host::rtcm
