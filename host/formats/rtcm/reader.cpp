#include "host/formats/rtcm/reader.h"

#include <utility>

namespace orsolva_host::rtcm {
namespace {

constexpr std::size_t kMaxAhead = 4 * 1024 * 1024;

bool IsObservation(std::string_view message) {
  BitReader bits(message);
  return HoldsObservations(static_cast<int>(bits.Unsigned(12)));
}

}  // namespace

Reader::Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
               const ReaderOptions& options)
    : RecordingReader(std::move(source), std::move(name), diagnostics, kFrameForm),
      decoder_({options.near_ns, options.epoch_end, options.epochs}) {
  ReadUpToDate();
}

/// Reads ahead until the date is known.
void Reader::ReadUpToDate() {
  std::size_t kept = 0;
  bool any_observation = false;
  while (!decoder_.Clock().Known() && kept < kMaxAhead) {
    const auto message = ReadAhead();
    if (!message) break;
    decoder_.TakeDateOnly(*message);
    any_observation = any_observation || IsObservation(*message);
    kept += message->size();
  }
  if (!decoder_.Clock().Known() && Frames().frames == 0) {
    throw FileError(Name(), 0, "no RTCM 3 frame", "frames that begin with D3 hex and have a correct CRC",
                    "Check that the file is a recording of an RTCM 3 stream.");
  }
  if (!decoder_.UseWeakDate() && any_observation) {
    throw FileError(Name(), 0, std::string(kFoundNoDate),
                    "a week in an ephemeris, or the date of the recording",
                    "Name a navigation file of the day with --nav, or say with --start at which date the "
                    "recording begins.");
  }
}

void Reader::AddNotices() {
  const auto add = [this](std::uint64_t count, const char* text, bool recovered) {
    AddNotice(count, text, recovered);
  };
  const MessageCounts& messages = decoder_.Counts();
  const FieldCounts& fields = decoder_.Fields();
  std::uint64_t damaged = 0;
  for (const auto& [type, count] : messages.types) damaged += count.damaged;
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
