// Output files are written atomically.
#include "host/output/whole_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "tests/host/folder.h"
#include "tests/host/shared_data.h"

namespace {

using orsolva_host::WholeFile;
using orsolva_host::WholeFiles;
using orsolva_test::Folder;
using orsolva_test::ReadText;
using Names = std::set<std::string>;

TEST(WholeFile, StaysNotWithoutCommit) {
  const Folder folder;
  {
    WholeFile file(folder / "a.csv");
    file.Write("half");
    EXPECT_EQ(folder.Names(), Names{".part-a.csv"});
  }
  EXPECT_TRUE(folder.Names().empty());
}

TEST(WholeFile, UncommittedLeavesTheFormerOneAlone) {
  const Folder folder;
  const std::string path = folder / "a.csv";
  for (const bool commit : {true, false}) {
    WholeFile file(path);
    file.Write(commit ? "first" : "second");
    if (commit) file.Commit();
  }
  EXPECT_EQ(ReadText(path), "first");
  EXPECT_EQ(folder.Names(), Names{"a.csv"});
}

TEST(WholeFile, ThatCannotBeOpenedIsAnError) {
  const Folder folder;
  EXPECT_THROW(WholeFile(folder / "none/a.csv"), orsolva_host::WriteError);
}

TEST(WholeFile, IsWrittenStraightToWhatIsNoRegularFile) {
  WholeFile file("/dev/null");
  file.Write("gone");
  file.Commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(WholeFiles, AppearTogether) {
  const Folder folder;
  WholeFiles files;
  for (const char* name : {"a", "b"}) {
    const auto sink = files.Begin(folder / name);
    sink->Write(name, 1);
    sink->Close();
  }
  EXPECT_EQ(folder.Names(), (Names{".part-a", ".part-b"}));
  files.Publish();
  EXPECT_EQ(folder.Names(), (Names{"a", "b"}));
  EXPECT_EQ(ReadText(folder / "b"), "b");
}

TEST(WholeFiles, LeaveNothingWhenOneFails) {
  const Folder folder;
  {
    WholeFiles files;
    files.Begin(folder / "a")->Close();
    EXPECT_THROW(files.Begin(folder / "none/b"), orsolva_host::WriteError);
  }
  EXPECT_TRUE(folder.Names().empty());
}

}  // namespace
