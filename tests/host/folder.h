// A folder of its own for a test.
#ifndef ORSOLVA_TESTS_HOST_FOLDER_H
#define ORSOLVA_TESTS_HOST_FOLDER_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

namespace orsolva_test {

/// What a test puts into the temporary folder: no other test, and no other run of it, has this name.
inline std::string TemporaryName(const std::string& what) {
  std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
  std::replace(test.begin(), test.end(), '/', '_');  // of a test with a parameter
  return testing::TempDir() + "orsolva_" + what + "_" + test + "_" + std::to_string(getpid());
}

/// An empty folder that goes with the test.
class Folder {
 public:
  Folder() : path_(TemporaryName("folder") + "_" + Next()) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }
  const std::string& Path() const { return path_; }
  std::set<std::string> Names() const { return NamesIn(path_); }
  static std::set<std::string> NamesIn(const std::string& path) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path))
      names.insert(entry.path().filename().string());
    return names;
  }

 private:
  /// A test may have several.
  static std::string Next() {
    static int count = 0;
    return std::to_string(++count);
  }

  std::string path_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_FOLDER_H
