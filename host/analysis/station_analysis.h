// The analysis of one station: takes epochs one at a time, finds events, and gives figures at any time.
//
// Memory is bounded by the satellites and signals observed, not by time, but for gaps and drops, which are
// listed one by one. How epochs are grouped in calls changes nothing, and the same epochs give the same bits.
#ifndef ORSOLVA_ANALYSIS_STATION_ANALYSIS_H
#define ORSOLVA_ANALYSIS_STATION_ANALYSIS_H

#include <cstdint>
#include <memory>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/series_row.h"
#include "host/analysis/slips/slip_detector.h"
#include "host/observation/station_description.h"

namespace orsolva_host::analysis {

struct AnalysisOptions {
  DetectorOptions detector;
  double elevation_cutoff_deg = 10;
  double stated_interval_s =
      0;                ///< of the user, the header or the file name; counts where the data show none
  bool series = false;  ///< figures over time are made, too
  double window_s = 0;  ///< of AnalysisResult::windows; 0: none
};

/// Values of the moving multipath of a signal of a satellite, from the cut-off up; see
/// MultipathFigures::moving_m.
struct MultipathBlock {
  SatelliteId satellite;
  SignalCode signal;
  std::int64_t time_ns = 0;  ///< at which it begins; it lasts 30 s
  double squares_m2 = 0;     ///< sum over the values
  Count values = 0;
};

class StationAnalysis {
 public:
  /// @param records  broadcast orbits; may hold nothing
  StationAnalysis(const AnalysisOptions& options, const BroadcastRecords& records);
  ~StationAnalysis();

  /// Takes the next epoch. Epochs that do not go on in time are left out and counted.
  void Add(const ObservationEpoch& epoch);
  /// Adds later records of satellites that have some. Others of a satellite that had none at the beginning
  /// do not make it expected.
  void AddRecords(const BroadcastRecords& records) { detector_.Orbits().Add(records); }
  /// Decides what is still open. No epoch may follow.
  void Finish();

  /// Events decided since the last call, by time and satellite.
  std::vector<Event> TakeEvents();

  /// Rows of figures over time that are complete since the last call; see TimeSeries.
  std::vector<SeriesRow> TakeSeries();

  /// From now on blocks of multipath are kept until TakeMultipath.
  void KeepMultipath();
  /// Those judged since the last call, by satellite, signal and time: about five minutes after their time,
  /// the first ten and a half minutes of an arc together, and what is left with Finish. Their sums are those
  /// of the result.
  std::vector<MultipathBlock> TakeMultipath();

  /// The figures of everything decided so far.
  /// @param stated  to hold the data against
  AnalysisResult Result(const StationDescription& stated = {}) const;

 private:
  class Figures;
  std::unique_ptr<Figures> figures_;
  SlipDetector detector_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_STATION_ANALYSIS_H
