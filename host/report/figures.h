// What the figures of a report mean: the texts of figures.toml, found by key or by another name.
//
// A key is the name of the figure in JSON and CSV and ends in its unit where it has one.
#ifndef ORSOLVA_REPORT_FIGURES_H
#define ORSOLVA_REPORT_FIGURES_H

#include <string>
#include <string_view>
#include <vector>

#include "host/report/figure_tables.h"

namespace orsolva_host {

struct Figure {
  std::string key;
  std::string unit;     ///< of CSV and texts; empty for times and names
  std::string aliases;  ///< further names it is known by, between blanks; column headings among them
  std::vector<std::string> headings;  ///< of its columns in text reports
  std::string title;
  std::string column;  ///< its heading in the page's tables; empty: in none
  std::string formula;
  std::string window;
  std::string reset;
  std::string cutoff;
  std::string denominator;
  std::string source;
  std::string
      computed_by;  ///< "the library", "the analysis of this program" or "this program, from the files"
};

/// The figures of a text like figures.toml, in its order.
/// @throws std::runtime_error with what is wrong in the text
std::vector<Figure> ParseFigures(std::string_view text, const FigureTables& tables = AllFigures());

/// The figures of the program.
const std::vector<Figure>& FigureTexts();

/// The figure of a key or another of its names, whatever the case; null when there is none.
const Figure* FindFigure(std::string_view name);

/// What `orsolva explain` prints about a key, a heading of a column or another name, whatever the case. Of
/// several figures with the name that of the key is explained, else the one whose column comes first in a
/// report, and the others are named. @return empty when there is none
std::string ExplanationOf(std::string_view name);

/// The keys whose names are nearest to a text that names none, at most three.
std::vector<std::string> FiguresLike(std::string_view name);

/// The unit of a key; empty when the key is unknown.
std::string_view UnitOf(std::string_view key);

/// A text about a figure, 80 columns wide.
std::string Explanation(const Figure& figure);

/// Whether the figure of a key counts something, so that it is written as a whole number.
bool IsCount(std::string_view key);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURES_H
