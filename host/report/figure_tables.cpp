#include "host/report/figure_tables.h"

#include "host/report/analysis_figures.h"
#include "host/report/headline.h"
#include "host/report/library_figures.h"
#include "host/report/library_headline.h"
#include "host/report/run_figures.h"
#include "host/report/window_figures.h"

namespace orsolva_host {

const FigureTables& AllFigures() {
  static const FigureTables tables{RunRows(),
                                   HeadlineRows(),
                                   LibraryRunRows(),
                                   LibraryHeadlineRows(),
                                   WholeRows(),
                                   BandRows(),
                                   TotalRows(),
                                   SlotRows(),
                                   SignalRows(),
                                   CoverageRows(),
                                   AnalysisRows(),
                                   AnalysisSystemRows(),
                                   AnalysisSignalRows(),
                                   AnalysisSatelliteRows(),
                                   WideLaneRows(),
                                   WindowRows(),
                                   WindowSystemRows(),
                                   WindowSignalRows()};
  return tables;
}

}  // namespace orsolva_host
