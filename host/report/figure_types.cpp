#include "host/report/figure_types.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

namespace orsolva_host {
namespace {

using Json = nlohmann::ordered_json;

/// The definition of the schema that values of a kind have.
const char* SchemaTypeOf(FigureKind kind) {
  if (IsCount(kind)) return "#/$defs/count";
  if (kind == FigureKind::kYesNo) return "#/$defs/flag";
  if (kind == FigureKind::kDbHz || kind == FigureKind::kClockOffset || kind == FigureKind::kClockRate)
    return "#/$defs/number";
  return kind == FigureKind::kRatio ? "#/$defs/ratio" : "#/$defs/positive";
}

template <typename Owner>
Json Definition(const std::vector<FigureRow<Owner>>& rows) {
  Json j;
  j["type"] = "object";
  j["required"] = Json::array();
  j["properties"] = Json::object();
  for (const auto& row : rows) {
    j["required"].push_back(row.key);
    j["properties"][row.key] = {{"$ref", SchemaTypeOf(row.kind)}};
  }
  return j;
}

template <typename Owner>
std::string Interface(const char* name, const std::vector<FigureRow<Owner>>& rows) {
  std::string text = fmt::format("\nexport interface {} {{\n", name);
  for (const auto& row : rows) {
    const char* type = row.kind == FigureKind::kYesNo ? "boolean" : "number";
    text += fmt::format("  {}: {} | null;\n", row.key, type);
  }
  return text + "}\n";
}

const Figure* TextOf(const std::vector<Figure>& texts, const char* key) {
  const auto found =
      std::find_if(texts.begin(), texts.end(), [key](const Figure& f) { return f.key == key; });
  return found == texts.end() ? nullptr : &*found;
}

std::string Quoted(const std::string& text) {
  return Json(text).dump(-1, ' ', true, Json::error_handler_t::replace);
}

template <typename Owner>
std::string Columns(const char* name, const std::vector<FigureRow<Owner>>& rows,
                    const std::vector<Figure>& texts) {
  std::string text = fmt::format("\nexport const {}: FigureColumn[] = [\n", name);
  for (const auto& row : rows) {
    const Figure* figure = TextOf(texts, row.key);
    if (figure == nullptr) continue;
    text += fmt::format("  {{ key: '{}', unit: '{}', column: {}, title: {}, digits: {} }},\n", row.key,
                        UnitOf(row.kind), Quoted(figure->column), Quoted(figure->title), row.text.decimals);
  }
  return text + "];\n";
}

}  // namespace

std::string SchemaWithFigures(const std::string& schema, const FigureTables& tables) {
  Json j = Json::parse(schema);
  Json& defs = j["$defs"];
  defs["run_figures"] = Definition(tables.run);
  defs["headline_figures"] = Definition(tables.headline);
  defs["library_run_figures"] = Definition(tables.library_run);
  defs["library_headline_figures"] = Definition(tables.library_headline);
  defs["whole_figures"] = Definition(tables.whole);
  defs["band_figures"] = Definition(tables.band);
  defs["total_figures"] = Definition(tables.total);
  defs["slot_figures"] = Definition(tables.slot);
  defs["signal_figures"] = Definition(tables.signal);
  defs["coverage_figures"] = Definition(tables.coverage);
  defs["analysis_figures"] = Definition(tables.analysis);
  defs["analysis_system_figures"] = Definition(tables.analysis_system);
  defs["analysis_signal_figures"] = Definition(tables.analysis_signal);
  defs["analysis_satellite_figures"] = Definition(tables.analysis_satellite);
  defs["wide_lane_figures"] = Definition(tables.wide_lane);
  defs["window_figures"] = Definition(tables.window);
  defs["window_system_figures"] = Definition(tables.window_system);
  defs["window_signal_figures"] = Definition(tables.window_signal);
  return j.dump(2) + "\n";
}

std::string PageTypes(const FigureTables& tables, const std::vector<Figure>& texts) {
  std::string text =
      "// Made from the figure rows of host/report (see figure_rows.h): change those, not this.\n\n"
      "/** How a figure is shown: an empty column is in no table; ratios are shown in percent. */\n"
      "export interface FigureColumn {\n"
      "  key: string;\n  unit: string;\n  column: string;\n  title: string;\n  digits: number;\n}\n";
  text += Interface("RunFigures", tables.run);
  text += Interface("HeadlineFigures", tables.headline);
  text += Interface("LibraryRunFigures", tables.library_run);
  text += Interface("LibraryHeadlineFigures", tables.library_headline);
  text += Interface("WholeFigures", tables.whole);
  text += Interface("BandFigures", tables.band);
  text += Interface("TotalFigures", tables.total);
  text += Interface("SlotFigures", tables.slot);
  text += Interface("SignalFigures", tables.signal);
  text += Interface("CoverageFigures", tables.coverage);
  text += Interface("AnalysisFigures", tables.analysis);
  text += Interface("AnalysisSystemFigures", tables.analysis_system);
  text += Interface("AnalysisSignalFigures", tables.analysis_signal);
  text += Interface("AnalysisSatelliteFigures", tables.analysis_satellite);
  text += Interface("WideLaneFigures", tables.wide_lane);
  text += Columns("RUN", tables.run, texts);
  text += Columns("HEADLINE", tables.headline, texts);
  text += Columns("LIBRARY_RUN", tables.library_run, texts);
  text += Columns("LIBRARY_HEADLINE", tables.library_headline, texts);
  text += Columns("WHOLE", tables.whole, texts);
  text += Columns("SIGNAL", tables.signal, texts);
  text += Columns("ANALYSIS", tables.analysis, texts);
  text += Columns("ANALYSIS_SYSTEM", tables.analysis_system, texts);
  text += Columns("ANALYSIS_SIGNAL", tables.analysis_signal, texts);
  return text;
}

}  // namespace orsolva_host
