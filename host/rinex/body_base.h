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

  void Begin(const EpochLine& head, EpochBlock& epoch) const;
  /// Turns the header line just read and those that follow into an event.
  void TakeStrayHeader(std::string_view line, EpochBlock& epoch);

  /// The last value of an unterminated line may have lost digits; it is treated as missing when it is shorter
  /// than its field.
  void DropCutValue(std::string_view line, std::size_t first_column, std::size_t count, Cell* cells);

  LineReader& lines_;
  std::string file_;
  Diagnostics& diagnostics_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_BODY_BASE_H
