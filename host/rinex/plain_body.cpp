// Epochs of plain RINEX 3 and 4 files: one line per satellite.
#include <utility>

#include "host/rinex/body_base.h"
#include "host/rinex/cell_reader.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kFirstCellColumn = 3;

// The largest count in the three columns of an epoch line; an epoch of a damaged file ends there.
constexpr std::size_t kMaxSatellites = 999;

class Plain : public BodyBase {
 public:
  using BodyBase::BodyBase;

  bool Next(const ObservationTypes& types, EpochBlock& epoch) override {
    EpochLine head;
    std::string_view line;
    if (!FindEpoch(line, head)) return false;
    if (head.flag == kStrayHeader) {
      TakeStrayHeader(line, epoch);
      return true;
    }
    Begin(head, epoch);
    if (head.flag > 1) {
      ReadRecords(head.count, epoch);
    } else {
      ReadSatellites(head.count, types, epoch);
    }
    return true;
  }

 private:
  bool FindEpoch(std::string_view& line, EpochLine& head) {
    while (lines_.Next(line)) {
      if (ParseEpochLine(line, head)) {
        if (EndsInEpochLine()) return false;
        head.clock_offset_s = ParseClockOffset(Field(line, 41, 15));
        return true;
      }
      if (Trimmed(line).empty()) continue;
      if (IsHeaderLine(line)) {
        head.flag = kStrayHeader;
        return true;
      }
      SkipLine(line, line[0] == '>' ? "unreadable epoch line; the epoch is skipped"
                                    : "lines that belong to no epoch skipped");
    }
    return false;
  }

  void ReadRecords(int count, EpochBlock& epoch) {
    std::string_view line;
    for (int i = 0; i < count; ++i) {
      if (!NextOfEpoch(line)) return;
      epoch.records.emplace_back(line.substr(0, kRecordLine));
    }
  }

  void ReadSatellites(int count, const ObservationTypes& types, EpochBlock& epoch) {
    std::string_view line;
    for (int i = 0; i < count;) {
      if (!NextOfEpoch(line)) return;
      if (!PassesOver(line)) {
        TakeSatellite(line, types, epoch);
        ++i;
      }
    }
    TakeUncounted(types, epoch);
  }

  /// Comments and blank lines do not count as satellites.
  bool PassesOver(std::string_view line) {
    if (!line.empty() && line[0] != ' ') {
      if (line.size() <= 60 || line[60] != 'C' || HeaderLabel(line) != "COMMENT") return false;
      Notice("comments among the observations skipped", true);
      return true;
    }
    if (!Trimmed(line).empty()) {
      if (HeaderLabel(line) != "COMMENT") return false;
      Notice("comments among the observations skipped", true);
      return true;
    }
    Notice("blank lines among the observations skipped", true);
    return true;
  }

  /// Satellites beyond the number in the epoch line.
  void TakeUncounted(const ObservationTypes& types, EpochBlock& epoch) {
    std::string_view line;
    SatelliteRow row;
    while (lines_.Next(line)) {
      const bool more = !line.empty() && line[0] != '>' && !IsHeaderLine(line) &&
                        ParseSatellite(Field(line, 0, 3), row.letter, row.number);
      if (!more) return lines_.PushBack();
      if (epoch.satellites.size() >= kMaxSatellites) {
        Notice("more than 999 satellites in an epoch; the rest are ignored");
        continue;
      }
      Notice("an epoch has more lines than declared; all are used", true);
      TakeSatellite(line, types, epoch);
    }
  }

  bool NextOfEpoch(std::string_view& line) {
    if (!lines_.Next(line)) {
      EndsEarly("the file ends within an epoch");
      return false;
    }
    if (!line.empty() && line[0] == '>') {
      lines_.PushBack();
      Notice("an epoch has fewer lines than declared", true);
      return false;
    }
    return true;
  }

  void TakeSatellite(std::string_view line, const ObservationTypes& types, EpochBlock& epoch) {
    SatelliteRow row;
    if (!ParseSatellite(Field(line, 0, 3), row.letter, row.number)) {
      return SkipLine(line, "line with an unreadable satellite skipped");
    }
    row.first_cell = epoch.cells.size();
    row.cells = types[static_cast<std::size_t>(row.letter - 'A')].size();
    epoch.cells.resize(row.first_cell + row.cells);
    Cell* const cells = epoch.cells.data() + row.first_cell;
    for (std::size_t i = 0; i < row.cells; ++i) {
      if (!ReadCell(line, kFirstCellColumn + kCellWidth * i, cells[i])) {
        Notice("value that is not a number treated as missing");
      }
    }
    if (lines_.Unterminated()) DropCutValue(line, kFirstCellColumn, row.cells, cells);
    epoch.satellites.push_back(row);
  }
};

}  // namespace

std::unique_ptr<ObservationBody> PlainBody(LineReader& lines, std::string file, Diagnostics& diagnostics) {
  return std::make_unique<Plain>(lines, std::move(file), diagnostics);
}

}  // namespace orsolva_host
