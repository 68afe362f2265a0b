// What the epochs of a file hold, counted without orbits.
#ifndef ORSOLVA_JUDGING_OBSERVATION_CONTENTS_H
#define ORSOLVA_JUDGING_OBSERVATION_CONTENTS_H

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/description_check.h"
#include "host/analysis/figures/span.h"
#include "host/observation/observation_epoch.h"
#include "host/observation/station_description.h"

namespace orsolva_host {

/// What the observations of a system hold.
struct SystemContents {
  std::set<int> satellites;
  std::uint64_t observations = 0;                ///< satellites summed over epochs
  std::map<std::string, std::uint64_t> signals;  ///< observations with any value, by signal
};

struct ObservationContents {
  std::uint64_t epochs = 0;
  std::uint64_t power_failures = 0;  ///< epochs flagged so
  analysis::SpanFigures span;        ///< without epochs: not filled
  std::map<char, SystemContents> systems;
  std::vector<analysis::Contradiction> contradictions;  ///< of header and file name with the epochs
};

class ObservationTally {
 public:
  /// @param interval_s  that the header states, if any
  explicit ObservationTally(std::optional<double> interval_s) : span_(interval_s.value_or(0)) {}

  void Add(const ObservationEpoch& epoch);
  ObservationContents Contents(const StationDescription& stated) const;

 private:
  ObservationContents contents_;
  analysis::Span span_;
  analysis::DescriptionCheck check_;
  std::optional<std::int64_t> last_ns_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_OBSERVATION_CONTENTS_H
