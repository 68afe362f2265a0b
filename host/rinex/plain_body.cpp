// Epochs of plain RINEX 3 and 4 files.
#include <utility>

#include "host/rinex/decimal.h"
#include "host/rinex/epoch_line.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kCellWidth = 16;
constexpr std::size_t kValueWidth = 14;

class Plain : public ObservationBody {
 public:
  Plain(LineReader& lines, std::string file, Diagnostics& diagnostics)
      : lines_(lines), file_(std::move(file)), diagnostics_(diagnostics) {}

  bool Next(const ObservationTypes& types, EpochBlock& epoch) override {
    EpochLine head;
    if (!FindEpoch(head)) return false;
    epoch.line = lines_.Line();
    epoch.time = head.time;
    epoch.time_given = head.time_given;
    epoch.flag = head.flag;
    epoch.satellites.clear();
    epoch.cells.clear();
    epoch.records.clear();
    epoch.first_record_line = epoch.line + 1;
    for (int i = 0; i < head.count; ++i) {
      std::string_view line;
      if (!NextOfEpoch(line)) break;
      if (head.flag > 1) {
        epoch.records.emplace_back(line);
      } else {
        TakeSatellite(line, types, epoch);
      }
    }
    return true;
  }

 private:
  void Notice(const char* text, bool recovered) { diagnostics_.Add(file_, lines_.Line(), text, recovered); }

  bool FindEpoch(EpochLine& head) {
    std::string_view line;
    while (lines_.Next(line)) {
      if (ParseEpochLine(line, head)) return true;
      if (!Trimmed(line).empty()) {
        Notice(line[0] == '>' ? "an epoch line that cannot be read; its lines are passed over"
                              : "lines that belong to no epoch are passed over",
               false);
      }
    }
    return false;
  }

  bool NextOfEpoch(std::string_view& line) {
    if (!lines_.Next(line)) {
      Notice("the file ends inside an epoch", false);
      return false;
    }
    if (!line.empty() && line[0] == '>') {
      lines_.PushBack();
      Notice("an epoch has fewer lines than it says", true);
      return false;
    }
    return true;
  }

  void TakeSatellite(std::string_view line, const ObservationTypes& types, EpochBlock& epoch) {
    SatelliteRow row;
    if (!ParseSatellite(Field(line, 0, 3), row.letter, row.number)) {
      return Notice("a line whose satellite cannot be read is passed over", false);
    }
    row.first_cell = epoch.cells.size();
    row.cells = types[row.letter - 'A'].size();
    for (std::size_t i = 0; i < row.cells; ++i) {
      epoch.cells.push_back(ReadCell(Field(line, 3 + kCellWidth * i, kCellWidth)));
    }
    epoch.satellites.push_back(row);
  }

  Cell ReadCell(std::string_view field) {
    Cell cell;
    const FieldState state = ParseDecimal(field.substr(0, kValueWidth), cell.value);
    cell.present = state == FieldState::kNumber;
    if (state == FieldState::kBad) Notice("a value that is no number counts as missing", false);
    if (field.size() > kValueWidth) cell.loss_of_lock = field[kValueWidth];
    if (field.size() > kValueWidth + 1) cell.strength = field[kValueWidth + 1];
    return cell;
  }

  LineReader& lines_;
  std::string file_;
  Diagnostics& diagnostics_;
};

}  // namespace

std::unique_ptr<ObservationBody> PlainBody(LineReader& lines, std::string file, Diagnostics& diagnostics) {
  return std::make_unique<Plain>(lines, std::move(file), diagnostics);
}

}  // namespace orsolva_host
