// Values of the report's model as cells of tables.
#ifndef ORSOLVA_PYTHON_CELLS_H
#define ORSOLVA_PYTHON_CELLS_H

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "orsolva/records.h"

namespace orsolva_python {

inline std::string Letter(char letter) { return {letter}; }

inline std::int64_t Nanoseconds(const Time_gbt& time) {
  return time.time * orsolva_host::kNanosecondsPerSecond + std::llround(time.sec * 1e9);
}

inline std::optional<std::int64_t> Nanoseconds(const std::optional<Time_gbt>& time) {
  return time ? std::optional<std::int64_t>(Nanoseconds(*time)) : std::nullopt;
}

inline std::vector<std::string> Names(const std::vector<orsolva_host::SignalCode>& codes) {
  std::vector<std::string> names;
  for (const orsolva_host::SignalCode code : codes) names.push_back(NameOf(code));
  return names;
}

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_CELLS_H
