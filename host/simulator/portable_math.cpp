#include "host/simulator/portable_math.h"

namespace orsolva_host {
namespace {

constexpr double kHalfPi = 0x1.921fb54442d18p+0;

// Arc tangents of 0/8 to 8/8, correctly rounded (Machin's formula in 80 digits).
constexpr double kArcTangents[] = {
    0,
    0x1.fd5ba9aac2f6ep-4,
    0x1.f5b75f92c80ddp-3,
    0x1.6f61941e4def1p-2,
    0x1.dac670561bb4fp-2,
    0x1.1e00babdefeb4p-1,
    0x1.4978fa3269ee1p-1,
    0x1.700a7c5784634p-1,
    0x1.921fb54442d18p-1,
};

constexpr double kLogTwo1 = 0x1.62e42fef00000p-1;
constexpr double kLogTwo2 = 0x1.473de6af278edp-34;
constexpr double kOneOverLogTwo = 0x1.71547652b82fep+0;

/// On [0, 1].
double ArcTangentOfShare(double t) {
  const double place = std::floor(8 * t + 0.5);
  const double from = place / 8;
  const double d = (t - from) / (1 + t * from);  // at most 1/16
  const double z = d * d;
  double s = 1.0 / 13;
  for (int n = 11; n >= 3; n -= 2) s = 1.0 / n - z * s;
  return kArcTangents[static_cast<int>(place)] + (d - d * z * s);
}

}  // namespace

double ArcTangent(double y, double x) {
  const double height = std::fabs(y), width = std::fabs(x);
  if (height == 0 && width == 0) return 0;
  double angle =
      height <= width ? ArcTangentOfShare(height / width) : kHalfPi - ArcTangentOfShare(width / height);
  if (x < 0) angle = kPi - angle;
  return y < 0 ? -angle : angle;
}

double ArcSine(double x) { return ArcTangent(x, std::sqrt((1 - x) * (1 + x))); }

double Exponential(double x) {
  const double halvings = std::floor(x * kOneOverLogTwo + 0.5);
  const double r = (x - halvings * kLogTwo1) - halvings * kLogTwo2;
  double sum = 1;
  for (int n = 14; n >= 1; --n) sum = 1 + r * sum / n;
  return std::ldexp(sum, static_cast<int>(halvings));
}

double Logarithm(double x) {
  int power = 0;
  double m = std::frexp(x, &power);
  if (m < 0.70710678118654752) {
    m *= 2;
    --power;
  }
  const double s = (m - 1) / (m + 1), z = s * s;
  double sum = 1.0 / 23;
  for (int n = 21; n >= 1; n -= 2) sum = 1.0 / n + z * sum;
  return power * kLogTwo1 + (2 * s * sum + power * kLogTwo2);
}

double CubeRoot(double x) {
  double root = Exponential(Logarithm(x) / 3);
  for (int i = 0; i < 2; ++i) root -= (root - x / (root * root)) / 3;
  return root;
}

}  // namespace orsolva_host
