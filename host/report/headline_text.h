// The lines of a headline, that of the analysis and that of the library.
#ifndef ORSOLVA_REPORT_HEADLINE_TEXT_H
#define ORSOLVA_REPORT_HEADLINE_TEXT_H

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/report/figure_text.h"
#include "host/report/notes.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// "119 observed", and a dash for a figure that is absent.
template <typename Owner>
std::string HeadlineItem(const FigureRow<Owner>& row, const Report& report, const Owner& owner) {
  const std::string_view heading = row.text.heading;
  const std::size_t bar = heading.find('|');
  const std::optional<double> value = row.get(owner);
  std::string item = Shown(value, row.kind, row.text.decimals);
  if (value && row.kind == FigureKind::kRatio) item += " %";
  if (value && row.kind == FigureKind::kMetres) item += " m";
  if constexpr (std::is_same_v<Owner, LibraryHeadline>) item += LibraryHeadlineMarks(report, row.key);
  if constexpr (std::is_same_v<Owner, Headline>) {
    const bool per_slip = std::string_view(row.key) == "observations_per_slip";
    if (per_slip && owner.observations_without_slip)
      item = fmt::format("more than {}", *owner.observations_without_slip);
  }
  if (bar + 1 < heading.size()) item += " " + std::string(heading.substr(bar + 1));
  if (item == "1 gaps") item.pop_back();
  return item;
}

/// A line for the figures of one group, "119 observed, 96 judged", and a dash where it has none.
template <typename Owner>
std::string HeadlineLines(const std::vector<FigureRow<Owner>>& rows, const Report& report, const Owner& owner,
                          const TextStyle& style) {
  std::string text;
  std::string group, line;
  bool any = false;
  const auto end_line = [&] {
    if (!line.empty()) text += NamedRow(group, any ? line : "-", style.width);
    line.clear();
    any = false;
  };
  for (const auto& row : rows) {
    if (row.text.heading == nullptr) continue;
    const std::string_view heading = row.text.heading;
    const std::size_t bar = heading.find('|');
    if (heading.substr(0, bar) != group) end_line();
    group = heading.substr(0, bar);
    const std::string item = HeadlineItem(row, report, owner);
    any = any || row.get(owner);
    // The ratio of a group leads, whatever the order of the rows.
    const bool leads = row.kind == FigureKind::kRatio && !line.empty();
    line = leads ? item + ", " + line : line + (line.empty() ? "" : ", ") + item;
  }
  end_line();
  return text;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_HEADLINE_TEXT_H
