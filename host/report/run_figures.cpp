#include "host/report/run_figures.h"

namespace orsolva_host {

// clang-format off
std::vector<FigureRow<ReportRun>> RunRows() {
  constexpr FigureSource kFile = FigureSource::kFile;
  return {
      {"duration_h",                      FigureKind::kHours,   Get<&ReportRun::duration_h>, {}, kNotInSum, kFile},
      {"interval_s",                      FigureKind::kSeconds, Get<&ReportRun::interval_s>, {}, kNotInSum, kFile},
      {"epochs",                          FigureKind::kEpochs,  Get<&ReportRun::epochs>, {}, kNotInSum, kFile},
      {"elevation_cutoff_deg",            FigureKind::kDegrees, Get<&ReportRun::elevation_cutoff_deg>, {}, kNotInSum, kFile},
  };
}

std::vector<FigureRow<ReportRun>> LibraryRunRows() {
  return {
      {"judged_epochs",                   FigureKind::kEpochs,  Get<&ReportRun::judged_epochs>},
      {"lost_epochs",                     FigureKind::kEpochs,  Get<&ReportRun::lost_epochs>},
      {"distance_from_header_position_m", FigureKind::kMetres,  Get<&ReportRun::distance_from_header_m>},
      {"averaging_window_epochs",         FigureKind::kEpochs,  Get<&ReportRun::averaging_window_epochs>},
  };
}

std::vector<FigureRow<NavigationCoverage>> CoverageRows() {
  constexpr FigureSource kFile = FigureSource::kFile;
  return {
      {"epochs_seen",              FigureKind::kEpochs,  Get<&NavigationCoverage::observed_epochs>, {}, kNotInSum, kFile},
      {"navigation_records",       FigureKind::kRecords, Get<&NavigationCoverage::records>, {}, kNotInSum, kFile},
      {"unhealthy_records",        FigureKind::kRecords, Get<&NavigationCoverage::unhealthy_records>, {}, kNotInSum, kFile},
      {"navigation_covered_ratio", FigureKind::kRatio,   Get<&NavigationCoverage::covered_ratio>, {}, kNotInSum, kFile},
  };
}
// clang-format on

}  // namespace orsolva_host
