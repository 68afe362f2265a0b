// Navigation files of a run: those named are read once, whatever the number of observation files they serve;
// those found next to an observation file are read for it alone.
#ifndef ORSOLVA_JUDGING_SHARED_NAVIGATION_H
#define ORSOLVA_JUDGING_SHARED_NAVIGATION_H

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/observation/broadcast_records.h"
#include "host/observation/precise_orbits.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/navigation_set.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// The records and precise orbits of some files, with the notices of their readers.
struct ReadNavigation {
  std::vector<std::string> files;
  bool has_record_files = false;  ///< not only files of precise orbits
  NavigationSet set;              ///< for the library
  BroadcastRecords broadcast;     ///< the same and those of systems that the library does not know
  std::shared_ptr<const PreciseOrbits> precise;  ///< null without a file of them
  Diagnostics notices;
  std::optional<FileError> failure;  ///< what ended reading; the set is empty then
};

/// The named records, and those of `own` for satellites of which none is named.
std::shared_ptr<const ReadNavigation> Joined(const ReadNavigation& named, const ReadNavigation& own);

/// What navigation is looked for.
struct NavigationWanted {
  std::string beside;  ///< the observation file
  Time_gbt first = {}, last = {};
  std::string systems;   ///< letters of those that may be observed: their records are looked for
  std::string observed;  ///< those of them in the first epoch: a notice says when they have no records
};

/// Reads the navigation files next to an observation file, with a notice for each. Of every system the
/// records of the best source that has any are used: a source is a network's broadcast files of the day, the
/// files of the station, or those of one other station, and sources are read until each system has records. A
/// file that cannot be read is passed over with a notice.
/// @return without files when there are none
std::shared_ptr<const ReadNavigation> ReadNavigationBeside(const NavigationWanted& wanted,
                                                           const InputLimits& limits);

class SharedNavigation {
 public:
  /// @param named  files of records, also RTCM 3 streams, or precise orbits (SP3), and folders that stand for
  /// the navigation files in them
  SharedNavigation(std::vector<std::string> named, const InputLimits& limits)
      : named_(std::move(named)), limits_(limits) {}
  /// Of records that are there already; none are looked for.
  explicit SharedNavigation(std::shared_ptr<const ReadNavigation> read)
      : read_(std::move(read)), given_(true) {}

  /// Whether none is named or given.
  bool Empty() const { return named_.empty() && !given_; }

  /// Reads the files at the first call; never null. May be called from several threads: what it returns does
  /// not change any more.
  std::shared_ptr<const ReadNavigation> Get();

 private:
  std::vector<std::string> named_;
  InputLimits limits_;
  std::mutex mutex_;
  std::shared_ptr<const ReadNavigation> read_;
  bool given_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_SHARED_NAVIGATION_H
