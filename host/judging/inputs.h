// Which observation files a run judges, and which navigation files go with them.
#ifndef ORSOLVA_JUDGING_INPUTS_H
#define ORSOLVA_JUDGING_INPUTS_H

#include <string>
#include <vector>

#include "host/judging/joined_files.h"

namespace orsolva_host {

struct RunInputs {
  std::vector<std::string> observations;
  /// The files that each of them is joined from, itself the first; empty: each stands for itself.
  std::vector<JoinedFiles> joined;
  /// For every observation file; empty: those next to it are looked for.
  std::vector<std::string> navigation;
};

/// Joins observation files to spans, each of which is called by its first file.
void JoinObservations(JoinRule rule, RunInputs& inputs);

/// Sorts paths into observations (RINEX, recordings of streams) and navigation (also precise orbits) by what
/// the files hold, in any order. A stream is navigation when it begins with ephemerides and has no
/// observations in its first 64 KB.
///
/// Patterns with * ? [ that name no file themselves are replaced by the files they match. A folder is
/// replaced by the observation files in it; by its navigation files when it holds no observations, or follows
/// a named observation file. A name that does not exist counts as an observation file when it looks like one
/// or is the first, else as a navigation file.
/// @param navigation  further navigation files and folders
RunInputs InputsOf(const std::vector<std::string>& paths, const std::vector<std::string>& navigation);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_INPUTS_H
