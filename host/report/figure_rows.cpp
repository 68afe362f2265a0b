#include "host/report/figure_rows.h"

namespace orsolva_host {

const char* UnitOf(FigureKind kind) {
  switch (kind) {
    case FigureKind::kEpochs:
    case FigureKind::kObservations:
      return "epochs";
    case FigureKind::kValues:
      return "values";
    case FigureKind::kRecords:
      return "records";
    case FigureKind::kSatellites:
      return "satellites";
    case FigureKind::kEvents:
      return "events";
    case FigureKind::kRatio:
    case FigureKind::kNumber:
    case FigureKind::kYesNo:
      return "1";
    case FigureKind::kMetres:
      return "m";
    case FigureKind::kDbHz:
      return "dB-Hz";
    case FigureKind::kCycles:
      return "cycles";
    case FigureKind::kHours:
      return "h";
    case FigureKind::kSeconds:
    case FigureKind::kClockOffset:
      return "s";
    case FigureKind::kClockRate:
      return "s/s";
    case FigureKind::kSteps:
      return "steps";
    case FigureKind::kMillimetres:
      return "mm";
    case FigureKind::kMinutes:
      return "min";
    case FigureKind::kHertz:
      return "Hz";
    case FigureKind::kTecuPerMinute:
      return "TECU/min";
    case FigureKind::kDegrees:
      return "deg";
  }
  return "";
}

bool IsCount(FigureKind kind) {
  return kind == FigureKind::kEpochs || kind == FigureKind::kValues || kind == FigureKind::kRecords ||
         kind == FigureKind::kSatellites || kind == FigureKind::kEvents || kind == FigureKind::kSteps;
}

}  // namespace orsolva_host
