// Files beside the checkout that tests read in place, and small helpers for inline files.
#ifndef ORSOLVA_TESTS_HOST_SHARED_DATA_H
#define ORSOLVA_TESTS_HOST_SHARED_DATA_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace orsolva_test {

/// The folder of shared data: the environment's ORSOLVA_SHARED, or the one beside the checkout.
inline std::string SharedFolder() {
  const char* named = std::getenv("ORSOLVA_SHARED");
  return named ? named : ORSOLVA_SHARED_DEFAULT;
}

inline std::string DataFile(const std::string& name) { return SharedFolder() + "/data/" + name; }

inline std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// A header line: content padded to column 60, then the label.
inline std::string HeaderLine(std::string content, const std::string& label) {
  content.resize(60, ' ');
  return content + label + "\n";
}

}  // namespace orsolva_test

#define ORSOLVA_NEED_FILE(path) \
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "no file " << (path)

#endif  // ORSOLVA_TESTS_HOST_SHARED_DATA_H
