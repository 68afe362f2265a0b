// Sine, arc tangent and the like from additions, multiplications, divisions and square roots only, which IEEE
// 754 rounds correctly everywhere. The functions of a C library may differ in the last place, and a compiler
// may fold them at compile time; with these the same scenario gives the same bytes on every machine.
// Errors stay below two units in the last place (PortableMath tests).
//
// Method: argument reduction with split constants (Cody and Waite 1980), then Taylor series.
#ifndef ORSOLVA_SIMULATOR_PORTABLE_MATH_H
#define ORSOLVA_SIMULATOR_PORTABLE_MATH_H

#include <cmath>

#include "host/observation/physical_constants.h"

namespace orsolva_host {

inline constexpr double kRadian = 0x1.1df46a2529d39p-6;  ///< one degree

struct SineCosine {
  double sine = 0;
  double cosine = 1;
};

namespace portable {

// Half of pi in pieces of 33 bits, so that multiples of the first two are exact up to 2^20 turns.
inline constexpr double kHalfPi1 = 0x1.921fb54400000p+0;
inline constexpr double kHalfPi2 = 0x1.0b4611a600000p-34;
inline constexpr double kHalfPi3 = 0x1.3198a2e037073p-69;
inline constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;

/// On [-pi/4, pi/4]; z is the square of r.
inline double SineNear0(double r, double z) {
  double s = 1.0 / 355687428096000.0;
  s = s * z - 1.0 / 1307674368000.0;
  s = s * z + 1.0 / 6227020800.0;
  s = s * z - 1.0 / 39916800.0;
  s = s * z + 1.0 / 362880.0;
  s = s * z - 1.0 / 5040.0;
  s = s * z + 1.0 / 120.0;
  s = s * z - 1.0 / 6.0;
  return r + r * z * s;
}

inline double CosineNear0(double z) {
  double c = 1.0 / 20922789888000.0;
  c = c * z - 1.0 / 87178291200.0;
  c = c * z + 1.0 / 479001600.0;
  c = c * z - 1.0 / 3628800.0;
  c = c * z + 1.0 / 40320.0;
  c = c * z - 1.0 / 720.0;
  c = c * z + 1.0 / 24.0;
  const double half = 0.5 * z, head = 1 - half;
  return head + ((1 - head - half) + z * z * c);  // adds back what the head lost
}

}  // namespace portable

/// @param x  rad; accurate up to a million turns
inline SineCosine SineCosineOf(double x) {
  using namespace portable;
  const double turns = std::floor(x * kTwoOverPi + 0.5);
  const double r = ((x - turns * kHalfPi1) - turns * kHalfPi2) - turns * kHalfPi3;
  const double z = r * r;
  const double s = SineNear0(r, z), c = CosineNear0(z);
  const double quarter = turns - 4 * std::floor(turns * 0.25);  // 0 to 3
  if (quarter == 0) return {s, c};
  if (quarter == 1) return {c, -s};
  return quarter == 2 ? SineCosine{-s, -c} : SineCosine{-c, s};
}

inline double Sine(double x) { return SineCosineOf(x).sine; }
inline double Cosine(double x) { return SineCosineOf(x).cosine; }

/// The angle of the point (x, y), rad, in [-pi, pi]; 0 for the origin.
double ArcTangent(double y, double x);
/// @param x  in [-1, 1]
double ArcSine(double x);
double Exponential(double x);
/// @param x  above 0
double Logarithm(double x);
/// @param x  above 0
double CubeRoot(double x);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_PORTABLE_MATH_H
