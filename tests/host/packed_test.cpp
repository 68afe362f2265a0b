// Packed files of every kind that archives of observations use.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host/rinex/byte_source.h"
#include "tests/host/packed_text.h"

namespace orsolva_host {
namespace {

using orsolva_test::Filtered;
using orsolva_test::Zipped;

struct Unpacked {
  Diagnostics notices;
  std::string text;

  explicit Unpacked(const std::string& packed, const InputLimits& limits = {}) {
    const auto source = UnpackedBytes(TextBytes(packed), "x", notices, limits);
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

TEST(Packed, EveryFilterIsToldByItsContentAndUnpacked) {
  const std::string text = Numbers();
  for (const auto filter : kFilters) {
    const std::string packed = Filtered(filter, text);
    ASSERT_LT(packed.size(), text.size());
    const Unpacked file(packed);
    EXPECT_EQ(file.text, text);
    EXPECT_EQ(file.notices.Total(), 0);
  }
}

TEST(Packed, OfAZipArchiveTheFirstFileIsReadAndFurtherOnesAreNamed) {
  const Unpacked one(Zipped({{"folder/", ""}, {"folder/a.21o", Numbers()}}));
  EXPECT_EQ(one.text, Numbers());
  EXPECT_EQ(one.notices.Total(), 0);
  const Unpacked two(Zipped({{"a.21o", "first"}, {"b.21n", "second"}}));
  EXPECT_EQ(two.text, "first");
  ASSERT_EQ(two.notices.Notices().size(), 1U);
  EXPECT_NE(two.notices.Notices()[0].text.find("several files"), std::string::npos);
}

TEST(Packed, APackedFileInAnArchiveIsUnpackedToo) {
  const std::string inner = Filtered(archive_write_add_filter_compress, Numbers());
  EXPECT_EQ(Unpacked(Zipped({{"a.21d.Z", inner}})).text, Numbers());
}

TEST(Packed, DataThatEndEarlyGiveWhatWasReadAndANotice) {
  const std::string text = Numbers();
  for (const auto filter : kFilters) {
    const std::string packed = Filtered(filter, text);
    const Unpacked file(packed.substr(0, packed.size() / 2));
    EXPECT_EQ(file.text, text.substr(0, file.text.size()));
    // A stream packed by compress has no end mark.
    if (filter != archive_write_add_filter_compress) {
      EXPECT_GE(file.notices.Total(), 1);
    }
  }
}

TEST(Packed, DamagedDataEndWithANotice) {
  for (const auto filter : kFilters) {
    std::string packed = Filtered(filter, Numbers());
    for (std::size_t i = packed.size() / 2; i < packed.size(); ++i) {
      packed[i] = static_cast<char>(packed[i] ^ 0x55);
    }
    const Unpacked file(packed);
    EXPECT_NE(file.text, Numbers());
  }
  EXPECT_EQ(Unpacked(std::string("PK\x03\x04 and nothing more")).notices.Total(), 1);
}

TEST(Packed, MoreThanTheLimitIsRefusedAndTheLimitItselfIsNot) {
  const std::string text(1000000, 'x');
  InputLimits limits;
  limits.most_unpacked_bytes = text.size();
  for (const auto filter : kFilters) EXPECT_EQ(Unpacked(Filtered(filter, text), limits).text, text);
  limits.most_unpacked_bytes = text.size() - 1;
  for (const auto filter : kFilters) {
    try {
      const Unpacked file(Filtered(filter, text), limits);
      FAIL();
    } catch (const FileError& error) {
      EXPECT_EQ(error.Found(), "more than 999999 bytes when unpacked");
      EXPECT_NE(error.Advice().find("--max-size"), std::string::npos);
    }
  }
}

TEST(Packed, AnInnerPackingIsHeldToTheLimitToo) {
  const std::string bomb = Filtered(archive_write_add_filter_gzip, std::string(5000000, '\0'));
  InputLimits limits;
  limits.most_unpacked_bytes = 1000000;
  EXPECT_THROW(Unpacked(Zipped({{"a.gz", bomb}}), limits), FileError);
}

TEST(Packed, PlainDataMayHaveAnySize) {
  InputLimits limits;
  limits.most_unpacked_bytes = 10;
  EXPECT_EQ(Unpacked(Numbers(), limits).text, Numbers());
}

}  // namespace
}  // namespace orsolva_host
