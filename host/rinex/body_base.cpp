#include "host/rinex/body_base.h"

#include "host/rinex/fixed_field.h"
#include "host/rinex/header_labels.h"

namespace orsolva_host {
namespace {

// More than any header has; a longer block is split.
constexpr std::size_t kMaxStrayLines = 10000;

}  // namespace

void BodyBase::Begin(const EpochLine& head, EpochBlock& epoch) const {
  epoch.line = lines_.Line();
  epoch.time = head.time;
  epoch.time_given = head.time_given;
  epoch.flag = head.flag;
  epoch.clock_offset_s = head.clock_offset_s;
  epoch.satellites.clear();
  epoch.cells.clear();
  epoch.records.clear();
  epoch.first_record_line = epoch.line + 1;
}

void BodyBase::TakeStrayHeader(std::string_view line, EpochBlock& epoch) {
  EpochLine head;
  head.flag = kStrayHeader;
  Begin(head, epoch);
  epoch.first_record_line = epoch.line;
  do {
    epoch.records.emplace_back(line.substr(0, kRecordLine));
    if (HeaderLabel(line) == "END OF HEADER" || epoch.records.size() == kMaxStrayLines) return;
    if (!lines_.Next(line)) return;
  } while (IsHeaderLine(line));
  lines_.PushBack();
}

void BodyBase::DropCutValue(std::string_view line, std::size_t first_column, std::size_t count, Cell* cells) {
  if (line.size() > first_column) {
    const std::size_t last = (line.size() - first_column - 1) / kCellWidth;
    const std::size_t beyond = (line.size() - first_column) % kCellWidth;
    // A line may end after a value, with or without its two flags.
    if (last >= count || beyond == 0 || beyond >= kValueWidth) return;
    cells[last] = Cell();
  }
  EndsEarly("the file ends within a value, which is treated as missing");
}

std::unique_ptr<ObservationBody> BodyOf(const ObservationHeader& header, LineReader& lines, std::string file,
                                        Diagnostics& diagnostics) {
  if (header.version >= 3) {
    return header.crinex ? CrinexBody(lines, std::move(file), diagnostics)
                         : PlainBody(lines, std::move(file), diagnostics);
  }
  const char letter =
      header.system >= 'A' && header.system <= 'Z' && header.system != 'M' ? header.system : 'G';
  return header.crinex ? CrinexBody2(lines, std::move(file), diagnostics, letter)
                       : PlainBody2(lines, std::move(file), diagnostics, letter);
}

}  // namespace orsolva_host
