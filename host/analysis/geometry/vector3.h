// Vectors in space.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_VECTOR3_H
#define ORSOLVA_ANALYSIS_GEOMETRY_VECTOR3_H

#include <array>
#include <cmath>

namespace orsolva_host::analysis {

using Vector3 = std::array<double, 3>;

constexpr double Dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

/// a - b
constexpr Vector3 Difference(const Vector3& a, const Vector3& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline double Norm(const Vector3& v) { return std::sqrt(Dot(v, v)); }

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_VECTOR3_H
