// What happened to the satellites of a run: slips and jumps, interruptions, and what struck the whole
// receiver.
#ifndef ORSOLVA_REPORT_RUN_EVENTS_H
#define ORSOLVA_REPORT_RUN_EVENTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/report/detail_collector.h"
#include "host/report/report.h"

namespace orsolva_host {

/// Epochs from `first` up to `end`, which is not one of them.
struct EpochSpan {
  EpochIndex first = 0;
  EpochIndex end = 0;
};

/// Events of one kind of a satellite at one epoch, over the pairs that figures come from.
struct EventRow {
  EpochIndex epoch = 0;
  int satellite = 0;  ///< place in RunEvents::satellites
  EventKind kind = EventKind::kGeometry;
  std::int16_t elevation = 0;  ///< 0.1 degrees
  std::uint32_t signals = 0;   ///< a bit for each of the satellite's signals, in the order of their codes
};

struct SatelliteEvents {
  std::string name;
  std::vector<EpochSpan> gaps;    ///< in view
  Count geometry_free_slips = 0;  ///< epochs with one, those of the whole receiver apart
  Count code_jumps = 0;           ///< as above
};

struct RunEvents {
  std::vector<SatelliteEvents> satellites;  ///< in the order of DetailCollector::Satellites
  std::vector<EventRow> rows;               ///< by epoch, satellite and kind
  std::vector<EpochSpan> holes;             ///< without any satellite, between the first and the last epoch
  std::vector<EpochIndex> receiver_epochs;  ///< at which many satellites slipped or jumped at once
  Time_gbt first{};
  double interval_s = 1;

  /// "00:00:30", the time of day of an epoch.
  std::string Clock(EpochIndex epoch) const;
};

/// @param detail  after Finish
RunEvents EventsOf(const DetailCollector& detail);

/// The name of a satellite of the detail, such as "G05".
std::string NameOf(const orsolva::DetailSatellite& satellite);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_RUN_EVENTS_H
