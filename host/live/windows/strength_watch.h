// How far signals are below their usual strength, band by band.
//
// The usual strength is a mean over a day or so at each 5 degrees of elevation, of the satellite's signal
// where it has been there for kLearn_s, else of the signal over all satellites. A band's departure is the
// median over its satellites from kLeast_deg up, of the mean over their signals on the band. While a band is
// down by more than half of the limit, nothing is learnt from it.
//
// C/N0 alone shows interference and failing antennas; no property of the receiver is needed (a
// self-calibrating detector over hundreds of unlike receivers: NAVIGATION 73(1), navi.763).
#ifndef ORSOLVA_LIVE_WINDOWS_STRENGTH_WATCH_H
#define ORSOLVA_LIVE_WINDOWS_STRENGTH_WATCH_H

#include <string>
#include <vector>

#include "host/live/windows/tracked_signals.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::live {

/// Of a band in an epoch.
struct BandDeparture {
  std::string band;      ///< "L1/E1/B1C", "L2", "B3I" and so on
  int satellites = 0;    ///< that are compared
  double median_db = 0;  ///< negative: weaker than usual
};

/// The band that a carrier belongs to, over all systems; GLONASS channels have one band.
std::string BandName(double carrier_hz);

class StrengthWatch {
 public:
  static constexpr double kLearn_s = 120;
  static constexpr double kShareLearn_s = 600;  ///< of all satellites together
  static constexpr double kLeast_deg = 15;

  explicit StrengthWatch(TrackedSignals& signals) : signals_(&signals) {}

  /// Takes an epoch. @param limit_db  above zero @param least  satellites that a departure needs
  /// @return one for each band with so many satellites
  std::vector<BandDeparture> Add(const ObservationEpoch& epoch, const std::vector<double>& elevations_deg,
                                 double interval_s, double limit_db, int least);

 private:
  struct Band {
    double carrier_hz = 0;
    std::vector<double> departures_db;
  };
  struct Value {
    TrackedSignal* signal;
    std::size_t bin;
    double dbhz;
    std::size_t band;
  };
  std::size_t PlaceOf(double carrier_hz);
  void Collect(const ObservationEpoch& epoch, const std::vector<double>& elevations_deg, double interval_s);
  void Learn(double interval_s, const std::vector<char>& down);

  TrackedSignals* signals_;
  std::vector<Band> bands_;
  std::vector<Value> values_;  ///< of the epoch at hand
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_WINDOWS_STRENGTH_WATCH_H
