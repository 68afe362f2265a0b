#include "host/rinex/spliced_header.h"

#include <algorithm>
#include <string_view>

#include "host/rinex/decimal.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/line_reader.h"

namespace orsolva_host {
namespace {

const std::string* LineOf(const EpochBlock& block, std::string_view label) {
  const auto found = std::find_if(block.records.begin(), block.records.end(),
                                  [label](const std::string& line) { return HeaderLabel(line) == label; });
  return found == block.records.end() ? nullptr : &*found;
}

template <typename Value>
void KeepIfAbsent(const Value& before, Value& now) {
  if (now == Value()) now = before;
}

}  // namespace

bool ChangesForm(const EpochBlock& block, const ObservationHeader& header) {
  const std::string* const line = LineOf(block, "RINEX VERSION / TYPE");
  double version = 0;
  if (line == nullptr || ParseDecimal(Field(*line, 0, 9), version) != FieldState::kNumber) return false;
  if ((version < 3) != (header.version < 3)) return true;
  // The lines of an event are compressed with the file around them.
  return block.flag == kStrayHeader && (LineOf(block, "CRINEX VERS   / TYPE") != nullptr) != header.crinex;
}

ObservationHeader SplicedHeader(const EpochBlock& block, const ObservationHeader& before,
                                const std::string& file, Diagnostics& diagnostics) {
  std::string text;
  for (const std::string& line : block.records) text += line + "\n";
  if (LineOf(block, "END OF HEADER") == nullptr) text += std::string(60, ' ') + "END OF HEADER\n";
  LineReader lines(TextBytes(std::move(text)));
  ObservationHeader header;
  Diagnostics notices;
  HeaderParser(file, notices, header).ReadAll(lines);
  for (const Notice& notice : notices.Notices()) {
    diagnostics.Add(file, block.first_record_line + notice.line - 1, notice.text, notice.recovered);
  }
  const bool any =
      std::any_of(header.types.begin(), header.types.end(), [](const auto& types) { return !types.empty(); });
  if (!any) {
    throw FileError(file, block.line, "a second header of another form without observation types",
                    "the types of the observations after it", "Split the file there.");
  }
  if (block.flag != kStrayHeader) header.crinex = before.crinex;
  KeepIfAbsent(before.marker, header.marker);
  KeepIfAbsent(before.receiver, header.receiver);
  KeepIfAbsent(before.antenna, header.antenna);
  KeepIfAbsent(before.position, header.position);
  KeepIfAbsent(before.leap_seconds, header.leap_seconds);
  for (std::size_t i = 0; i < header.glonass_channels.size(); ++i) {
    KeepIfAbsent(before.glonass_channels[i], header.glonass_channels[i]);
  }
  header.first_epoch = before.first_epoch;
  header.interval_s = before.interval_s;
  return header;
}

}  // namespace orsolva_host
