// An output file that is there whole or not at all.
#ifndef ORSOLVA_REPORT_WHOLE_FILE_H
#define ORSOLVA_REPORT_WHOLE_FILE_H

#include <memory>
#include <string>
#include <string_view>

#include "host/simulate/byte_sink.h"

namespace orsolva_host {

/// Writes beside the target under a hidden name ".part-NAME" and renames at the end. Packed with gzip when
/// the name ends in ".gz". Without Commit nothing stays. A target that is no regular file, such as
/// /dev/stdout, is written straight.
class WholeFile {
 public:
  /// @throws WriteError
  explicit WholeFile(const std::string& path);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  /// @throws WriteError
  void Write(std::string_view text);
  /// @throws WriteError
  void Commit();

 private:
  std::string path_;
  std::string part_;  // the path itself for what cannot be renamed onto
  std::unique_ptr<ByteSink> sink_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_WHOLE_FILE_H
