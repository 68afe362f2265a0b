// Tables and paragraphs of plain text that keep to a width, with colours where they are wanted.
#ifndef ORSOLVA_REPORT_TEXT_LAYOUT_H
#define ORSOLVA_REPORT_TEXT_LAYOUT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host {

/// How text is to look.
struct TextStyle {
  std::size_t width = 80;  ///< columns; a table that needs more is written row under row
  bool colour = false;     ///< with ANSI escape sequences
};

enum class Tone { kPlain, kStrong, kPass, kWarn, kFail, kFaint };

/// The text in a tone; as it is when the style has no colour.
std::string Toned(const std::string& text, Tone tone, const TextStyle& style);

/// How many columns a UTF-8 text takes, one a character.
std::size_t Columns(std::string_view text);

/// The text, with its middle left out when it takes more columns than the room for it.
std::string Fitted(const std::string& text, std::size_t room);

/// Breaks a text at blanks into lines that begin with `indent` (the first one with `first`).
std::string Wrapped(const std::string& text, const std::string& first, const std::string& indent,
                    std::size_t width);

/// The line of a heading, broken where it is too long.
std::string HeadingLine(const std::string& text, const TextStyle& style);

/// The width of the names before values.
constexpr std::size_t kRowNameWidth = 18;

/// A name, and its value broken into lines next to it.
std::string NamedRow(std::string name, const std::string& value, std::size_t width);

/// Columns with a heading each. Numbers are never cut: their columns widen, and when the table is then wider
/// than the style allows, every row becomes lines of "heading value".
class TextTable {
 public:
  /// @param width  columns with the blank before it; negative: aligned to the left
  void AddColumn(std::string heading, int width);
  /// One cell a column; missing ones are empty.
  void AddRow(std::vector<std::string> cells, Tone tone = Tone::kPlain);
  /// Lines that follow the last row as they are.
  void AddBelow(const std::string& lines) { rows_.back().below += lines; }
  std::string Text(const TextStyle& style) const;

 private:
  struct Column {
    std::string heading;
    std::size_t width;
    bool left;
  };
  struct Row {
    std::vector<std::string> cells;
    Tone tone;
    std::string below;
  };
  std::vector<std::size_t> Widths(std::size_t room) const;
  std::string Line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const;
  std::string Stacked(const Row& row, const TextStyle& style) const;

  std::vector<Column> columns_;
  std::vector<Row> rows_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_TEXT_LAYOUT_H
