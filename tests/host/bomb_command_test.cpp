// Compressed files that expand to far more than they seem to hold, given to the built program.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/host/compressed_text.h"
#include "tests/host/folder.h"
#include "tests/host/program.h"

namespace {

using orsolva_test::Answer;
using orsolva_test::DataFile;
using orsolva_test::Filtered;
using orsolva_test::Folder;
using orsolva_test::Orsolva;
using orsolva_test::ReadText;
using orsolva_test::Zipped;

constexpr std::size_t kBlown = 6U << 20;

/// Enough epochs of the file to compute a position from.
std::string Observations() {
  const std::string text = ReadText(DataFile("SEPT078M.21O"));
  return text.substr(0, text.find("\n> ", 800000) + 1);
}

std::string Navigation() { return ReadText(DataFile("SEPT078M.21P")); }

/// A text and empty lines after it.
std::string Blown(const std::string& text) { return text + std::string(kBlown, '\n'); }

std::string Compressed(const std::string& compression, const std::string& text) {
  if (compression == "zip") return Zipped({{"SEPT078M.21O", text}});
  return Filtered(compression == "gzip"       ? archive_write_add_filter_gzip
                  : compression == "compress" ? archive_write_add_filter_compress
                  : compression == "bzip2"    ? archive_write_add_filter_bzip2
                  : compression == "xz"       ? archive_write_add_filter_xz
                                              : archive_write_add_filter_zstd,
                  text);
}

class Bomb : public testing::TestWithParam<const char*> {};

TEST_P(Bomb, IsRefusedAtTheLimitAndReadWhenTheFlagRaisesIt) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Folder folder;
  const std::string file = folder / "SEPT078M.21O";
  std::ofstream(file, std::ios::binary) << Compressed(GetParam(), Blown(Observations()));
  const std::string run = "qc --no-config --sum " + file + " " + DataFile("SEPT078M.21P");
  const Answer refused = Orsolva(run + " --max-size 5M");
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find("more than 5242880 bytes when decompressed"), std::string::npos) << refused.err;
  EXPECT_NE(refused.err.find("--max-size"), std::string::npos) << refused.err;
  const Answer taken = Orsolva(run + " --max-size 12M");
  EXPECT_EQ(taken.code, 0) << taken.err;
  EXPECT_EQ(Orsolva("inspect --max-size 5M " + file).code, 1);
  EXPECT_EQ(Orsolva("inspect --max-size 12M " + file).code, 0);
}

TEST_P(Bomb, OfNavigationIsRefusedToo) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Folder folder;
  const std::string file = folder / "SEPT078M.21P";
  std::ofstream(file, std::ios::binary) << Compressed(GetParam(), Blown(Navigation()));
  std::ofstream(folder / "SEPT078M.21O", std::ios::binary) << Observations();
  const std::string run = "qc --no-config --sum " + (folder / "SEPT078M.21O") + " --nav " + file;
  const Answer refused = Orsolva(run + " --max-size 5M");
  EXPECT_EQ(refused.code, 1);
  EXPECT_NE(refused.err.find(file + ": found more than 5242880 bytes"), std::string::npos) << refused.err;
  EXPECT_EQ(Orsolva(run + " --max-size 12M").code, 0);
}

INSTANTIATE_TEST_SUITE_P(Compression, Bomb, testing::Values("gzip", "compress", "bzip2", "xz", "zstd", "zip"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
