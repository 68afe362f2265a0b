// Fast writing of the fixed decimals of RINEX cells.
#ifndef ORSOLVA_SIMULATOR_FIXED_DECIMAL_H
#define ORSOLVA_SIMULATOR_FIXED_DECIMAL_H

#include <cstdint>

namespace orsolva_host {

/// A whole number of thousandths as a decimal with three places, right-aligned in `width` characters at
/// `out`. A number too long for the width is cut at the left; no cell of a simulation is.
void WriteThousandths(std::int64_t thousandths, char* out, int width);

/// The nearest whole number of thousandths.
std::int64_t Thousandths(double value);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_FIXED_DECIMAL_H
