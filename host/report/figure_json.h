// Figures as members of JSON objects.
#ifndef ORSOLVA_REPORT_FIGURE_JSON_H
#define ORSOLVA_REPORT_FIGURE_JSON_H

#include <array>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/report/figure_rows.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host {

using Json = nlohmann::ordered_json;

inline Json NumberJson(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

/// An empty text is absent.
inline Json TextJson(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

inline Json TimeJson(const std::optional<Time_gbt>& time) {
  return time ? Json(TimeText(*time)) : Json(nullptr);
}

inline Json PositionJson(const std::optional<std::array<double, 3>>& position) {
  if (!position) return nullptr;
  Json j = Json::array();
  for (const double x : *position) j.push_back(NumberJson(x));
  return j;
}

/// What counts something is a whole number, an answer true or false.
inline Json FigureJson(const std::optional<double>& value, FigureKind kind) {
  if (!value) return nullptr;
  if (kind == FigureKind::kYesNo) return *value != 0;
  return IsCount(kind) ? Json(static_cast<std::int64_t>(*value)) : Json(*value);
}

template <typename Owner>
void AddFigures(const std::vector<FigureRow<Owner>>& rows, const Owner& owner, Json& j) {
  for (const FigureRow<Owner>& row : rows) j[row.key] = FigureJson(row.get(owner), row.kind);
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURE_JSON_H
