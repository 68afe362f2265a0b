// The navigation files named for a run: read once, whatever the number of observation files they serve.
#ifndef ORSOLVA_JUDGING_SHARED_NAVIGATION_H
#define ORSOLVA_JUDGING_SHARED_NAVIGATION_H

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/navigation_set.h"

namespace orsolva_host {

/// The records of some files, and what their reader said.
struct ReadNavigation {
  std::vector<std::string> files;
  NavigationSet set;
  Diagnostics notices;
  std::optional<FileError> failure;  ///< what ended reading; the set is empty then
};

class SharedNavigation {
 public:
  /// @param named  files, and folders that stand for the navigation files in them
  SharedNavigation(std::vector<std::string> named, const InputLimits& limits)
      : named_(std::move(named)), limits_(limits) {}

  /// Whether none is named.
  bool Empty() const { return named_.empty(); }

  /// Reads the files when asked first; never null. May be called from several threads: what it gives is not
  /// changed any more.
  std::shared_ptr<const ReadNavigation> Get();

 private:
  std::vector<std::string> named_;
  InputLimits limits_;
  std::mutex mutex_;
  std::shared_ptr<const ReadNavigation> read_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_SHARED_NAVIGATION_H
