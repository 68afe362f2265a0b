// Whole files as text, and tables in the documentation that a test keeps.
#ifndef ORSOLVA_TESTS_SUPPORT_TEXT_FILE_H
#define ORSOLVA_TESTS_SUPPORT_TEXT_FILE_H

#include <fstream>
#include <iterator>
#include <string>

namespace orsolva_test {

/// Every byte of a file; empty when it cannot be read.
inline std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// False when the file cannot be written.
inline bool WriteText(const std::string& path, const std::string& text) {
  return static_cast<bool>(std::ofstream(path, std::ios::binary) << text);
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_TEXT_FILE_H
