// Files that appear together when all of them are written, and not at all when one fails.
#ifndef ORSOLVA_SIMULATE_WHOLE_FILES_H
#define ORSOLVA_SIMULATE_WHOLE_FILES_H

#include <string>
#include <utility>
#include <vector>

namespace orsolva_host {

class WholeFiles {
 public:
  WholeFiles() = default;
  /// Removes what was not published.
  ~WholeFiles();
  WholeFiles(const WholeFiles&) = delete;
  WholeFiles& operator=(const WholeFiles&) = delete;

  /// The name under which a file is to be written: in the same folder, with the same ending.
  std::string Begin(const std::string& path);
  /// Gives every file its own name, in place of a file that stood there. @throws WriteError
  void Publish();

 private:
  std::vector<std::pair<std::string, std::string>> files_;  ///< temporary and own name
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATE_WHOLE_FILES_H
