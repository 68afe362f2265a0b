#include "host/formats/streams/recording_reader.h"

#include <array>
#include <utility>

namespace orsolva_host {
namespace {

constexpr std::size_t kReadAtOnce = 64 * 1024;
constexpr std::size_t kLongestPrelude = 4 * 1024 * 1024;

}  // namespace

RecordingReader::RecordingReader(std::unique_ptr<ByteSource> source, std::string name,
                                 Diagnostics& diagnostics, const FrameForm& form)
    : source_(std::move(source)), name_(std::move(name)), diagnostics_(diagnostics), frames_(form) {}

bool RecordingReader::ReadMore() {
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

std::optional<std::string_view> RecordingReader::ReadAhead() {
  std::optional<std::string_view> message = frames_.Next();
  while (!message) {
    if (frames_.Counts().frames == 0 && frames_.Counts().skipped_bytes > kLongestPrelude) break;
    if (!ReadMore()) break;
    message = frames_.Next();
  }
  if (message) ahead_.emplace_back(*message);
  return message;
}

bool RecordingReader::Next(ObservationEpoch& epoch) {
  if (failure_) return TakeEpoch(epoch);
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
    return TakeEpoch(epoch);
  }
}

/// Takes the message that is next, or reads on. @return false at the end of the data
bool RecordingReader::TakeNext() {
  if (!ahead_.empty()) {
    TakeMessage(ahead_.front());
    ahead_.pop_front();
    return true;
  }
  const auto message = frames_.Next();
  if (message) TakeMessage(*message);
  return message || ReadMore();
}

bool RecordingReader::Advance(ObservationEpoch& epoch) {
  while (!TakeEpoch(epoch)) {
    if (finished_) return false;
    if (!TakeNext()) Finish();
  }
  return true;
}

void RecordingReader::Finish() {
  EndMessages();
  const FrameCounts& frames = frames_.Counts();
  AddNotice(frames.crc_errors, "frame with a wrong CRC", false);
  AddNotice(frames.cut_frames, "the data end within a frame", false);
  if (frames.skipped_bytes == 1) AddNotice(1, "1 byte outside frames skipped", true);
  if (frames.skipped_bytes > 1)
    AddNotice(1, std::to_string(frames.skipped_bytes) + " bytes outside frames skipped", true);
  AddNotices();
  finished_ = true;
}

void RecordingReader::AddNotice(std::uint64_t count, const std::string& text, bool recovered) {
  if (count == 0) return;
  const std::size_t kind = diagnostics_.AddKind(name_, 0, text, recovered);
  diagnostics_.Again(kind, static_cast<long>(count) - 1);
}

}  // namespace orsolva_host
