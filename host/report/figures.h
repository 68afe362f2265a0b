// The figures of a report: their keys, units and definitions. One row a figure, in figure_table.cpp.
//
// A key is the name of the figure in JSON and CSV and ends in its unit where it has one.
#ifndef ORSOLVA_REPORT_FIGURES_H
#define ORSOLVA_REPORT_FIGURES_H

#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host {

struct Figure {
  const char* key;
  const char* unit;     ///< of CSV and texts; empty for times and names
  const char* aliases;  ///< further names it is known by, between blanks; column headings among them
  const char* title;
  const char* formula;
  const char* window;
  const char* reset;
  const char* cutoff;
  const char* denominator;
  const char* source;
};

extern const Figure kFigureTable[];
extern const int kFigures;

/// The figure of a key or another of its names, whatever the case; null when there is none.
const Figure* FindFigure(std::string_view name);

/// The keys whose names are nearest to a text that names none, at most three.
std::vector<std::string> FiguresLike(std::string_view name);

/// The unit of a key; empty when the key is unknown.
std::string_view UnitOf(std::string_view key);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURES_H
