// Which files a run reads: those of folders, and the navigation files beside an observation file.
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

/// What a file holds, by its name where that is a RINEX name and else by its first lines. A file that cannot
/// be read counts as other.
FileKind KindOfFile(const std::string& path);

/// Sorts the files of the arguments by what they hold. A folder stands for the files in it (not for those of
/// folders in it), in the order of their names; two compressions of one file count once. A file named on its
/// own that is neither observation nor navigation, or does not exist, counts as an observation file, so that
/// reading it says what is wrong.
InputFiles SortInputs(const std::vector<std::string>& paths);

/// The navigation files that the arguments stand for: files as they are, folders by what they hold.
/// @throws FileError for a folder without a navigation file
std::vector<std::string> NavigationFilesOf(const std::vector<std::string>& paths);

/// The navigation files that fit an observation file best, out of those in its folder: of the day nearest to
/// `first_epoch` (at most one day off), and of that day those of the station itself, else the broadcast files
/// of a network (names beginning with BRD), else those of the first other station in the alphabet.
/// @return empty when there is none, or the observations come from standard input
std::vector<std::string> NavigationBeside(const std::string& observation_file, const Time_gbt& first_epoch);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_INPUT_FILES_H
