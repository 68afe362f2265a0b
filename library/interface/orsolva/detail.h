// The observer interface: an observer is notified of what the run computes at every epoch, per satellite and
// per code pair, for plots and tables.
//
// There is none by default; every notification is behind one test of a pointer. The observer must not call
// back into the run. For programs that link the static archive: the shared library exports nothing of this.
#ifndef ORSOLVA_INTERFACE_DETAIL_H
#define ORSOLVA_INTERFACE_DETAIL_H

#include <cstdint>

#include "records.h"

namespace orsolva {

/// Why the averaging of a pair's multipath started or restarted.
enum class RestartReason : std::uint8_t {
  kNone,
  kFirstValue,      ///< first value of the pair
  kGap,             ///< more than 600 s since the last value; not counted as a restart
  kJump,            ///< the residual exceeds the threshold of its band
  kIonosphereSlip,  ///< the geometry-free test flags this epoch
};

/// Why the geometry-free test flagged an epoch: the change exceeds its threshold, or more than 242 s have
/// passed.
enum class IonosphereSlipReason : std::uint8_t { kNone, kRate, kLongGap };

/// Why the phase-minus-geometry test counted a slip.
enum class GeometrySlipReason : std::uint8_t {
  kNone,
  kDataGap,       ///< more than 60 s since the last value
  kThreshold,     ///< the change less the common one exceeds its threshold
  kNewEphemeris,  ///< the same in an epoch in which a new broadcast record comes into use
};

/// A satellite as the records name it.
struct DetailSatellite {
  std::uint8_t sys = 0;
  std::int32_t prn = 0;
};

/// One measured satellite at one epoch (an elevation was found).
struct SatelliteEpochDetail {
  int number = 0;  ///< the library's number of the satellite, 1 to 208
  DetailSatellite satellite;
  Time_gbt time{};
  double elevation_rad = 0.0;
  double azimuth_rad = 0.0;                ///< from north through east, 0 to 2 pi
  bool above_cutoff = false;               ///< counts for completeness, multipath and slips
  bool above_30 = false;                   ///< above 30 degrees
  const Signal_QC_gbt* signals = nullptr;  ///< valid during the call; values that were not finite are 0
  int signal_count = 0;
};

/// One code pair of a satellite at one epoch: the multipath of a code, and its two slip tests.
struct PairEpochDetail {
  int number = 0;  ///< as above
  DetailSatellite satellite;
  Time_gbt time{};
  std::uint32_t code = 0;     ///< signal number of the measured code
  std::uint32_t partner = 0;  ///< signal number of its partner on another band
  bool counting = false;      ///< above the elevation cut-off: the residual enters the RMS, slips are counted

  bool has_multipath = false;
  double multipath_m = 0.0;  ///< the multipath combination, its constant bias included
  double residual_m = 0.0;   ///< less its moving mean: what enters the RMS
  RestartReason restart = RestartReason::kNone;

  bool has_geometry_free_step = false;
  double geometry_free_step_m = 0.0;       ///< change of the geometry-free phase combination
  double geometry_free_threshold_m = 0.0;  ///< beyond which it is flagged
  IonosphereSlipReason ionosphere_slip = IonosphereSlipReason::kNone;

  bool has_difference = false;
  double difference_m = 0.0;          ///< change of carrier phase range minus geometric range
  double excess_m = 0.0;              ///< the change less the common one of the epoch: what the test compares
  double geometry_threshold_m = 0.0;  ///< beyond which a slip is counted; 0 = not tested
  bool new_ephemeris = false;         ///< the previous value was formed again with a new record
  GeometrySlipReason geometry_slip = GeometrySlipReason::kNone;
};

/// Within a batch all satellites come first, one after the other, then the pairs epoch by epoch.
class QcDetailObserver {
 public:
  virtual ~QcDetailObserver() = default;
  virtual void OnSatelliteEpoch(const SatelliteEpochDetail& detail) = 0;
  virtual void OnPairEpoch(const PairEpochDetail& detail) = 0;
  /// Whether directions and signals of satellites are looked at, asked once per batch and once per satellite
  /// and epoch. If not they are not computed: elevations are not a number, azimuths are 0, and there are no
  /// signals.
  virtual bool LooksAtDirections() const { return true; }
};

/// Attaches an observer for the batches that follow.
/// @param handle    of CreatQcProcess; null is ignored
/// @param observer  null detaches. The caller keeps ownership. An observer that throws ends the batch with
///                  GNSSQC_INTERNAL_ERROR
void SetDetailObserver(unsigned long long* handle, QcDetailObserver* observer);

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_DETAIL_H
