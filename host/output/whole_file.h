// Output files that are there whole or not at all.
#ifndef ORSOLVA_OUTPUT_WHOLE_FILE_H
#define ORSOLVA_OUTPUT_WHOLE_FILE_H

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/output/byte_sink.h"

namespace orsolva_host {

/// Files that appear together when all of them are written, and not at all when one fails.
///
/// A file is written beside its target under a hidden name ".part-NAME", compressed with gzip when the name
/// ends in ".gz". A target that is no regular file, such as /dev/stdout, is written straight.
class WholeFiles {
 public:
  WholeFiles() = default;
  /// Removes what was not published.
  ~WholeFiles();
  WholeFiles(const WholeFiles&) = delete;
  WholeFiles& operator=(const WholeFiles&) = delete;

  /// Where the bytes of a file go; to be closed before Publish, and gone before this object. @throws
  /// WriteError
  std::unique_ptr<ByteSink> Begin(const std::string& path);
  /// Gives every file its own name, in place of a file that stood there. @throws WriteError
  void Publish();

 private:
  std::vector<std::pair<std::string, std::string>> files_;  ///< hidden and own name
};

/// Removes what is being written, for an end of the program that cannot wait for it. No file can be begun or
/// published afterwards: whoever tries waits for that end.
void RemoveUnfinishedFiles();

/// One such file. Without Commit nothing stays.
class WholeFile {
 public:
  /// @throws WriteError
  explicit WholeFile(const std::string& path) : sink_(files_.Begin(path)) {}

  /// @throws WriteError
  void Write(std::string_view text) { sink_->Write(text.data(), text.size()); }
  /// @throws WriteError
  void Commit();

 private:
  WholeFiles files_;
  std::unique_ptr<ByteSink> sink_;
};

/// Writes a file whole or not at all. @throws WriteError
void WriteWholeFile(const std::string& path, std::string_view text);

}  // namespace orsolva_host

#endif  // ORSOLVA_OUTPUT_WHOLE_FILE_H
