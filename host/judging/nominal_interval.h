// The nominal interval of a run: as given, else the header's, else that of the data.
#ifndef ORSOLVA_JUDGING_NOMINAL_INTERVAL_H
#define ORSOLVA_JUDGING_NOMINAL_INTERVAL_H

#include <cstddef>
#include <optional>

#include "host/judging/epoch_source.h"
#include "host/judging/settings.h"
#include "host/rinex/diagnostics.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// The most frequent difference between neighbouring epochs (of the first 600), the smallest among equally
/// frequent ones, in whole 0.1 ms; absent with fewer than two distinct times. The library has a rule of its
/// own for data that come without an interval, which this one does not replace.
std::optional<double> MostFrequentInterval(const ObsEpoch_QC_gbt* epochs, std::size_t count);

struct NominalInterval {
  double interval_s = 0;
  const char* source = "";  ///< "option", "header" or "data"
};

/// A header that contradicts the data gives a notice.
/// @throws RunError when nothing says an interval
NominalInterval ChooseInterval(const JudgingSettings& settings, const EpochSource& source,
                               const ObsEpoch_QC_gbt* epochs, std::size_t count, Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_NOMINAL_INTERVAL_H
