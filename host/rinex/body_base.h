// What the bodies of observation files have in common.
#ifndef ORSOLVA_RINEX_BODY_BASE_H
#define ORSOLVA_RINEX_BODY_BASE_H

#include <string>
#include <string_view>
#include <utility>

#include "host/rinex/epoch_line.h"
#include "host/rinex/observation_body.h"

namespace orsolva_host {

/// Columns of a header line; anything further right in the lines of an event is ignored.
constexpr std::size_t kRecordLine = 80;

class BodyBase : public ObservationBody {
 public:
  BodyBase(LineReader& lines, std::string file, Diagnostics& diagnostics)
      : lines_(lines), file_(std::move(file)), diagnostics_(diagnostics) {}

 protected:
  void Notice(const char* text, bool recovered = false) {
    diagnostics_.Add(file_, lines_.Line(), text, recovered);
  }

  /// The data end where more of them must follow.
  void EndsEarly(const char* text) { diagnostics_.AddIncomplete(file_, lines_.Line(), text); }

  /// A line between epochs that begins none. The last line of a file that is cut off is the beginning of one,
  /// unless it is the end mark of DOS.
  void SkipLine(std::string_view line, const char* text) {
    constexpr char kEndMark = '\x1a';
    if (lines_.Unterminated() && line[0] != kEndMark) return EndsEarly("the file ends within a line");
    Notice(text);
  }

  /// Whether the epoch line just read is the last of the data, without even a line end: it may have lost
  /// digits, and nothing follows it.
  bool EndsInEpochLine() {
    if (lines_.Unterminated()) EndsEarly("the file ends within an epoch line");
    return lines_.Unterminated();
  }

  void Begin(const EpochLine& head, EpochBlock& epoch) const;
  /// Turns the header line just read and those that follow into an event.
  void TakeStrayHeader(std::string_view line, EpochBlock& epoch);

  /// The last value of an unterminated line may have lost digits; it is treated as missing when the line ends
  /// within its field. A line that ends before its first value is cut off, too.
  void DropCutValue(std::string_view line, std::size_t first_column, std::size_t count, Cell* cells);

  LineReader& lines_;
  std::string file_;
  Diagnostics& diagnostics_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_BODY_BASE_H
