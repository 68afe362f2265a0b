// Compressed files of every kind that archives of observations use.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host/rinex/byte_source.h"
#include "tests/host/compressed_text.h"

namespace orsolva_host {
namespace {

using orsolva_test::Filtered;
using orsolva_test::Zipped;

struct Decompressed {
  Diagnostics notices;
  std::string text;

  explicit Decompressed(const std::string& compressed, const InputLimits& limits = {}, bool ahead = false) {
    const auto source = DecompressedBytes(TextBytes(compressed), "x", notices, limits, ahead);
    char buffer[1000];
    for (std::size_t n = 0; (n = source->Read(buffer, sizeof buffer)) > 0;) text.append(buffer, n);
  }
};

std::string Numbers() {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += std::to_string(i * 7919) + "\n";
  return text;
}

const orsolva_test::AddFilter kFilters[] = {archive_write_add_filter_compress, archive_write_add_filter_gzip,
                                            archive_write_add_filter_bzip2, archive_write_add_filter_xz,
                                            archive_write_add_filter_zstd};

TEST(Compressed, EveryFilterIsDetectedFromTheContentAndDecompressed) {
  const std::string text = Numbers();
  for (const auto filter : kFilters) {
    const std::string compressed = Filtered(filter, text);
    ASSERT_LT(compressed.size(), text.size());
    const Decompressed file(compressed);
    EXPECT_EQ(file.text, text);
    EXPECT_EQ(file.notices.Total(), 0);
  }
}

TEST(Compressed, DecompressedAheadGivesTheSameBytesAndErrors) {
  const std::string text = Numbers() + Numbers() + Numbers() + Numbers();
  const std::string compressed = Filtered(archive_write_add_filter_gzip, text);
  EXPECT_EQ(Decompressed(compressed, {}, true).text, text);
  EXPECT_EQ(Decompressed(text, {}, true).text, text);
  const std::string half = compressed.substr(0, compressed.size() / 2);
  const Decompressed here(half), ahead(half, {}, true);
  EXPECT_EQ(ahead.text, here.text);
  ASSERT_TRUE(ahead.notices.Incomplete());
  EXPECT_STREQ(ahead.notices.Incomplete()->what(), here.notices.Incomplete()->what());
  InputLimits limits;
  limits.max_decompressed_bytes = text.size() - 1;
  EXPECT_THROW(Decompressed(compressed, limits, true), FileError);
}

TEST(Compressed, AReaderMayLeaveBeforeWhatIsDecompressedAheadIsRead) {
  const std::string compressed = Filtered(archive_write_add_filter_gzip, Numbers() + Numbers() + Numbers());
  Diagnostics notices;
  const auto source = DecompressedAhead(TextBytes(compressed), "x", notices);
  char first = 0;
  EXPECT_EQ(source->Read(&first, 1), 1U);
  EXPECT_EQ(first, '0');
}

TEST(Compressed, OfAZipArchiveTheFirstFileIsReadAndFurtherOnesAreNamed) {
  const Decompressed one(Zipped({{"folder/", ""}, {"folder/a.21o", Numbers()}}));
  EXPECT_EQ(one.text, Numbers());
  EXPECT_EQ(one.notices.Total(), 0);
  const Decompressed two(Zipped({{"a.21o", "first"}, {"b.21n", "second"}}));
  EXPECT_EQ(two.text, "first");
  ASSERT_EQ(two.notices.Notices().size(), 1U);
  EXPECT_NE(two.notices.Notices()[0].text.find("several files"), std::string::npos);
}

TEST(Compressed, ACompressedFileInAnArchiveIsDecompressedToo) {
  const std::string inner = Filtered(archive_write_add_filter_compress, Numbers());
  EXPECT_EQ(Decompressed(Zipped({{"a.21d.Z", inner}})).text, Numbers());
}

TEST(Compressed, DataThatEndEarlyGiveWhatWasReadAndANotice) {
  const std::string text = Numbers();
  for (const auto filter : kFilters) {
    const std::string compressed = Filtered(filter, text);
    const Decompressed file(compressed.substr(0, compressed.size() / 2));
    EXPECT_EQ(file.text, text.substr(0, file.text.size()));
    // A stream compressed by compress has no end mark.
    if (filter != archive_write_add_filter_compress) {
      EXPECT_GE(file.notices.Total(), 1);
    }
  }
}

TEST(Compressed, DamagedDataEndWithANotice) {
  for (const auto filter : kFilters) {
    std::string compressed = Filtered(filter, Numbers());
    for (std::size_t i = compressed.size() / 2; i < compressed.size(); ++i) {
      compressed[i] = static_cast<char>(compressed[i] ^ 0x55);
    }
    const Decompressed file(compressed);
    EXPECT_NE(file.text, Numbers());
  }
  EXPECT_EQ(Decompressed(std::string("PK\x03\x04 and nothing more")).notices.Total(), 1);
}

TEST(Compressed, MoreThanTheLimitIsRefusedAndTheLimitItselfIsNot) {
  const std::string text(1000000, 'x');
  InputLimits limits;
  limits.max_decompressed_bytes = text.size();
  for (const auto filter : kFilters) EXPECT_EQ(Decompressed(Filtered(filter, text), limits).text, text);
  limits.max_decompressed_bytes = text.size() - 1;
  for (const auto filter : kFilters) {
    try {
      const Decompressed file(Filtered(filter, text), limits);
      FAIL();
    } catch (const FileError& error) {
      EXPECT_EQ(error.Found(), "more than 999999 bytes when decompressed");
      EXPECT_NE(error.Advice().find("--max-size"), std::string::npos);
    }
  }
}

TEST(Compressed, AnInnerCompressionIsHeldToTheLimitToo) {
  const std::string bomb = Filtered(archive_write_add_filter_gzip, std::string(5000000, '\0'));
  InputLimits limits;
  limits.max_decompressed_bytes = 1000000;
  EXPECT_THROW(Decompressed(Zipped({{"a.gz", bomb}}), limits), FileError);
}

TEST(Compressed, PlainDataMayHaveAnySize) {
  InputLimits limits;
  limits.max_decompressed_bytes = 10;
  EXPECT_EQ(Decompressed(Numbers(), limits).text, Numbers());
}

}  // namespace
}  // namespace orsolva_host
