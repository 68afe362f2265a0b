// Every figure of a report in one list, for the writers and checks that treat all figures alike.
#ifndef ORSOLVA_REPORT_FIGURE_LIST_H
#define ORSOLVA_REPORT_FIGURE_LIST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/report/figure_tables.h"
#include "host/report/report.h"

namespace orsolva_host {

enum class FigureScope { kRun, kHeadline, kLibraryTotal, kSystem, kSatellite, kSignal, kWindow };

struct FigureValue {
  FigureScope scope = FigureScope::kRun;
  std::string subject;    ///< "" the run and its headline, "all" the library total, "G" or "G04"
  std::string signal;     ///< "1C"; "1C@10-15" in a range of elevations; the band of a band figure ("L1",
                          ///< "slot1"); "1C-2W" of two signals; or empty; in a window
                          ///< of time with its beginning, "1C@2020-06-25T06:00:00" or "@2020-06-25T06:00:00"
  std::string key;        ///< of figures.h
  std::string_view unit;  ///< of the figure
  std::optional<double> value;
  FigureSource source = FigureSource::kLibrary;  ///< what computed it
};

/// The figures of the run, the headline and the rest of the analysis, each once, then those of the library:
/// run, headline, total, systems, signals and satellites; absent ones included.
std::vector<FigureValue> ListFigures(const Report& report, const FigureTables& tables = AllFigures());

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURE_LIST_H
