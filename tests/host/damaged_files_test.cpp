// Readers on damaged files: bytes changed, pieces cut, doubled and moved, ends cut off. What they read does
// not matter; they must end, stay within their bounds (seen by the sanitizers) and fail by FileError alone.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "tests/host/compressed_text.h"
#include "tests/host/shared_data.h"

namespace orsolva_host {
namespace {

using orsolva_test::DataFile;
using orsolva_test::Filtered;
using orsolva_test::HeaderLine;
using orsolva_test::ReadText;
using orsolva_test::Zipped;

constexpr int kMutations = 1500;

std::string Mutated(std::string text, std::mt19937_64& random) {
  const char likely[] = " &>0123456789.-+eDGRECJS\n\r\0\xff";
  const int changes = 1 + static_cast<int>(random() % 8);
  for (int i = 0; i < changes && !text.empty(); ++i) {
    const std::size_t place = random() % text.size();
    const std::size_t length = 1 + random() % 100;
    switch (random() % 6) {
      case 0:
        text[place] = static_cast<char>(random());
        break;
      case 1:
      case 2:
        text[place] = likely[random() % (sizeof likely - 1)];
        break;
      case 3:
        text.erase(place, length);
        break;
      case 4:
        text.insert(place, text.substr(random() % text.size(), length));
        break;
      default:
        if (random() % 8 == 0) text.resize(place);
    }
  }
  return text;
}

void TryMany(const std::string& text, const std::function<void(const std::string&)>& read,
             int mutations = kMutations) {
  ASSERT_FALSE(text.empty());
  std::mt19937_64 random(20260101);
  for (int i = 0; i < mutations; ++i) {
    try {
      read(Mutated(text, random));
    } catch (const FileError& error) {
      ASSERT_FALSE(std::string(error.what()).empty());
    }
  }
}

void ReadObservations(const std::string& text) {
  Diagnostics notices;
  ObservationReader reader(TextBytes(text), "damaged", notices);
  ObsEpoch_QC_gbt epoch;
  std::size_t epochs = 0;
  while (reader.Next(epoch)) {
    ++epochs;
    ASSERT_LE(epoch.sat_num, 80U);
    for (std::uint32_t i = 0; i < epoch.sat_num; ++i) ASSERT_LE(epoch.sats[i].signal_num, 8U);
  }
  ASSERT_LE(epochs, text.size());
}

void ReadNavigation(const std::string& text) {
  Diagnostics notices;
  NavigationReader reader(notices);
  reader.Read(TextBytes(text), "damaged");
  const NavigationSet set = reader.Take();
  for (const GloEph_gbt& e : set.glonass) ASSERT_GE(e.prn, 1);
}

/// The header and the first `size` bytes after it.
std::string Beginning(const std::string& text, std::size_t size) {
  const std::size_t end = text.find("END OF HEADER");
  return text.substr(0, end == std::string::npos ? size : end + size);
}

TEST(DamagedFiles, PlainObservations) {
  const std::string path = DataFile("ACOR00ESP_R_20213550000_01D_30S_MO.rnx");
  ORSOLVA_NEED_FILE(path);
  TryMany(Beginning(ReadText(path), 20000), ReadObservations);
}

TEST(DamagedFiles, CrinexObservations) {
  const std::string path = DataFile("ACOR00ESP_R_20213550000_01D_30S_MO.crx");
  ORSOLVA_NEED_FILE(path);
  TryMany(Beginning(ReadText(path), 12000), ReadObservations);
}

TEST(DamagedFiles, ObservationsOfVersionTwo) {
  for (const char* name : {"zegv0010.21o", "zegv0010.21d"}) {
    const std::string path = DataFile(name);
    ORSOLVA_NEED_FILE(path);
    TryMany(Beginning(ReadText(path), 12000), ReadObservations);
  }
}

TEST(DamagedFiles, Navigation) {
  const std::string path = DataFile("SEPT078M.21P");
  ORSOLVA_NEED_FILE(path);
  TryMany(Beginning(ReadText(path), 10000), ReadNavigation);
}

TEST(DamagedFiles, CompressedNavigationOfVersionFour) {
  const std::string path = DataFile("KMS300DNK_R_20221591000_01H_MN.rnx.gz");
  ORSOLVA_NEED_FILE(path);
  TryMany(ReadText(path).substr(0, 12000), [](const std::string& compressed) {
    Diagnostics notices;
    NavigationReader reader(notices);
    reader.Read(GunzipBytes(TextBytes(compressed), "damaged", notices), "damaged");
    reader.Take();
  });
}

TEST(DamagedFiles, NavigationOfVersionTwo) {
  std::string text = HeaderLine("     2.11           N: GNSS NAV DATA    M", "RINEX VERSION / TYPE") +
                     HeaderLine("", "END OF HEADER");
  for (const char* first : {" 5 20  6 25  2  0  0.0", "G06 20  6 25  2  0  0.0", "R07 2020 06 25 02 00 00"}) {
    text += first;
    for (int i = 0; i < 3; ++i) text += " 0.123456789012D-04";
    for (int line = 0; line < 7; ++line) {
      text += "\n   ";
      for (int i = 0; i < 4; ++i) text += " 0.123456789012D+01";
    }
    text += "\n";
  }
  TryMany(text, ReadNavigation);
}

TEST(DamagedFiles, CompressedByEveryFilter) {
  const std::string path = DataFile("zegv0010.21d");
  ORSOLVA_NEED_FILE(path);
  const std::string text = Beginning(ReadText(path), 4000);
  const auto read = [](const std::string& compressed) {
    Diagnostics notices;
    InputLimits limits;
    limits.max_decompressed_bytes = 1U << 22;
    ObservationReader reader(DecompressedBytes(TextBytes(compressed), "damaged", notices, limits), "damaged",
                             notices);
    ObsEpoch_QC_gbt epoch;
    while (reader.Next(epoch)) {
    }
  };
  for (const auto filter : {archive_write_add_filter_compress, archive_write_add_filter_bzip2,
                            archive_write_add_filter_xz, archive_write_add_filter_zstd}) {
    TryMany(Filtered(filter, text), read, kMutations / 8);
  }
  TryMany(Zipped({{"zegv0010.21d", text}, {"more", text}}), read, kMutations / 8);
}

}  // namespace
}  // namespace orsolva_host
