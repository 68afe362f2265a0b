// Where the real data and the reference cases lie: beside the checkout, or where ORSOLVA_SHARED says.
#ifndef ORSOLVA_TESTS_SUPPORT_SHARED_FOLDER_H
#define ORSOLVA_TESTS_SUPPORT_SHARED_FOLDER_H

#include <cstdlib>
#include <filesystem>

namespace orsolva_test {

/// The shared folder; ORSOLVA_SOURCE_DIR is the project's root, given by the build.
inline std::filesystem::path SharedFolder() {
  if (const char* told = std::getenv("ORSOLVA_SHARED"); told != nullptr && *told != '\0') return told;
  return std::filesystem::path(ORSOLVA_SOURCE_DIR).parent_path() / "shared";
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_SHARED_FOLDER_H
