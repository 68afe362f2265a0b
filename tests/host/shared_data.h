// Files next to the checkout that tests read in place, and small helpers for inline files.
#ifndef ORSOLVA_TESTS_HOST_SHARED_DATA_H
#define ORSOLVA_TESTS_HOST_SHARED_DATA_H

#include <filesystem>
#include <string>

#include "tests/support/shared_folder.h"
#include "tests/support/text_file.h"

namespace orsolva_test {

inline std::string DataFile(const std::string& name) { return (SharedFolder() / "data" / name).string(); }

/// A header line: content padded to column 60, then the label.
inline std::string HeaderLine(std::string content, const std::string& label) {
  content.resize(60, ' ');
  return content + label + "\n";
}

}  // namespace orsolva_test

#define ORSOLVA_NEED_FILE(path) \
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "no file " << (path)

#endif  // ORSOLVA_TESTS_HOST_SHARED_DATA_H
