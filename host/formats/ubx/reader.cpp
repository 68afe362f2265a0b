#include "host/formats/ubx/reader.h"

#include <utility>

#include "host/formats/ubx/frame.h"

namespace orsolva_host::ubx {

Reader::Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics, bool epochs)
    : RecordingReader(std::move(source), std::move(name), diagnostics, kFrameForm), decoder_(epochs) {
  if (ReadAhead()) return;
  throw FileError(Name(), 0, "no UBX frame", "frames that begin with B5 62 hex and have a correct check sum",
                  "Check that the file is a recording of a u-blox receiver.");
}

void Reader::AddNotices() {
  const MessageCounts& counts = decoder_.Counts();
  std::uint64_t damaged = 0;
  for (const auto& [type, count] : counts.types) damaged += count.damaged;
  AddNotice(damaged, "message of another length or version than is read", false);
  AddNotice(counts.undecoded, "message of a type that is not decoded", true);
  AddNotice(counts.impossible_times, "observations with an impossible time", false);
  AddNotice(counts.impossible, "value that no satellite can have", false);
  AddNotice(counts.unknown_satellites, "satellite number that is not known", false);
  AddNotice(counts.unknown_signals, "signal that is not known", false);
  AddNotice(counts.duplicates, "signal twice in a message, the first taken", false);
}

}  // namespace orsolva_host::ubx
