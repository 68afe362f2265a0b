// Epochs of plain RINEX 2 files: the satellites are listed on the epoch line, twelve per line, and each has
// its values on lines of five.
#include <algorithm>
#include <utility>

#include "host/rinex/body_base.h"
#include "host/rinex/cell_reader.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kSatelliteColumn = 32;
constexpr std::size_t kSatelliteWidth = 3;
constexpr std::size_t kSatellitesALine = 12;
constexpr std::size_t kCellsALine = 5;
constexpr int kSlipRecords = 6;

class Plain2 : public BodyBase {
 public:
  Plain2(LineReader& lines, std::string file, Diagnostics& diagnostics, char blank_letter)
      : BodyBase(lines, std::move(file), diagnostics), blank_letter_(blank_letter) {}

  bool Next(const ObservationTypes& types, EpochBlock& epoch) override {
    EpochLine head;
    std::string_view line;
    if (!FindEpoch(line, head)) return false;
    if (head.flag == kStrayHeader) {
      TakeStrayHeader(line, epoch);
      return true;
    }
    Begin(head, epoch);
    if (head.flag > 1 && head.flag != kSlipRecords) {
      ReadRecords(head.count, epoch);
    } else if (ReadNames(line, head.count)) {
      ReadSatellites(types['G' - 'A'].size(), epoch);
    }
    return true;
  }

 private:
  struct Name {
    bool good = false;
    char letter = 'G';
    int number = 0;
  };

  bool FindEpoch(std::string_view& line, EpochLine& head) {
    while (lines_.Next(line)) {
      if (ParseEpochLine2(line, head)) {
        if (EndsInEpochLine()) return false;
        head.clock_offset_s = ParseClockOffset(Field(line, 68, 12));
        return true;
      }
      if (Trimmed(line).empty()) continue;
      if (IsHeaderLine(line)) {
        head.flag = kStrayHeader;
        return true;
      }
      SkipLine(line, "lines that belong to no epoch skipped");
    }
    return false;
  }

  /// The next line, unless the epoch ends before it.
  bool NextOfEpoch(std::string_view& line) {
    EpochLine next;
    for (;;) {
      if (!lines_.Next(line)) {
        EndsEarly("the file ends within an epoch");
        return false;
      }
      if (ParseEpochLine2(line, next) && !Trimmed(line.substr(0, 26)).empty()) {
        lines_.PushBack();
        Notice("an epoch has fewer lines than declared", true);
        return false;
      }
      if (line.size() <= 60 || line[60] != 'C' || HeaderLabel(line) != "COMMENT") return true;
      Notice("comments among the observations skipped", true);
    }
  }

  void ReadRecords(int count, EpochBlock& epoch) {
    std::string_view line;
    for (int i = 0; i < count; ++i) {
      if (!lines_.Next(line)) return EndsEarly("the file ends within an event");
      EpochLine next;
      if (ParseEpochLine2(line, next)) {
        lines_.PushBack();
        return Notice("an event has fewer lines than declared", true);
      }
      epoch.records.emplace_back(line);
    }
  }

  /// Reads the satellites of the epoch line and of the lines that continue it.
  bool ReadNames(std::string_view line, int count) {
    names_.clear();
    for (int i = 0; i < count; ++i) {
      const std::size_t place = static_cast<std::size_t>(i) % kSatellitesALine;
      if (i > 0 && place == 0) {
        if (!NextOfEpoch(line)) return false;
        if (!Trimmed(line.substr(0, kSatelliteColumn)).empty()) {
          lines_.PushBack();
          Notice("an epoch lists fewer satellites than declared", true);
          return true;
        }
      }
      Name name;
      std::string_view text = Field(line, kSatelliteColumn + kSatelliteWidth * place, kSatelliteWidth);
      char letters[kSatelliteWidth] = {blank_letter_, ' ', ' '};
      if (text.size() == kSatelliteWidth && text[0] == ' ') {
        std::copy(text.begin() + 1, text.end(), letters + 1);
        text = std::string_view(letters, kSatelliteWidth);
      }
      name.good = ParseSatellite(text, name.letter, name.number);
      if (!name.good) Notice("unreadable satellite in an epoch line skipped");
      names_.push_back(name);
    }
    return true;
  }

  void ReadSatellites(std::size_t types, EpochBlock& epoch) {
    for (const Name& name : names_) {
      SatelliteRow row;
      row.letter = name.letter;
      row.number = name.number;
      row.first_cell = epoch.cells.size();
      row.cells = types;
      epoch.cells.resize(row.first_cell + types);
      const bool whole = ReadValues(types, epoch.cells.data() + row.first_cell);
      if (name.good && (whole || types > 0)) epoch.satellites.push_back(row);
      if (!whole) return;
    }
  }

  bool ReadValues(std::size_t types, Cell* cells) {
    for (std::size_t first = 0; first < types; first += kCellsALine) {
      std::string_view line;
      if (!NextOfEpoch(line)) return false;
      const std::size_t count = std::min(kCellsALine, types - first);
      for (std::size_t i = 0; i < count; ++i) {
        if (!ReadCell(line, kCellWidth * i, cells[first + i])) {
          Notice("value that is not a number treated as missing");
        }
      }
      if (lines_.Unterminated()) DropCutValue(line, 0, count, cells + first);
    }
    return true;
  }

  char blank_letter_;
  std::vector<Name> names_;
};

}  // namespace

std::unique_ptr<ObservationBody> PlainBody2(LineReader& lines, std::string file, Diagnostics& diagnostics,
                                            char blank_letter) {
  return std::make_unique<Plain2>(lines, std::move(file), diagnostics, blank_letter);
}

}  // namespace orsolva_host
