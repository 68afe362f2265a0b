#include "host/formats/sbf/reader.h"

#include <utility>

#include "host/formats/sbf/frame.h"

namespace orsolva_host::sbf {

Reader::Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics, bool epochs)
    : RecordingReader(std::move(source), std::move(name), diagnostics, kFrameForm), decoder_(epochs) {
  if (ReadAhead()) return;
  throw FileError(Name(), 0, "no SBF block", "blocks that begin with $@ and have a correct CRC",
                  "Check that the file is a recording of a Septentrio receiver.");
}

void Reader::AddNotices() {
  const BlockTotals& counts = decoder_.Counts();
  std::uint64_t damaged = 0;
  for (const auto& [number, count] : counts.types) damaged += count.damaged;
  AddNotice(damaged, "block too short, or with values that it cannot have", false);
  AddNotice(counts.undecoded, "block of a type that is not decoded", true);
  AddNotice(counts.impossible_times, "observations with an impossible time", false);
  AddNotice(counts.scrambled, "observations scrambled by the receiver", false);
  AddNotice(counts.impossible, "frequency number that GLONASS does not have", false);
  AddNotice(counts.unrelated, "value without the one that it is a difference from", false);
  AddNotice(counts.other_antennas, "signal of another antenna left out", true);
  AddNotice(counts.unknown_satellites, "satellite number that is not known", false);
  AddNotice(counts.unknown_signals, "signal that is not known", false);
  AddNotice(counts.duplicates, "signal twice in a block, the first taken", false);
}

}  // namespace orsolva_host::sbf
