// The observer interface: what the run computes per epoch, satellite and pair, for plots and tables.
//
// Null by default; every report is behind one test of a pointer. The observer must not call back into the
// run. For programs that link the static archive: the shared library exports nothing of this.
#ifndef ORSOLVA_INTERFACE_DETAIL_H
#define ORSOLVA_INTERFACE_DETAIL_H

#include <cstdint>

#include "records.h"

namespace orsolva {

/// Why the averaging of a pair's multipath was restarted.
enum class RestartReason : std::uint8_t { kNone, kFirstValue, kGap, kJump, kIonosphereSlip };

/// Why the geometry-free test reported a slip.
enum class IonosphereSlipReason : std::uint8_t { kNone, kRate, kLongGap };

/// Why the phase-minus-geometry test counted a slip.
enum class GeometrySlipReason : std::uint8_t { kNone, kDataGap, kThreshold, kNewEphemeris };

/// A satellite as the records name it.
struct DetailSatellite {
  std::uint8_t sys = 0;
  std::int32_t prn = 0;
};

/// One measured satellite at one epoch (an elevation was found).
struct SatelliteEpochDetail {
  int Number = 0;  ///< satellite number 1 to 208
  DetailSatellite Satellite;
  Time_gbt Time{};
  double ElevationRad = 0.0;
  double AzimuthRad = 0.0;
  bool AboveCutoff = false;
  bool Above30 = false;
  const Signal_QC_gbt* Signals = nullptr;  ///< valid during the call; values that were not finite are 0
  int SignalCount = 0;
};

/// One code pair of a satellite at one epoch of the pass.
struct PairEpochDetail {
  int Number = 0;
  DetailSatellite Satellite;
  Time_gbt Time{};
  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
  bool Counting = false;  ///< above the elevation cut-off

  bool HasMultipath = false;
  double MultipathM = 0.0;  ///< the raw combination, bias included
  double ResidualM = 0.0;   ///< what enters the RMS
  RestartReason Restart = RestartReason::kNone;

  bool HasGeometryFreeStep = false;
  double GeometryFreeStepM = 0.0;
  double GeometryFreeThresholdM = 0.0;
  IonosphereSlipReason IonosphereSlip = IonosphereSlipReason::kNone;

  bool HasDifference = false;
  double DifferenceM = 0.0;  ///< phase-minus-geometry change
  double ExcessM = 0.0;      ///< the change less the common one (what the slip test compares)
  double GeometryThresholdM = 0.0;
  bool NewEphemeris = false;  ///< the previous value was formed again with a new record
  GeometrySlipReason GeometrySlip = GeometrySlipReason::kNone;
};

class QcDetailObserver {
 public:
  virtual ~QcDetailObserver() = default;
  virtual void OnSatelliteEpoch(const SatelliteEpochDetail& detail) = 0;
  virtual void OnPairEpoch(const PairEpochDetail& detail) = 0;
};

/// Attaches an observer for the batches that follow.
/// @param handle    of CreatQcProcess; null is ignored
/// @param observer  null detaches. The caller keeps ownership. An observer that throws ends the batch with
///                  GNSSQC_INTERNAL_ERROR
void SetDetailObserver(unsigned long long* handle, QcDetailObserver* observer);

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_DETAIL_H
