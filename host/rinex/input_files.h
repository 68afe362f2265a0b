// The files of a run: the contents of folders, and the navigation files next to an observation file.
#ifndef ORSOLVA_RINEX_INPUT_FILES_H
#define ORSOLVA_RINEX_INPUT_FILES_H

#include <string>
#include <string_view>
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

/// Kind of RINEX file that begins with this line.
FileKind KindOfFirstLine(std::string_view line);

/// Kind of a file, from its name if that is a RINEX name, otherwise from its first lines. What cannot be
/// read, or once only, such as a pipe, counts as other.
FileKind KindOfFile(const std::string& path);

/// Sorts the files of the arguments by kind. A folder means the files in it (not those of its subfolders), in
/// the order of their names; two compressions of one file count once. A file named explicitly that is neither
/// observation nor navigation, or does not exist, counts as an observation file, so that reading it reports
/// what is wrong.
InputFiles SortInputs(const std::vector<std::string>& paths);

/// The navigation files meant by the arguments: files as they are, and those in folders.
/// @throws FileError for a folder without a navigation file
std::vector<std::string> NavigationFilesOf(const std::vector<std::string>& paths);

/// Navigation files of one source, such as all those of a station.
using NavigationGroup = std::vector<std::string>;

/// The navigation files in the folder of an observation file by their names, best first: of the days of the
/// data before those of the days next to them, and of these network broadcast files (names beginning with
/// BRD), then those of the station itself, then those of each other station in alphabetical order.
/// @param first, last  of the epochs @return empty when there is none, or the observations come from
/// standard input
std::vector<NavigationGroup> NavigationBeside(const std::string& observation_file, const Time_gbt& first,
                                              const Time_gbt& last);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_INPUT_FILES_H
