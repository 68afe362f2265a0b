// Epochs of compact RINEX files of form 3.
//
// The epoch line is kept as text and each later one gives only the changed characters, '&' for a blank.
// Every value is a whole number of thousandths and is sent as the difference of order k to the epochs
// before, the order growing by one an epoch up to the arc's order: "3&23818653240" begins an arc of order 3.
// The marks of a satellite's values follow its values, again as changed characters.
// Source: Hatanaka 2008, Bulletin of the Geospatial Information Authority of Japan 55.
#include <algorithm>
#include <array>
#include <utility>

#include "host/rinex/decimal.h"
#include "host/rinex/epoch_line.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr int kHighestOrder = 9;
constexpr std::size_t kSatelliteColumn = 41;
constexpr std::size_t kSatelliteWidth = 3;
constexpr double kThousandths = 1000;

/// The value and its differences up to the order reached.
class Arc {
 public:
  void Begin(int order, std::int64_t value) {
    limit_ = order;
    reached_ = 0;
    differences_[0] = value;
  }
  void End() { reached_ = -1; }
  bool Open() const { return reached_ >= 0; }

  /// Takes the difference of the next order (or of the highest) and returns the value.
  std::int64_t Continue(std::int64_t difference) {
    if (reached_ < limit_) ++reached_;
    // Sums of damaged files may wrap, which must stay defined.
    auto sum = static_cast<std::uint64_t>(difference);
    for (int i = reached_; i > 0; --i) {
      const std::uint64_t next = sum + static_cast<std::uint64_t>(differences_[i - 1]);
      differences_[i] = static_cast<std::int64_t>(sum);
      sum = next;
    }
    differences_[0] = static_cast<std::int64_t>(sum);
    return differences_[0];
  }

 private:
  std::array<std::int64_t, kHighestOrder + 1> differences_ = {};
  int limit_ = 0;
  int reached_ = -1;
};

struct SatelliteState {
  std::vector<Arc> arcs;
  std::string marks;
  long epoch = -1;  ///< the last epoch the satellite stood in
};

/// Applies changed characters to a text.
void Repair(std::string& text, std::string_view changes) {
  if (text.size() < changes.size()) text.resize(changes.size(), ' ');
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (changes[i] != ' ') text[i] = changes[i] == '&' ? ' ' : changes[i];
  }
}

class Compact : public ObservationBody {
 public:
  Compact(LineReader& lines, std::string file, Diagnostics& diagnostics)
      : lines_(lines), file_(std::move(file)), diagnostics_(diagnostics), states_(26 * 100) {}

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
    if (head.flag > 1) {
      ReadRecords(head.count, epoch);
    } else {
      ReadSatellites(head.count, types, epoch);
    }
    return true;
  }

 private:
  void Notice(const char* text, bool recovered = false) {
    diagnostics_.Add(file_, lines_.Line(), text, recovered);
  }

  /// Finds the next epoch line. After damage only one that begins anew will do.
  bool FindEpoch(EpochLine& head) {
    std::string_view line;
    while (lines_.Next(line)) {
      const bool begins = !line.empty() && line[0] == '>';
      if (begins) {
        text_.assign(line);
        lost_ = false;
      } else if (lost_ || text_.empty()) {
        Notice("lines after damaged compact data are passed over");
        continue;
      } else {
        Repair(text_, line);
      }
      if (ParseEpochLine(text_, head) && HasSatellites(head)) return true;
      Lose("an epoch line that cannot be read; the file is read on at the next full one");
    }
    return false;
  }

  bool HasSatellites(const EpochLine& head) const {
    const std::size_t wanted = static_cast<std::size_t>(head.count) * kSatelliteWidth;
    return head.flag > 1 || text_.size() >= kSatelliteColumn + wanted;
  }

  void Lose(const char* why) {
    Notice(why);
    lost_ = true;
    ++epoch_;
    ++epoch_;  // no arc reaches over the damage
  }

  void ReadRecords(int count, EpochBlock& epoch) {
    std::string_view line;
    for (int i = 0; i < count; ++i) {
      if (!lines_.Next(line)) return Notice("the file ends inside an event");
      epoch.records.emplace_back(line);
    }
  }

  void ReadSatellites(int count, const ObservationTypes& types, EpochBlock& epoch) {
    ++epoch_;
    std::string_view line;
    if (!lines_.Next(line)) {  // the receiver clock offset, not used
      if (count > 0) Notice("the file ends inside an epoch");
      return;
    }
    for (int i = 0; i < count; ++i) {
      if (!lines_.Next(line)) return Notice("the file ends inside an epoch");
      if (!line.empty() && line[0] == '>') {
        lines_.PushBack();
        return Lose("an epoch has fewer lines than it says");
      }
      SatelliteRow row;
      const std::size_t column = kSatelliteColumn + static_cast<std::size_t>(i) * kSatelliteWidth;
      if (ParseSatellite(Field(text_, column, kSatelliteWidth), row.letter, row.number)) {
        TakeSatellite(line, types, row, epoch);
      } else {
        Notice("a satellite of an epoch line cannot be read and is passed over");
      }
    }
  }

  void TakeSatellite(std::string_view line, const ObservationTypes& types, SatelliteRow& row,
                     EpochBlock& epoch) {
    SatelliteState& state = states_[(row.letter - 'A') * 100 + row.number];
    row.cells = types[row.letter - 'A'].size();
    row.first_cell = epoch.cells.size();
    if (state.epoch != epoch_ - 1 || state.arcs.size() != row.cells) {
      state.arcs.assign(row.cells, Arc());
      state.marks.clear();
    }
    state.epoch = epoch_;
    epoch.cells.resize(row.first_cell + row.cells);
    std::size_t position = 0;
    for (std::size_t i = 0; i < row.cells; ++i) {
      const std::size_t begin = std::min(position, line.size());
      const std::size_t end = std::min(line.find(' ', begin), line.size());
      TakeValue(line.substr(begin, end - begin), state.arcs[i], epoch.cells[row.first_cell + i]);
      position = end + 1;
    }
    if (position < line.size()) Repair(state.marks, line.substr(position, 2 * row.cells));
    for (std::size_t i = 0; i < row.cells; ++i) {
      Cell& cell = epoch.cells[row.first_cell + i];
      if (2 * i < state.marks.size()) cell.loss_of_lock = state.marks[2 * i];
      if (2 * i + 1 < state.marks.size()) cell.strength = state.marks[2 * i + 1];
    }
    epoch.satellites.push_back(row);
  }

  void TakeValue(std::string_view field, Arc& arc, Cell& cell) {
    if (field.empty()) return arc.End();
    std::int64_t number = 0;
    const bool begins = field.size() > 2 && field[1] == '&';
    const bool bad = ParseInteger(begins ? field.substr(2) : field, number) != FieldState::kNumber;
    if (bad || (begins && (field[0] < '0' || field[0] > '9'))) {
      arc.End();
      return Notice("a compact value that is no number counts as missing");
    }
    if (begins) {
      arc.Begin(field[0] - '0', number);
    } else if (arc.Open()) {
      number = arc.Continue(number);
    } else {
      return Notice("a difference without a value before it counts as missing");
    }
    cell.value = static_cast<double>(number) / kThousandths;
    cell.present = true;
  }

  LineReader& lines_;
  std::string file_;
  Diagnostics& diagnostics_;
  std::vector<SatelliteState> states_;
  std::string text_;  ///< the epoch line as it stands
  long epoch_ = 0;
  bool lost_ = false;
};

}  // namespace

std::unique_ptr<ObservationBody> CompactBody(LineReader& lines, std::string file, Diagnostics& diagnostics) {
  return std::make_unique<Compact>(lines, std::move(file), diagnostics);
}

}  // namespace orsolva_host
