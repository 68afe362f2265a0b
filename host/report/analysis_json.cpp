#include "host/report/analysis_json.h"

#include <string>
#include <vector>

#include "host/report/event_table.h"
#include "host/report/figure_json.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::ElevationBin;
using analysis::SignalFigures;

Json TimeOf(std::int64_t time_ns) { return TimeText(TimeOfNanoseconds(time_ns)); }

Json TimeOf(const std::optional<std::int64_t>& time_ns) { return time_ns ? TimeOf(*time_ns) : Json(nullptr); }

Json NamesOf(const std::vector<SatelliteId>& satellites) {
  Json names = Json::array();
  for (const SatelliteId id : satellites) names.push_back(NameOf(id));
  return names;
}

Json BinsOf(const std::vector<ElevationBin>& bins) {
  Json list = Json::array();
  for (const ElevationBin& bin : bins) {
    list.push_back({{"from_deg", bin.from_deg},
                    {"to_deg", bin.to_deg},
                    {"value", NumberJson(bin.value)},
                    {"values", bin.values}});
  }
  return list;
}

Json GapsOf(const analysis::SpanFigures& span) {
  Json list = Json::array();
  for (const analysis::DataGap& gap : span.gaps) {
    list.push_back({{"last_before_gpst", TimeOf(gap.last_before_ns)},
                    {"first_after_gpst", TimeOf(gap.first_after_ns)},
                    {"missing_epochs", gap.missing_epochs}});
  }
  return list;
}

Json DropsOf(const std::vector<analysis::StrengthDrop>& drops) {
  Json list = Json::array();
  for (const analysis::StrengthDrop& drop : drops) {
    list.push_back({{"from_gpst", TimeOf(drop.from_ns)},
                    {"to_gpst", TimeOf(drop.to_ns)},
                    {"mean_drop_db", NumberJson(drop.mean_drop_db)},
                    {"largest_drop_db", NumberJson(drop.largest_drop_db)},
                    {"other_bands_dropped", drop.other_bands ? Json(*drop.other_bands) : Json(nullptr)}});
  }
  return list;
}

Json SignalJson(const SignalFigures& signal, const FigureTables& tables) {
  Json j;
  if (signal.satellite.system == ' ') {
    j["letter"] = std::string(1, signal.system);
  } else {
    j["satellite"] = NameOf(signal.satellite);
  }
  j["signal"] = NameOf(signal.code);
  j["multipath_partner"] = TextJson(signal.multipath.partner);
  j["phase_noise_method"] = TextJson(signal.phase_noise.method);
  AddFigures(tables.analysis_signal, signal, j);
  j["strength_mean_by_elevation"] = BinsOf(signal.strength.mean_by_elevation);
  j["strength_p5_by_elevation"] = BinsOf(signal.strength.p5_by_elevation);
  j["multipath_by_elevation"] = BinsOf(signal.multipath.by_elevation);
  j["drops"] = DropsOf(signal.strength.drops);
  return j;
}

Json SignalsJson(const std::vector<SignalFigures>& signals, const FigureTables& tables) {
  Json list = Json::array();
  for (const SignalFigures& signal : signals) list.push_back(SignalJson(signal, tables));
  return list;
}

Json SystemsJson(const AnalysisResult& result, const FigureTables& tables) {
  Json list = Json::array();
  for (const analysis::SystemFigures& system : result.systems) {
    Json j;
    j["letter"] = std::string(1, system.letter);
    AddFigures(tables.analysis_system, system, j);
    list.push_back(j);
  }
  return list;
}

Json SatellitesJson(const AnalysisResult& result, const FigureTables& tables) {
  Json list = Json::array();
  for (const analysis::SatelliteFigures& satellite : result.satellites) {
    Json j;
    j["satellite"] = NameOf(satellite.id);
    j["first_epoch_gpst"] = TimeOf(satellite.first_ns);
    j["last_epoch_gpst"] = TimeOf(satellite.last_ns);
    j["lacking_signals"] = Json::array();
    for (const SignalCode code : satellite.lacking) j["lacking_signals"].push_back(NameOf(code));
    AddFigures(tables.analysis_satellite, satellite, j);
    list.push_back(j);
  }
  return list;
}

Json WideLanesJson(const AnalysisResult& result, const FigureTables& tables) {
  Json list = Json::array();
  for (const analysis::WideLaneFigures& pair : result.wide_lanes) {
    Json j;
    j["letter"] = std::string(1, pair.system);
    j["signals"] = {NameOf(pair.first), NameOf(pair.second)};
    AddFigures(tables.wide_lane, pair, j);
    list.push_back(j);
  }
  return list;
}

Json WindowsJson(const AnalysisResult& result, const FigureTables& tables) {
  Json list = Json::array();
  for (const analysis::WindowFigures& window : result.windows) {
    Json j;
    j["from_gpst"] = TimeOf(window.from_ns);
    j["to_gpst"] = TimeOf(window.to_ns);
    AddFigures(tables.window, window, j);
    j["systems"] = Json::array();
    for (const analysis::SystemFigures& system : window.systems) {
      Json s;
      s["letter"] = std::string(1, system.letter);
      AddFigures(tables.window_system, system, s);
      j["systems"].push_back(s);
    }
    j["signals"] = Json::array();
    for (const SignalFigures& signal : window.signals) {
      Json s;
      s["letter"] = std::string(1, signal.system);
      s["signal"] = NameOf(signal.code);
      AddFigures(tables.window_signal, signal, s);
      j["signals"].push_back(s);
    }
    list.push_back(j);
  }
  return list;
}

Json ContradictionsJson(const AnalysisResult& result) {
  Json list = Json::array();
  for (const analysis::Contradiction& c : result.contradictions) {
    list.push_back({{"id", c.id}, {"stated", c.stated}, {"found", c.found}});
  }
  return list;
}

Json NeverObservedJson(const AnalysisResult& result) {
  Json list = Json::array();
  for (const analysis::NeverObserved& satellite : result.never_observed) {
    list.push_back({{"satellite", NameOf(satellite.id)},
                    {"healthy_epochs", satellite.healthy_epochs},
                    {"unhealthy_epochs", satellite.unhealthy_epochs}});
  }
  return list;
}

}  // namespace

Json AnalysisJson(const Report& report, const FigureTables& tables) {
  const AnalysisResult& result = report.analysis.figures;
  Json j;
  j["with_orbits"] = result.with_orbits;
  j["solution_ecef_m"] = PositionJson(result.position.mean_m);
  AddFigures(tables.analysis, result, j);
  j["gaps"] = GapsOf(result.span);
  j["contradiction_list"] = ContradictionsJson(result);
  j["without_orbit"] = NamesOf(result.without_record);
  j["never_observed"] = NeverObservedJson(result);
  j["systems"] = SystemsJson(result, tables);
  j["signals"] = SignalsJson(result.signals, tables);
  j["wide_lanes"] = WideLanesJson(result, tables);
  if (!result.windows.empty()) j["windows"] = WindowsJson(result, tables);
  if (report.show_satellites) j["satellites"] = SatellitesJson(result, tables);
  if (report.show_satellite_signals) j["satellite_signals"] = SignalsJson(result.satellite_signals, tables);
  return j;
}

}  // namespace orsolva_host
