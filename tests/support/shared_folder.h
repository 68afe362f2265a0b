// The folder of the real data and the reference cases: next to the checkout, or where ORSOLVA_SHARED points.
#ifndef ORSOLVA_TESTS_SUPPORT_SHARED_FOLDER_H
#define ORSOLVA_TESTS_SUPPORT_SHARED_FOLDER_H

#include <cstdlib>
#include <filesystem>

namespace orsolva_test {

/// The shared folder; ORSOLVA_SOURCE_DIR is the project's root, given by the build.
inline std::filesystem::path SharedFolder() {
  if (const char* path = std::getenv("ORSOLVA_SHARED"); path != nullptr && *path != '\0') return path;
  return std::filesystem::path(ORSOLVA_SOURCE_DIR).parent_path() / "shared";
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_SHARED_FOLDER_H
