// A CRINEX file and its plain twin must read the same, value for value and mark for mark.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "host/rinex/byte_source.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/observation_header.h"
#include "host/rinex/observation_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_host {
namespace {

using orsolva_test::DataFile;

struct OpenFile {
  Diagnostics notices;
  LineReader lines;
  ObservationHeader header;
  std::unique_ptr<ObservationBody> body;
  EpochBlock epoch;

  explicit OpenFile(const std::string& path) : lines(OpenBytes(path, notices)) {
    HeaderParser(path, notices, header).ReadAll(lines);
    body = BodyOf(header, lines, path, notices);
  }
  bool Next() { return body->Next(header.types, epoch); }
};

void ExpectEqual(const EpochBlock& a, const EpochBlock& b) {
  ASSERT_EQ(a.time.time, b.time.time);
  ASSERT_EQ(a.time.sec, b.time.sec);
  ASSERT_EQ(a.flag, b.flag);
  ASSERT_EQ(a.satellites.size(), b.satellites.size());
  for (std::size_t i = 0; i < a.satellites.size(); ++i) {
    ASSERT_EQ(a.satellites[i].letter, b.satellites[i].letter);
    ASSERT_EQ(a.satellites[i].number, b.satellites[i].number);
    ASSERT_EQ(a.satellites[i].first_cell, b.satellites[i].first_cell);
  }
  ASSERT_EQ(a.cells.size(), b.cells.size());
  for (std::size_t i = 0; i < a.cells.size(); ++i) {
    ASSERT_EQ(a.cells[i].present, b.cells[i].present) << i;
    ASSERT_EQ(a.cells[i].value, b.cells[i].value) << i;
    ASSERT_EQ(a.cells[i].loss_of_lock, b.cells[i].loss_of_lock) << i;
    ASSERT_EQ(a.cells[i].strength, b.cells[i].strength) << i;
  }
}

void ExpectTwins(const std::string& plain_name, const std::string& crinex_name, int epochs, double version) {
  const std::string path = DataFile(plain_name);
  ORSOLVA_NEED_FILE(path);
  OpenFile plain(path);
  OpenFile crinex(DataFile(crinex_name));
  EXPECT_FALSE(plain.header.crinex);
  EXPECT_TRUE(crinex.header.crinex);
  EXPECT_EQ(plain.header.version, version);
  ASSERT_EQ(plain.header.types, crinex.header.types);
  int count = 0;
  std::size_t present = 0;
  while (plain.Next()) {
    ++count;
    ASSERT_TRUE(crinex.Next());
    ExpectEqual(plain.epoch, crinex.epoch);
    if (testing::Test::HasFatalFailure()) FAIL() << "epoch " << count;
    for (const Cell& cell : plain.epoch.cells) present += cell.present ? 1 : 0;
  }
  EXPECT_FALSE(crinex.Next());
  EXPECT_EQ(count, epochs);
  EXPECT_GT(present, 100U * static_cast<std::size_t>(epochs));
  EXPECT_EQ(plain.notices.Total(), 0);
  EXPECT_EQ(crinex.notices.Total(), 0);
}

TEST(CrinexTwins, Version2OfTwentyTwoTypes) { ExpectTwins("AJAC3550.21O", "AJAC3550.21D", 2, 2.11); }

TEST(CrinexTwins, Version2OfManyEpochs) { ExpectTwins("zegv0010.21o", "zegv0010.21d", 19, 2.11); }

TEST(CrinexTwins, Version3OfTwoSystems) { ExpectTwins("pdel0010.21o", "pdel0010.21d", 67, 3.02); }

TEST(CrinexTwins, Version3OfAllSystems) {
  ExpectTwins("ACOR00ESP_R_20213550000_01D_30S_MO.rnx", "ACOR00ESP_R_20213550000_01D_30S_MO.crx", 25, 3.04);
}

TEST(CrinexTwins, GiveTheSameRecords) {
  constexpr const char* twins[][2] = {
      {"AJAC3550.21O", "AJAC3550.21D"},
      {"zegv0010.21o", "zegv0010.21d"},
      {"pdel0010.21o", "pdel0010.21d"},
      {"ACOR00ESP_R_20213550000_01D_30S_MO.rnx", "ACOR00ESP_R_20213550000_01D_30S_MO.crx"}};
  for (const auto& [plain_name, crinex_name] : twins) {
    ORSOLVA_NEED_FILE(DataFile(plain_name));
    Diagnostics notices;
    ObservationReader plain(DataFile(plain_name), notices);
    ObservationReader crinex(DataFile(crinex_name), notices);
    ObsEpoch_QC_gbt a;
    ObsEpoch_QC_gbt b;
    std::memset(&a, 0, sizeof a);
    std::memset(&b, 0, sizeof b);
    while (plain.Next(a)) {
      ASSERT_TRUE(crinex.Next(b)) << plain_name;
      ASSERT_EQ(std::memcmp(&a, &b, sizeof a), 0) << plain_name;
    }
    EXPECT_FALSE(crinex.Next(b)) << plain_name;
  }
}

}  // namespace
}  // namespace orsolva_host
