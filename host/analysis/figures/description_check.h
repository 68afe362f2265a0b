// The data against what header and file name state.
//
//   interval             INTERVAL of the header off the data's by more than 1 %
//   file_name_interval   the same of the file name
//   first_epoch,         TIME OF FIRST and LAST OBS off the first and last epoch by more than half an
//   last_epoch           interval (at least 0.1 s)
//   file_name_start      the first epoch lies before the time of the file name, or after its period
//   file_name_period     the last epoch lies after the period of the file name
//   marker               the first four characters of the marker are not the station of the file name
//   position             the position of the header is more than 50 m from the codes' (100 m where most
//                        solutions have one band); not where the antenna moves
//   glonass_channel      the channel of a satellite in the header is not the one that its code and phase show
//                        over a range change of 1,000 km, which separates channels thirtyfold
//   antenna_change,      header lines among the observations change them
//   receiver_change, marker_change
//
// Times of a file name may be overstepped by an epoch, at least by a minute. A period that is not filled is
// no contradiction (RINEX 3.05, table A1: the intended collection period), nor is anything with fewer than
// three epochs.
#ifndef ORSOLVA_ANALYSIS_FIGURES_DESCRIPTION_CHECK_H
#define ORSOLVA_ANALYSIS_FIGURES_DESCRIPTION_CHECK_H

#include <map>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/slips/glonass_channel.h"
#include "host/observation/station_description.h"

namespace orsolva_host::analysis {

class DescriptionCheck {
 public:
  void AddEpoch(const ObservationEpoch& epoch);

  /// @param result  with the figures of span and position
  void FillIn(const StationDescription& stated, AnalysisResult& result) const;

 private:
  struct Learned {
    SignalCode code;  ///< one signal throughout: others have delays of their own
    GlonassChannel channel{1e6};
  };
  void CheckChannels(const StationDescription& stated, std::vector<Contradiction>& found) const;

  std::map<std::uint8_t, Learned> channels_;  ///< by slot
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_DESCRIPTION_CHECK_H
