// Satellite orbits and clocks from broadcast elements. Positions are ECEF in metres, clocks in seconds.
//
// Sources: IS-GPS-200, 20.3.3.3.3.1 and 20.3.3.4.3; Galileo OS SIS ICD, 5.1.1; BDS-SIS-ICD, 5.2.4.12;
// GLONASS ICD 5.1, appendix 3.1.2.
#ifndef ORSOLVA_NAVIGATION_ORBITS_ORBITS_H
#define ORSOLVA_NAVIGATION_ORBITS_ORBITS_H

#include <cstdint>

#include "navigation/orbits/glonass_trajectory.h"
#include "orsolva/records.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

/// Elements of a Kepler orbit as broadcast; units as in the boundary records.
struct KeplerElements {
  std::int32_t Prn = 0;  ///< for diagnostics
  double Crs, Deln, M0, Cuc, E, Cus, SqrtA, Toes, Cic, Omg0, Cis, I0, Crc, Omg, OmgDot, Idot;
};

/// Clock polynomial as broadcast.
struct ClockElements {
  AbsoluteTime Toc;
  double Af0 = 0.0, Af1 = 0.0, Af2 = 0.0;
};

/// Which constants and which final rotation an orbit takes.
struct KeplerModel {
  double Gm = 0.0;        ///< m^3/s^2
  double Rotation = 0.0;  ///< rad/s
  bool BdsGeo = false;    ///< rotation of BDS geostationary satellites
};

/// Elements of a record of the GPS, BDS or Galileo form.
template <class Record>
KeplerElements ElementsOf(const Record& r) {
  return {r.prn, r.crs,  r.deln, r.M0, r.cuc, r.e,   r.cus,  r.sqrtA, r.toes,
          r.cic, r.OMG0, r.cis,  r.i0, r.crc, r.omg, r.OMGd, r.idot};
}
template <class Record>
ClockElements ClockOf(const Record& r) {
  return {{r.toc.time, r.toc.sec}, r.af0, r.af1, r.af2};
}

/// Clock bias of the polynomial at a time read from the satellite's own clock, refined twice.
double BroadcastClock(const AbsoluteTime& t, const AbsoluteTime& toc, double af0, double af1, double af2);

/// Position and clock (with the relativistic term, without group delay) from Kepler elements.
/// @param toe  reference time in the scale of t
/// @return 1, or 0 with the outputs untouched when Kepler's equation takes 30 iterations
int KeplerOrbit(const KeplerModel& model, const AbsoluteTime& t, const AbsoluteTime& toe,
                const ClockElements& clock_elements, const KeplerElements& elements, double position[3],
                double& clock);

/// The same with the reference time formed from a week: of BDS for system kBds, of GPS otherwise.
int KeplerOrbit(int system, const KeplerModel& model, const AbsoluteTime& t,
                const ClockElements& clock_elements, const KeplerElements& elements, std::int32_t week,
                double position[3], double& clock);

/// Position and clock by integrating the broadcast state vector in whole steps and one last part of a step.
/// @param t           UTC
/// @param trajectory  keeps the whole steps for the next time
/// @return 1, or 0 with the outputs untouched for a state at the geocentre or a t more than a day from toe
int GlonassOrbit(const AbsoluteTime& t, const GloEph_gbt& record, GlonassTrajectory& trajectory,
                 double position[3], double& clock);
/// The same, integrated from the record each time.
int GlonassOrbit(const AbsoluteTime& t, const GloEph_gbt& record, double position[3], double& clock);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_NAVIGATION_ORBITS_ORBITS_H
