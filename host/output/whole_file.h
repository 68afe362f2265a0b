// Output files that are written atomically.
#ifndef ORSOLVA_OUTPUT_WHOLE_FILE_H
#define ORSOLVA_OUTPUT_WHOLE_FILE_H

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/output/byte_sink.h"

namespace orsolva_host {

/// A set of files that appear together when all are written, or not at all when one fails.
///
/// A file is written next to its target under a hidden name ".part-NAME", compressed with gzip when the name
/// ends in ".gz". A target that is not a regular file, such as /dev/stdout, is written directly.
class WholeFiles {
 public:
  WholeFiles() = default;
  /// Removes what was not published.
  ~WholeFiles();
  WholeFiles(const WholeFiles&) = delete;
  WholeFiles& operator=(const WholeFiles&) = delete;

  /// Begins a file; its sink must be closed before Publish and destroyed before this object. @throws
  /// WriteError
  std::unique_ptr<ByteSink> Begin(const std::string& path);
  /// Renames every file to its target, replacing any existing file. @throws WriteError
  void Publish();
  /// The same, so that after a power failure every file is there whole or as it was before. It takes
  /// milliseconds, or as long as the disk does. @throws WriteError
  void PublishToDisk();

 private:
  std::vector<std::pair<std::string, std::string>> files_;  ///< hidden name and target
};

/// Removes the files being written, for an immediate exit of the program. No file can be begun or published
/// afterwards: whoever tries waits for that exit.
void RemoveUnfinishedFiles();

/// One such file. Without Commit nothing remains.
class WholeFile {
 public:
  /// @throws WriteError
  explicit WholeFile(const std::string& path) : sink_(files_.Begin(path)) {}

  /// @throws WriteError
  void Write(std::string_view text) { sink_->Write(text.data(), text.size()); }
  /// @throws WriteError
  void Commit();
  /// As WholeFiles::PublishToDisk. @throws WriteError
  void CommitToDisk();

 private:
  WholeFiles files_;
  std::unique_ptr<ByteSink> sink_;
};

/// Writes a file atomically. @throws WriteError
void WriteWholeFile(const std::string& path, std::string_view text);

}  // namespace orsolva_host

#endif  // ORSOLVA_OUTPUT_WHOLE_FILE_H
