// The files of a run: the contents of folders, and the navigation files next to an observation file.
#ifndef ORSOLVA_RINEX_INPUT_FILES_H
#define ORSOLVA_RINEX_INPUT_FILES_H

#include <string>
#include <vector>

#include "host/rinex/diagnostics.h"
#include "host/rinex/file_names.h"
#include "orsolva/records.h"

namespace orsolva_host {

struct InputFiles {
  std::vector<std::string> observations;
  std::vector<std::string> navigation;
  std::vector<std::string> others;  ///< regular files that are neither
};

/// Kind of a file, from its name if that is a RINEX name, otherwise from its first lines. An unreadable file
/// counts as other.
FileKind KindOfFile(const std::string& path);

/// Sorts the files of the arguments by kind. A folder means the files in it (not those of its subfolders), in
/// the order of their names; two compressions of one file count once. A file named explicitly that is neither
/// observation nor navigation, or does not exist, counts as an observation file, so that reading it reports
/// what is wrong.
InputFiles SortInputs(const std::vector<std::string>& paths);

/// The navigation files meant by the arguments: files as they are, and those in folders.
/// @throws FileError for a folder without a navigation file
std::vector<std::string> NavigationFilesOf(const std::vector<std::string>& paths);

/// The best navigation files for an observation file among those in its folder: of the day nearest to
/// `first_epoch` (at most one day off), and of that day those of the station itself, otherwise network
/// broadcast files (names beginning with BRD), otherwise those of the first other station in alphabetical
/// order.
/// @return empty when there is none, or the observations come from standard input
std::vector<std::string> NavigationBeside(const std::string& observation_file, const Time_gbt& first_epoch);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_INPUT_FILES_H
