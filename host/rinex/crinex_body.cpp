// Epochs of Hatanaka-compressed files: CRINEX 1 for RINEX 2, CRINEX 3 for RINEX 3 and 4.
//
// The epoch line is kept as text and each later one contains only the changed characters, '&' for a blank.
// Every value is an integer number of thousandths and is stored as the difference of order k to the previous
// epochs, the order growing by one per epoch up to the order of the arc: "3&23104857160" begins an arc of
// order 3. The flags of a satellite's values follow the values, again as changed characters. The two versions
// differ in the epoch line: the column of the satellites and the character that begins a full line.
// Source: Hatanaka 2008, Bulletin of the Geospatial Information Authority of Japan 55.
#include <algorithm>
#include <array>
#include <utility>

#include "host/rinex/body_base.h"
#include "host/rinex/decimal.h"
#include "host/rinex/header_labels.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr int kHighestOrder = 9;
constexpr std::size_t kSatelliteWidth = 3;
constexpr double kThousandths = 1000;
constexpr std::ptrdiff_t kMaxDigits = 18;

struct Form {
  char mark;  ///< begins a full epoch line
  std::size_t satellite_column;
  double clock_units_per_s;  ///< the receiver clock offset is an integer number of these
  bool (*parse)(std::string_view, EpochLine&);
};

constexpr Form kCrinex1 = {'&', 32, 1e9, ParseEpochLine2};
constexpr Form kCrinex3 = {'>', 41, 1e12, ParseEpochLine};

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

  /// Adds the difference of the next order (or of the highest) and returns the value.
  std::int64_t Continue(std::int64_t difference) {
    if (reached_ < limit_) ++reached_;
    // Sums of damaged files may overflow; unsigned arithmetic keeps that defined.
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
  long epoch = -1;  ///< the last epoch that contained the satellite
};

/// Applies changed characters to a text.
void Repair(std::string& text, std::string_view changes) {
  if (text.size() < changes.size()) text.resize(changes.size(), ' ');
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (changes[i] != ' ') text[i] = changes[i] == '&' ? ' ' : changes[i];
  }
}

/// An encoded value, up to the blank after it.
struct Token {
  bool empty = true;
  bool good = true;
  int order = -1;  ///< of an arc that begins here, else -1
  std::int64_t number = 0;
};

/// @return where the token ends
const char* ScanToken(const char* p, const char* end, Token& token) {
  if (p == end || *p == ' ') return p;
  token.empty = false;
  if (end - p > 2 && p[1] == '&') {
    token.order = *p - '0';
    token.good = *p >= '0' && *p <= '9';
    p += 2;
  }
  const bool negative = *p == '-';
  if (negative) ++p;
  const char* const first = p;
  std::uint64_t number = 0;
  unsigned digit = 0;
  for (; p < end && (digit = static_cast<unsigned char>(*p) - unsigned{'0'}) < 10; ++p) {
    number = number * 10 + digit;
  }
  token.good = token.good && p > first && p - first <= kMaxDigits && (p == end || *p == ' ');
  while (p < end && *p != ' ') ++p;
  if (token.good)
    token.number = negative ? -static_cast<std::int64_t>(number) : static_cast<std::int64_t>(number);
  return p;
}

class Crinex : public BodyBase {
 public:
  Crinex(LineReader& lines, std::string file, Diagnostics& diagnostics, const Form& form, char blank_letter)
      : BodyBase(lines, std::move(file), diagnostics),
        form_(form),
        blank_letter_(blank_letter),
        states_(26 * 100) {}

  bool Next(const ObservationTypes& types, EpochBlock& epoch) override {
    EpochLine head;
    std::string_view line;
    if (!FindEpoch(line, head)) return false;
    if (head.flag == kStrayHeader) {
      TakeStrayHeader(line, epoch);
      Reset();
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
  /// Finds the next epoch line. After damage only a full line is accepted.
  bool FindEpoch(std::string_view& line, EpochLine& head) {
    while (lines_.Next(line)) {
      const bool begins = !line.empty() && line[0] == form_.mark;
      if (!begins && IsHeaderLine(line)) {
        head.flag = kStrayHeader;
        return true;
      }
      if (begins) {
        text_.assign(line);
        if (form_.mark == '&') text_[0] = ' ';
        lost_ = false;
      } else if (lost_ || text_.empty()) {
        Notice("lines after damaged CRINEX data are skipped");
        continue;
      } else {
        Repair(text_, line);
      }
      if (form_.parse(text_, head) && HasSatellites(head)) return !EndsInEpochLine();
      SkipLine(line, "unreadable epoch line; reading resumes at the next full one");
      Reset();
    }
    return false;
  }

  bool HasSatellites(const EpochLine& head) const {
    const std::size_t wanted = static_cast<std::size_t>(head.count) * kSatelliteWidth;
    return head.flag > 1 || text_.size() >= form_.satellite_column + wanted;
  }

  void Lose(const char* why) {
    Notice(why);
    Reset();
  }

  void Reset() {
    lost_ = true;
    epoch_ += 2;  // no arc extends across the damage
  }

  void ReadRecords(int count, EpochBlock& epoch) {
    std::string_view line;
    for (int i = 0; i < count; ++i) {
      if (!lines_.Next(line)) return EndsEarly("the file ends within an event");
      epoch.records.emplace_back(line);
    }
  }

  void ReadSatellites(int count, const ObservationTypes& types, EpochBlock& epoch) {
    ++epoch_;
    std::string_view line;
    if (!lines_.Next(line)) {
      if (count > 0) EndsEarly("the file ends within an epoch");
      return;
    }
    TakeClockOffset(line, epoch);
    for (int i = 0; i < count; ++i) {
      if (!lines_.Next(line)) return EndsEarly("the file ends within an epoch");
      if (!line.empty() && line[0] == form_.mark) {
        lines_.PushBack();
        return Lose("an epoch has fewer lines than declared");
      }
      SatelliteRow row;
      if (ReadName(static_cast<std::size_t>(i), row)) {
        TakeSatellite(line, types, row, epoch);
      } else {
        Notice("unreadable satellite in an epoch line skipped");
      }
    }
  }

  void TakeClockOffset(std::string_view line, EpochBlock& epoch) {
    Token token;
    ScanToken(line.data(), line.data() + line.size(), token);
    if (token.empty || !token.good || (token.order < 0 && !clock_.Open())) return clock_.End();
    if (token.order >= 0) clock_.Begin(token.order, token.number);
    const std::int64_t units = token.order >= 0 ? token.number : clock_.Continue(token.number);
    epoch.clock_offset_s = static_cast<double>(units) / form_.clock_units_per_s;
  }

  bool ReadName(std::size_t place, SatelliteRow& row) {
    const std::size_t column = form_.satellite_column + place * kSatelliteWidth;
    if (column < text_.size() && text_[column] == ' ' && blank_letter_ != ' ') text_[column] = blank_letter_;
    return ParseSatellite(Field(text_, column, kSatelliteWidth), row.letter, row.number);
  }

  void TakeSatellite(std::string_view line, const ObservationTypes& types, SatelliteRow& row,
                     EpochBlock& epoch) {
    const auto letter = static_cast<std::size_t>(row.letter - 'A');
    SatelliteState& state = states_[letter * 100 + static_cast<std::size_t>(row.number)];
    row.cells = types[letter].size();
    row.first_cell = epoch.cells.size();
    if (state.epoch != epoch_ - 1 || state.arcs.size() != row.cells) {
      state.arcs.assign(row.cells, Arc());
      state.marks.clear();
    }
    state.epoch = epoch_;
    epoch.cells.resize(row.first_cell + row.cells);
    Cell* const cells = epoch.cells.data() + row.first_cell;
    const char* p = line.data();
    const char* const end = p + line.size();
    for (std::size_t i = 0; i < row.cells; ++i) {
      Token token;
      p = ScanToken(p, end, token);
      // A value at the end of unterminated data may have lost digits.
      if (p == end && !token.empty && lines_.Unterminated()) {
        EndsEarly("the file ends within a value, which is treated as missing");
        token = Token();
      }
      TakeToken(token, state.arcs[i], cells[i]);
      if (p < end) ++p;
    }
    TakeMarks(line.substr(static_cast<std::size_t>(p - line.data())), row.cells, state.marks, cells);
    if (form_.mark == kCrinex1.mark) ClearMarksOfMissing(row.cells, cells);
    epoch.satellites.push_back(row);
  }

  static void TakeMarks(std::string_view changes, std::size_t count, std::string& marks, Cell* cells) {
    Repair(marks, changes.substr(0, 2 * count));
    for (std::size_t i = 0; 2 * i < marks.size(); ++i) {
      cells[i].loss_of_lock = marks[2 * i];
      if (2 * i + 1 < marks.size()) cells[i].strength = marks[2 * i + 1];
    }
  }

  /// CRINEX 1 keeps the flags of a missing value for the next one but does not output them.
  static void ClearMarksOfMissing(std::size_t count, Cell* cells) {
    for (std::size_t i = 0; i < count; ++i) {
      if (!cells[i].present) cells[i] = Cell();
    }
  }

  void TakeToken(const Token& token, Arc& arc, Cell& cell) {
    if (token.empty) return arc.End();
    if (!token.good) {
      arc.End();
      return Notice("CRINEX value that is not a number treated as missing");
    }
    std::int64_t number = token.number;
    if (token.order >= 0) {
      arc.Begin(token.order, number);
    } else if (arc.Open()) {
      number = arc.Continue(number);
    } else {
      return Notice("CRINEX difference without an initial value treated as missing");
    }
    cell.value = static_cast<double>(number) / kThousandths;
    cell.present = true;
  }

  Form form_;
  char blank_letter_;
  std::vector<SatelliteState> states_;
  Arc clock_;
  std::string text_;  ///< the current epoch line, decoded
  long epoch_ = 0;
  bool lost_ = false;
};

}  // namespace

std::unique_ptr<ObservationBody> CrinexBody(LineReader& lines, std::string file, Diagnostics& diagnostics) {
  return std::make_unique<Crinex>(lines, std::move(file), diagnostics, kCrinex3, ' ');
}

std::unique_ptr<ObservationBody> CrinexBody2(LineReader& lines, std::string file, Diagnostics& diagnostics,
                                             char blank_letter) {
  return std::make_unique<Crinex>(lines, std::move(file), diagnostics, kCrinex1, blank_letter);
}

}  // namespace orsolva_host
