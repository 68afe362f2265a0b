// Files that failed for one cause: the cause is said once, then the files.
#ifndef ORSOLVA_REPORT_ERROR_GROUPS_H
#define ORSOLVA_REPORT_ERROR_GROUPS_H

#include <string>
#include <vector>

namespace orsolva_host {

struct FailedFile {
  std::string file;
  std::string error;  ///< as it is said for this file alone
};

struct ErrorGroup {
  std::string cause;
  std::vector<FailedFile> files;
};

/// What an error says without the file's name, and the line in it, where a line of the text begins with them.
std::string CauseOf(const std::string& file, const std::string& error);

/// Groups of equal causes, in the order of their first files.
std::vector<ErrorGroup> GroupedByCause(const std::vector<FailedFile>& files);

/// "3 files: CAUSE" and a line with the name of each; the error as it is when there is one file.
std::string TextOf(const ErrorGroup& group);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_ERROR_GROUPS_H
