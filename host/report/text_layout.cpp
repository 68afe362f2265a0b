#include "host/report/text_layout.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace orsolva_host {
namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

/// The first `count` characters.
std::string Head(const std::string& text, std::size_t count) {
  std::size_t end = 0;
  while (end < text.size() && count > 0) {
    ++end;
    while (end < text.size() && IsContinuation(text[end])) ++end;
    --count;
  }
  return text.substr(0, end);
}

/// The last `count` characters.
std::string Tail(const std::string& text, std::size_t count) {
  std::size_t begin = text.size();
  while (begin > 0 && count > 0) {
    --begin;
    while (begin > 0 && IsContinuation(text[begin])) --begin;
    --count;
  }
  return text.substr(begin);
}

std::string Padded(const std::string& text, std::size_t width, bool left) {
  const std::size_t columns = Columns(text);
  const std::string blanks(width > columns ? width - columns : 0, ' ');
  return left ? text + blanks : blanks + text;
}

std::string WithoutTrailingBlanks(std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

const char* EscapeOf(Tone tone) {
  switch (tone) {
    case Tone::kStrong:
      return "\033[1m";
    case Tone::kPass:
      return "\033[32m";
    case Tone::kWarn:
      return "\033[33m";
    case Tone::kFail:
      return "\033[31m";
    case Tone::kFaint:
      return "\033[2m";
    default:
      return "";
  }
}

}  // namespace

std::string Toned(const std::string& text, Tone tone, const TextStyle& style) {
  if (!style.colour || tone == Tone::kPlain || text.empty()) return text;
  return EscapeOf(tone) + text + "\033[0m";
}

std::size_t Columns(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); }));
}

std::string Fitted(const std::string& text, std::size_t room) {
  if (Columns(text) <= room) return text;
  constexpr std::size_t kMinForDots = 8;
  if (room < kMinForDots) return Head(text, room);
  const std::size_t tail = (room - 3) / 2;
  return Head(text, room - 3 - tail) + "..." + Tail(text, tail);
}

std::string Wrapped(const std::string& text, const std::string& first, const std::string& indent,
                    std::size_t width) {
  std::string out;
  std::string line = first;
  bool fresh = true;
  const std::size_t room = width > indent.size() ? width - indent.size() : 1;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(' ', begin), text.size());
    const std::string word = Fitted(text.substr(begin, end - begin), room);
    begin = end + 1;
    if (!fresh && Columns(line) + 1 + Columns(word) > width) {
      out += line + "\n";
      line = indent;
      fresh = true;
    }
    if (!fresh) line += ' ';
    line += word;
    fresh = false;
  }
  return out + line + "\n";
}

std::string HeadingLine(const std::string& text, const TextStyle& style) {
  std::string lines = Wrapped(text, "", "  ", style.width);
  lines.pop_back();
  return Toned(lines, Tone::kStrong, style) + "\n";
}

std::string NamedRow(std::string name, const std::string& value, std::size_t width) {
  name.resize(kRowNameWidth, ' ');
  return Wrapped(value, name, std::string(kRowNameWidth, ' '), width);
}

void TextTable::AddColumn(std::string heading, int width) {
  columns_.push_back({std::move(heading), static_cast<std::size_t>(width < 0 ? -width : width), width < 0});
}

void TextTable::AddRow(std::vector<std::string> cells, Tone tone) {
  cells.resize(columns_.size());
  rows_.push_back({std::move(cells), tone, {}});
}

std::vector<std::size_t> TextTable::Widths(std::size_t room) const {
  std::vector<std::size_t> wide;
  std::vector<std::size_t> narrow;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t needed = Columns(columns_[i].heading) + 1;
    for (const Row& row : rows_) needed = std::max(needed, Columns(row.cells[i]) + 1);
    const std::size_t declared = columns_[i].width;
    wide.push_back(columns_[i].left ? declared : std::max(declared, needed));
    narrow.push_back(columns_[i].left ? std::min(declared, needed) : needed);
  }
  const auto total = [](const std::vector<std::size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), std::size_t{0});
  };
  if (total(wide) <= room) return wide;
  return total(narrow) <= room ? narrow : std::vector<std::size_t>();
}

std::string TextTable::Line(const std::vector<std::string>& cells,
                            const std::vector<std::size_t>& widths) const {
  std::string line;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const bool left = columns_[i].left;
    line += Padded(left ? Fitted(cells[i], widths[i] - 1) : cells[i], widths[i], left);
  }
  return WithoutTrailingBlanks(std::move(line));
}

std::string TextTable::Stacked(const Row& row, const TextStyle& style) const {
  std::string name;
  std::string figures;
  bool naming = true;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    naming = naming && columns_[i].left;
    if (row.cells[i].empty()) continue;
    if (naming) {
      name += (name.empty() ? "" : " ") + row.cells[i];
    } else {
      std::string pair = columns_[i].heading + ' ' + row.cells[i];
      // A heading stays with its value: the blanks inside become breaks only between pairs.
      std::replace(pair.begin(), pair.end(), ' ', '\x1f');
      figures += (figures.empty() ? "" : " ") + pair;
    }
  }
  std::string lines = Wrapped(figures, "  ", "  ", style.width);
  std::replace(lines.begin(), lines.end(), '\x1f', ' ');
  return Toned(Fitted(name, style.width), row.tone == Tone::kPlain ? Tone::kStrong : row.tone, style) + "\n" +
         lines;
}

std::string TextTable::Text(const TextStyle& style) const {
  std::string text;
  const std::vector<std::size_t> widths = Widths(style.width);
  std::vector<std::string> headings;
  for (const Column& column : columns_) headings.push_back(column.heading);
  if (!widths.empty()) text += Toned(Line(headings, widths), Tone::kFaint, style) + "\n";
  for (const Row& row : rows_) {
    text += widths.empty() ? Stacked(row, style) : Toned(Line(row.cells, widths), row.tone, style) + "\n";
    text += row.below;
  }
  return text;
}

}  // namespace orsolva_host
