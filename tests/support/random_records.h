// Broadcast records drawn at random: anything that counts as the orbit of a navigation satellite, and records
// as damage leaves them.
#ifndef ORSOLVA_TESTS_SUPPORT_RANDOM_RECORDS_H
#define ORSOLVA_TESTS_SUPPORT_RANDOM_RECORDS_H

#include <cmath>
#include <limits>
#include <random>

#include "orsolva/records.h"

namespace orsolva_test {

inline double Draw(std::mt19937& random, double least, double most) {
  return least + (most - least) * (random() / 4294967296.0);
}

/// Elements anywhere within what counts as ordinary.
template <class Record>
void Scatter(std::mt19937& random, Record& record) {
  record.sqrtA = Draw(random, 4000.0, 8000.0);
  record.e = Draw(random, 0.0, 0.25);
  record.M0 = Draw(random, -10.0, 10.0);
  record.i0 = Draw(random, -3.2, 3.2);
  record.omg = Draw(random, -10.0, 10.0);
  record.deln = Draw(random, -1e-6, 1e-6);
  record.OMGd = Draw(random, -1e-6, 1e-6);
  record.idot = Draw(random, -1e-6, 1e-6);
  record.cus = Draw(random, -1e-3, 1e-3);
  record.cic = Draw(random, -1e-3, 1e-3);
  record.crs = Draw(random, -1e5, 1e5);
  record.af0 = Draw(random, -1.0, 1.0);
  record.af1 = Draw(random, -1e-3, 1e-3);
  record.af2 = Draw(random, -1e-9, 1e-9);
}

/// A state vector of ordinary height and speed in any direction, every fourth one falling straight down.
inline void Scatter(std::mt19937& random, GloEph_gbt& record) {
  double* const place[3] = {&record.x, &record.y, &record.z};
  double* const speed[3] = {&record.vx, &record.vy, &record.vz};
  const bool falls = random() % 4 == 0;
  const double r = Draw(random, 25000.0, 27000.0), v = Draw(random, 0.0, 3.8);
  double p[3], q[3];
  for (int i = 0; i < 3; ++i) p[i] = Draw(random, -1.0, 1.0), q[i] = Draw(random, -1.0, 1.0);
  const double p_norm = std::hypot(p[0], p[1], p[2]), q_norm = std::hypot(q[0], q[1], q[2]);
  for (int i = 0; i < 3; ++i) {
    *place[i] = r * p[i] / p_norm;
    *speed[i] = falls ? -v * p[i] / p_norm : v * q[i] / q_norm;
  }
}

inline double AbsurdValue(std::mt19937& random) {
  constexpr double kValues[] = {0.0, 1.0, -1.0, 0.99, 3.0, 700.0, 2500.0, 1e5, 1e12, 1e300};
  const unsigned k = random() % 11;
  return k == 10 ? std::numeric_limits<double>::quiet_NaN() : kValues[k];
}

/// One element becomes anything.
template <class Record>
void Damage(std::mt19937& random, Record& record) {
  double Record::*const members[] = {
      &Record::sqrtA, &Record::e,   &Record::M0,  &Record::omg,  &Record::OMG0, &Record::i0,  &Record::deln,
      &Record::OMGd,  &Record::cuc, &Record::crc, &Record::toes, &Record::af0,  &Record::af1, &Record::af2};
  record.*members[random() % 14] = AbsurdValue(random);
}

inline void Damage(std::mt19937& random, GloEph_gbt& record) {
  double GloEph_gbt::*const members[] = {
      &GloEph_gbt::x,  &GloEph_gbt::y,  &GloEph_gbt::z,  &GloEph_gbt::vx,         &GloEph_gbt::vy,
      &GloEph_gbt::vz, &GloEph_gbt::ax, &GloEph_gbt::az, &GloEph_gbt::clock_bias, &GloEph_gbt::clock_rate};
  record.*members[random() % 10] = AbsurdValue(random);
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_RANDOM_RECORDS_H
