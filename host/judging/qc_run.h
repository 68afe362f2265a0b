// One quality check: files in, the library's exported functions in between, a report out.
#ifndef ORSOLVA_JUDGING_QC_RUN_H
#define ORSOLVA_JUDGING_QC_RUN_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/judging/run_monitor.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "host/report/detail_sink.h"
#include "host/report/report.h"
#include "host/rinex/diagnostics.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// A run that came to no result: what happened and what the user can do.
class RunError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Streams the file through the library in batches of 2,880 epochs; the first batch decides the signals.
/// @param navigation  the files named; with none, those beside the observations are looked for
/// @param detail   told of every epoch while the run goes on; may be null
/// @param monitor  counts and may stop the run; may be null
/// @throws FileError, RunError, Stopped, and what the sink throws
Report RunQc(const QcSettings& settings, SharedNavigation& navigation, Diagnostics& diagnostics,
             DetailSink* detail = nullptr, RunMonitor* monitor = nullptr);

/// The most frequent difference between neighbouring epochs (of the first 600), the smallest among equally
/// frequent ones; absent with fewer than two distinct times.
std::optional<double> DetectInterval(const ObsEpoch_QC_gbt* epochs, std::size_t count);

/// The identification text of the library, and the version in it.
std::string LibraryBanner();
std::string LibraryVersion();

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_QC_RUN_H
