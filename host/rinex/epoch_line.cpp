#include "host/rinex/epoch_line.h"

#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"

namespace orsolva_host {

bool ParseEpochLine(std::string_view line, EpochLine& epoch) {
  if (line.empty() || line[0] != '>') return false;
  std::int64_t flag = 0;
  std::int64_t count = 0;
  if (ParseInteger(Field(line, 31, 1), flag) == FieldState::kBad || flag < 0 || flag > 6) return false;
  if (ParseInteger(Field(line, 32, 3), count) == FieldState::kBad || count < 0) return false;
  epoch.flag = static_cast<int>(flag);
  epoch.count = static_cast<int>(count);
  CivilTime civil;
  epoch.time_given = ParseCivil(Field(line, 2, 4), Field(line, 7, 2), Field(line, 10, 2), Field(line, 13, 2),
                                Field(line, 16, 2), Field(line, 18, 11), civil);
  if (epoch.time_given) epoch.time = ToTime(civil);
  return epoch.time_given || epoch.flag > 1;
}

}  // namespace orsolva_host
