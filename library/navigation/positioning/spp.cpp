#include "navigation/positioning/spp.h"

#include "navigation/positioning/fault_exclusion.h"
#include "navigation/positioning/least_square_spp.h"
#include "toolkit/signals.h"

namespace gnssqctoolkit {

SppEpoch SPP::WithSatelliteStates(const PositioningEpoch& epoch) const {
  SppEpoch out;
  out.Time = epoch.Time;
  out.Observations.reserve(epoch.Observations.size());
  for (const PositioningObservation& from : epoch.Observations) {
    SppObservation to;
    to.Satellite = from.Satellite;
    to.Pseudorange = from.Pseudorange;
    const bool slotted =
        from.Satellite.system == kGlonass && from.Satellite.prn >= 1 && from.Satellite.prn <= 32;
    const int channel = slotted ? ephemeris_.GlonassChannels()[from.Satellite.prn - 1] : 0;
    to.Wavelength = Wavelength(from.Satellite.system, from.Code, channel);
    ephemeris_.SatellitePosition(from.Satellite, epoch.Time, from.Pseudorange, to.State);
    out.Observations.push_back(to);
  }
  return out;
}

bool SPP::Position(const PositioningEpoch& epoch, SPPResult& result) {
  marks_.clear();
  result.Status = 0;
  if (epoch.Observations.empty()) return false;
  const SPPResult start = result;
  const SppEpoch with_states = WithSatelliteStates(epoch);
  if (LeastSquareSpp(with_states, option_, result, marks_)) return true;
  return ExcludeFault(with_states, option_, start, result, marks_, LeastSquareSpp);
}

}  // namespace gnssqctoolkit
