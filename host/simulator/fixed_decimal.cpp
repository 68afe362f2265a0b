#include "host/simulator/fixed_decimal.h"

#include <cmath>

namespace orsolva_host {

void WriteThousandths(std::int64_t thousandths, char* out, int width) {
  const bool negative = thousandths < 0;
  std::uint64_t rest =
      negative ? 0 - static_cast<std::uint64_t>(thousandths) : static_cast<std::uint64_t>(thousandths);
  int place = width;
  for (int digits = 0; place > 0 && (digits < 4 || rest > 0); ++digits) {
    if (digits == 3) {
      out[--place] = '.';
      if (place == 0) return;
    }
    out[--place] = static_cast<char>('0' + rest % 10);
    rest /= 10;
  }
  if (negative && place > 0) out[--place] = '-';
  while (place > 0) out[--place] = ' ';
}

std::int64_t Thousandths(double value) { return std::llround(value * 1000); }

}  // namespace orsolva_host
