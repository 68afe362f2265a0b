// Fast formatting of the fixed decimals of RINEX cells.
#ifndef ORSOLVA_SIMULATOR_FIXED_DECIMAL_H
#define ORSOLVA_SIMULATOR_FIXED_DECIMAL_H

#include <cstdint>

namespace orsolva_host {

/// An integer number of thousandths as a decimal with three places, right-aligned in `width` characters at
/// `out`. A number too long for the width is truncated at the left; no simulated value is.
void WriteThousandths(std::int64_t thousandths, char* out, int width);

/// The nearest integer number of thousandths.
std::int64_t Thousandths(double value);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_FIXED_DECIMAL_H
