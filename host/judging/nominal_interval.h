// The nominal interval of a run: as given, else the header's unless the data contradict it, else that of the
// data.
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

/// The interval of the data replaces the header's, with a notice, when both differ by more than 1 % and at
/// least half of ten or more steps (of the first 599) keep to that of the data: files are thinned out without
/// a change of their header. Fewer steps, or scattered ones as with gaps, leave the header its say.
/// @throws RunError when nothing says an interval
NominalInterval ChooseInterval(const JudgingSettings& settings, const EpochSource& source,
                               const ObsEpoch_QC_gbt* epochs, std::size_t count, Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_NOMINAL_INTERVAL_H
