// Consecutive observation files of one station judged as one span.
#ifndef ORSOLVA_JUDGING_JOINED_FILES_H
#define ORSOLVA_JUDGING_JOINED_FILES_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/judging/epoch_source.h"
#include "host/judging/run_monitor.h"
#include "host/judging/settings.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// Which files make one span, of those of one station and one interval by their names.
enum class JoinRule {
  kNone,  ///< each file is judged alone
  kDay,   ///< files that begin on one day of GPS time
  kAll,   ///< all files
};

/// The rule called "none", "day" or "all".
JoinRule JoinRuleOf(std::string_view name);

/// The files of a span in the order of their beginnings.
using JoinedFiles = std::vector<std::string>;

/// Spans in the order of their first files among those given. Station, interval and beginning come from RINEX
/// names; of other names the marker and the first epoch of the header count. Standard input and a file that
/// states neither stay alone.
std::vector<JoinedFiles> SpansOf(const std::vector<std::string>& files, JoinRule rule);

/// The epochs of files one after another, in time order. An epoch that is not later than the last one of the
/// files before, as of files that overlap, is skipped with a notice. Header and name are those of the first
/// file; antenna, receiver and marker of a later one that differ are changes. A file that cannot be read, or
/// not to its end, is left at that point: the others are read, and Failure() is the first such error. Notices
/// with one text are counted together, at the first file that has it.
/// @param files  at least one; one alone is read as OpenObservations does
/// @throws FileError when none of them can be opened
std::unique_ptr<EpochSource> OpenJoined(const JoinedFiles& files, const JudgingSettings& settings,
                                        Diagnostics& diagnostics, RunMonitor* monitor = nullptr);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_JOINED_FILES_H
