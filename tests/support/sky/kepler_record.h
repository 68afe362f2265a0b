// The broadcast record that the skies of the tests are made of: a Kepler orbit, its reference time and a
// clock offset, all other terms zero.
#ifndef ORSOLVA_TESTS_SUPPORT_SKY_KEPLER_RECORD_H
#define ORSOLVA_TESTS_SUPPORT_SKY_KEPLER_RECORD_H

#include <cstdint>

#include "orsolva/records.h"

namespace orsolva_test {

struct KeplerOrbit {
  double SqrtA = 0.0;  ///< m^(1/2)
  double Eccentricity = 0.0;
  double Inclination = 0.0;  ///< rad
  double Node = 0.0;         ///< rad, at the start of the week, in the frame that turns with the Earth
  double Perigee = 0.0;      ///< rad
  double Anomaly = 0.0;      ///< rad, mean anomaly at the reference time
};

/// In the record's own time scale.
struct ReferenceTime {
  std::int64_t Time = 0;  ///< s since 1970
  std::int32_t Week = 0;
  double SecondOfWeek = 0.0;
};

/// A record of GPS, QZSS, Galileo or BDS with a user range accuracy of 2 m.
/// @param clock_s  clock offset at the reference time
template <class Record>
Record KeplerRecord(std::int32_t prn, const KeplerOrbit& orbit, const ReferenceTime& reference,
                    double clock_s) {
  Record record{};
  record.prn = prn;
  record.week = reference.Week;
  record.toes = reference.SecondOfWeek;
  record.toc = {reference.Time, 0.0};
  record.sqrtA = orbit.SqrtA;
  record.e = orbit.Eccentricity;
  record.i0 = orbit.Inclination;
  record.OMG0 = orbit.Node;
  record.omg = orbit.Perigee;
  record.M0 = orbit.Anomaly;
  record.af0 = clock_s;
  record.ura = 2.0;
  return record;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_SKY_KEPLER_RECORD_H
