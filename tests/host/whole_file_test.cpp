// Output files are there whole or not at all.
#include "host/report/whole_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/host/shared_data.h"

namespace {

namespace fs = std::filesystem;
using orsolva_host::WholeFile;

class Folder : public testing::Test {
 protected:
  Folder() : folder(testing::TempDir() + "orsolva_whole_file") { fs::create_directories(folder); }
  ~Folder() override { fs::remove_all(folder); }

  std::ptrdiff_t Files() const {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  }

  fs::path folder;
};

TEST_F(Folder, NothingStaysWithoutCommit) {
  {
    WholeFile file((folder / "a.csv").string());
    file.Write("half");
  }
  EXPECT_EQ(Files(), 0);
}

TEST_F(Folder, AnUncommittedFileLeavesTheFormerOneAlone) {
  const std::string path = (folder / "a.csv").string();
  for (const bool commit : {true, false}) {
    WholeFile file(path);
    file.Write(commit ? "first" : "second");
    if (commit) file.Commit();
  }
  EXPECT_EQ(orsolva_test::ReadText(path), "first");
  EXPECT_EQ(Files(), 1);
}

TEST_F(Folder, AFileThatCannotBeOpenedIsAnError) {
  EXPECT_THROW(WholeFile((folder / "none" / "a.csv").string()), orsolva_host::WriteError);
}

}  // namespace
