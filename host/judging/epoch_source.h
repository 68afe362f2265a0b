// Where the epochs of a run come from. Files in RINEX are one kind of source; other formats and live streams
// are further ones, which judging takes without a change.
#ifndef ORSOLVA_JUDGING_EPOCH_SOURCE_H
#define ORSOLVA_JUDGING_EPOCH_SOURCE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/judging/run_monitor.h"
#include "host/judging/settings.h"
#include "host/judging/shared_navigation.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"
#include "host/observation/station_description.h"
#include "host/report/stream_facts.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/observation_header.h"
#include "orsolva/records.h"

namespace orsolva_host {

class EpochSource {
 public:
  virtual ~EpochSource() = default;
  /// What messages and the report call the data; navigation files are looked for next to it.
  virtual const std::string& Name() const = 0;
  /// Marker, receiver, antenna, position and interval, as far as they are known before the first epoch.
  virtual const ObservationHeader& Header() const = 0;
  /// Fills the next epoch twice: as the library's record, which has its limits, and with everything that is
  /// there. @return false at the end of the data
  /// @throws FileError when nothing can be read before the first epoch
  virtual bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) = 0;
  /// Why the data ended early; absent when they did not.
  virtual const std::optional<FileError>& Failure() const = 0;
  /// What header lines among the epochs so far changed.
  virtual std::vector<DescriptionChange> Changes() const { return {}; }
  /// After the end, where there was no epoch: why, as a sentence after the name.
  virtual std::string NothingFound() const { return "found no epoch. Check that the file is complete."; }
  /// What header and name state, to be compared with the data; without changes.
  virtual StationDescription Described() const;

  /// Broadcast records that the data themselves hold, known before the first epoch; null when they hold none.
  virtual std::shared_ptr<const ReadNavigation> Navigation() const { return nullptr; }
  /// Records that have come since the last call, for a source whose navigation arrives with its data: they
  /// count from the epoch on that Next gave last.
  virtual std::vector<std::shared_ptr<const ReadNavigation>> NewNavigation() { return {}; }
  /// Is given the records of navigation files before the first epoch that needs them: some formats give
  /// GLONASS phases only to those who know the channels.
  virtual void TakeChannels(const BroadcastRecords& /*records*/) {}
  /// All files of a span that is read from several, in order; empty otherwise.
  virtual std::vector<std::string> FilesOfSpan() const { return {}; }
  /// What a stream was made of, so far; absent for files of another kind.
  virtual std::optional<StreamFacts> Stream() const { return std::nullopt; }
};

/// A RINEX observation file or a recording of a stream, compressed or not, as the content shows; "-" is
/// standard input. What cannot be read twice, such as a pipe, is copied to a temporary file where it
/// is a stream.
/// @param monitor  one that counts bytes is given those of a regular file as they are read; may be null
/// @throws FileError
std::unique_ptr<EpochSource> OpenObservations(const std::string& path, const JudgingSettings& settings,
                                              Diagnostics& diagnostics, RunMonitor* monitor = nullptr);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_EPOCH_SOURCE_H
