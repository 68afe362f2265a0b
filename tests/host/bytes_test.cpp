#include <gtest/gtest.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "host/rinex/byte_source.h"
#include "host/rinex/line_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_host {
namespace {

std::string Gzipped(const std::string& text) {
  z_stream stream = {};
  deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
  std::string out(compressBound(text.size()) + 64, '\0');
  std::string in = text;
  stream.next_in = reinterpret_cast<Bytef*>(in.data());
  stream.avail_in = static_cast<uInt>(in.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

std::string All(ByteSource& source) {
  std::string text;
  char buffer[7];
  while (const std::size_t count = source.Read(buffer, sizeof buffer)) text.append(buffer, count);
  return text;
}

std::vector<std::string> Lines(std::string text) {
  LineReader reader(TextBytes(std::move(text)));
  std::vector<std::string> lines;
  std::string_view line;
  while (reader.Next(line)) lines.emplace_back(line);
  return lines;
}

TEST(LineReader, TakesEveryLineEndAndTheLastLineWithoutOne) {
  EXPECT_EQ(Lines("a\nb\r\n\nc"), (std::vector<std::string>{"a", "b", "", "c"}));
  EXPECT_EQ(Lines(""), (std::vector<std::string>{}));
  EXPECT_EQ(Lines("\n"), (std::vector<std::string>{""}));
  EXPECT_EQ(Lines("a\n"), (std::vector<std::string>{"a"}));
}

TEST(LineReader, CountsLinesAndGivesOneAgain) {
  LineReader reader(TextBytes("one\ntwo\n"));
  std::string_view line;
  ASSERT_TRUE(reader.Next(line));
  reader.PushBack();
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(line, "one");
  EXPECT_EQ(reader.Line(), 1);
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(reader.Line(), 2);
  EXPECT_FALSE(reader.Next(line));
}

TEST(LineReader, LinesAcrossBufferEndsStayWhole) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += "line " + std::to_string(i) + "\n";
  const std::vector<std::string> lines = Lines(text);
  ASSERT_EQ(lines.size(), 200000U);
  for (int i = 0; i < 200000; ++i) ASSERT_EQ(lines[i], "line " + std::to_string(i));
}

TEST(LineReader, ALineWithoutEndComesInPieces) {
  const std::vector<std::string> lines = Lines(std::string(3 * LineReader::kLongestLine + 5, 'x'));
  std::size_t total = 0;
  for (const std::string& line : lines) {
    EXPECT_LE(line.size(), LineReader::kLongestLine);
    total += line.size();
  }
  EXPECT_EQ(total, 3 * LineReader::kLongestLine + 5);
}

TEST(Gzip, UnpacksMembersThatFollowEachOther) {
  Diagnostics notices;
  const auto source = GunzipBytes(TextBytes(Gzipped("first ") + Gzipped("second")), "x.gz", notices);
  EXPECT_EQ(All(*source), "first second");
  EXPECT_EQ(notices.Total(), 0);
}

TEST(Gzip, DataThatEndEarlyGiveWhatWasReadAndANotice) {
  Diagnostics notices;
  std::string text;
  for (int i = 0; i < 20000; ++i) text += std::to_string(i * 7919);
  const std::string compressed = Gzipped(text);
  const auto source = GunzipBytes(TextBytes(compressed.substr(0, compressed.size() / 2)), "x.gz", notices);
  const std::string read = All(*source);
  EXPECT_GT(read.size(), 1000U);
  EXPECT_EQ(read, text.substr(0, read.size()));
  ASSERT_EQ(notices.Notices().size(), 1U);
  EXPECT_FALSE(notices.Notices()[0].recovered);
}

TEST(Gzip, DamagedDataEndWithANotice) {
  Diagnostics notices;
  std::string compressed = Gzipped(std::string(10000, 'a') + "b");
  for (std::size_t i = 12; i < compressed.size(); ++i)
    compressed[i] = static_cast<char>(compressed[i] ^ 0x55);
  All(*GunzipBytes(TextBytes(compressed), "x.gz", notices));
  EXPECT_EQ(notices.Total(), 1);
}

TEST(OpenBytes, AMissingFileIsAnErrorThatNamesIt) {
  Diagnostics notices;
  try {
    OpenBytes("/nonexistent/file.rnx", notices);
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), "/nonexistent/file.rnx");
    EXPECT_NE(std::string(error.what()).find("no such file"), std::string::npos);
  }
}

TEST(OpenBytes, GzipIsDetectedFromTheContent) {
  const std::string path = testing::TempDir() + "orsolva_bytes_test_plain_name";
  std::ofstream(path, std::ios::binary) << Gzipped("content");
  Diagnostics notices;
  EXPECT_EQ(All(*OpenBytes(path, notices)), "content");
  std::filesystem::remove(path);
}

TEST(Diagnostics, GroupsEqualNoticesAndKeepsTheFirstPlace) {
  Diagnostics notices;
  notices.Add("f", 3, "odd");
  notices.Add("f", 9, "odd");
  notices.Add("g", 1, "odd");
  ASSERT_EQ(notices.Notices().size(), 2U);
  EXPECT_EQ(notices.Notices()[0].line, 3);
  EXPECT_EQ(notices.Notices()[0].count, 2);
  EXPECT_EQ(notices.Total(), 3);
}

TEST(Diagnostics, KindsBeyondTheBoundAreOnlyCounted) {
  Diagnostics notices;
  for (std::size_t i = 0; i < Diagnostics::kMaxKinds + 5; ++i) notices.Add("f", 1, std::to_string(i));
  EXPECT_EQ(notices.Notices().size(), Diagnostics::kMaxKinds);
  EXPECT_EQ(notices.Uncounted(), 5);
}

}  // namespace
}  // namespace orsolva_host
