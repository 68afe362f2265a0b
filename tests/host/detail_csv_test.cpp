// The detail table's rows, from reports as the library makes them.
#include "host/report/detail_csv.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace {

using orsolva_host::DetailCsv;

constexpr std::int64_t kStart = 1593043200;  // 2020-06-25 00:00:00
constexpr double kRadiansPerDegree = 0.017453292519943295;

std::uint32_t Code(const char* name) {
  return static_cast<std::uint32_t>(orsolva_host::SignalNumber(orsolva_host::kGps, name, 3.04));
}

class Table : public testing::Test {
 protected:
  Table() : csv([this](std::string_view piece) { text += piece; }) { csv.Begin(At(0), 30); }

  static Time_gbt At(int epoch) { return {kStart + 30 * epoch, 0.0}; }

  void Satellite(int epoch, int prn, const std::vector<const char*>& codes) {
    std::vector<Signal_QC_gbt> signals;
    for (const char* code : codes) {
      Signal_QC_gbt signal = {};
      signal.code = static_cast<std::uint8_t>(Code(code));
      signal.snr = 45.25F;
      signals.push_back(signal);
    }
    orsolva::SatelliteEpochDetail detail;
    detail.number = prn;
    detail.satellite = {orsolva_host::kGps, prn};
    detail.time = At(epoch);
    detail.elevation_rad = 30 * kRadiansPerDegree;
    detail.azimuth_rad = 120 * kRadiansPerDegree;
    detail.above_cutoff = true;
    detail.signals = signals.data();
    detail.signal_count = static_cast<int>(signals.size());
    csv.OnSatelliteEpoch(detail);
  }

  static orsolva::PairEpochDetail Pair(int epoch, int prn, const char* code, const char* partner) {
    orsolva::PairEpochDetail detail;
    detail.number = prn;
    detail.satellite = {orsolva_host::kGps, prn};
    detail.time = At(epoch);
    detail.code = Code(code);
    detail.partner = Code(partner);
    detail.has_multipath = true;
    detail.residual_m = 0.25;
    return detail;
  }

  std::vector<std::string> Rows() const {
    std::vector<std::string> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) rows.push_back(line);
    return rows;
  }

  std::string text;
  DetailCsv csv;
};

TEST_F(Table, RowsComeByEpochThenSatelliteThenSignal) {
  for (int prn : {5, 7}) {
    for (int epoch : {0, 1}) Satellite(epoch, prn, {"1C", "2W"});
  }
  for (int epoch : {0, 1}) {
    for (int prn : {5, 7}) csv.OnPairEpoch(Pair(epoch, prn, "1C", "2W"));
  }
  csv.EndBatch();
  const std::vector<std::string> rows = Rows();
  ASSERT_EQ(rows.size(), 9U);
  EXPECT_EQ(rows[0], orsolva_host::kDetailCsvHeader);
  EXPECT_EQ(rows[1], "2020-06-25 00:00:00.000,G05,1C,30.000,120.000,1,45.250,2W,0.2500,,,,,,,");
  EXPECT_EQ(rows[2], "2020-06-25 00:00:00.000,G05,2W,30.000,120.000,1,45.250,,,,,,,,,");
  EXPECT_EQ(rows[3].substr(0, 30), "2020-06-25 00:00:00.000,G07,1C");
  EXPECT_EQ(rows[5].substr(0, 30), "2020-06-25 00:00:30.000,G05,1C");
}

TEST_F(Table, EveryRowHasAsManyFieldsAsTheHeader) {
  Satellite(0, 5, {"1C", "2W"});
  Satellite(1, 5, {"1C"});
  auto pair = Pair(0, 5, "1C", "2W");
  pair.has_geometry_free_step = true;
  pair.geometry_threshold_m = 0.15;
  csv.OnPairEpoch(pair);
  csv.EndBatch();
  for (const std::string& row : Rows()) EXPECT_EQ(std::count(row.begin(), row.end(), ','), 15) << row;
}

TEST_F(Table, ASignalWithTwoPartnersHasTwoRows) {
  Satellite(0, 5, {"1C"});
  Satellite(1, 5, {"1C"});
  csv.OnPairEpoch(Pair(0, 5, "1C", "2W"));
  csv.OnPairEpoch(Pair(0, 5, "1C", "2L"));
  csv.EndBatch();
  const std::vector<std::string> rows = Rows();
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_NE(rows[1].find(",2L,"), std::string::npos);
  EXPECT_NE(rows[2].find(",2W,"), std::string::npos);
}

TEST_F(Table, RestartsAndSlipsSayWhy) {
  using orsolva::GeometrySlipReason;
  using orsolva::IonosphereSlipReason;
  using orsolva::RestartReason;
  for (int epoch = 0; epoch < 4; ++epoch) Satellite(epoch, 5, {"1C"});
  auto pair = Pair(0, 5, "1C", "2W");
  pair.restart = RestartReason::kFirstValue;
  pair.geometry_slip = GeometrySlipReason::kDataGap;
  csv.OnPairEpoch(pair);
  pair = Pair(1, 5, "1C", "2W");
  pair.restart = RestartReason::kIonosphereSlip;
  pair.ionosphere_slip = IonosphereSlipReason::kRate;
  pair.geometry_slip = GeometrySlipReason::kThreshold;
  csv.OnPairEpoch(pair);
  pair = Pair(2, 5, "1C", "2W");
  pair.restart = RestartReason::kJump;
  pair.geometry_slip = GeometrySlipReason::kNewEphemeris;
  csv.OnPairEpoch(pair);
  pair = Pair(3, 5, "1C", "2W");
  pair.restart = RestartReason::kGap;
  pair.ionosphere_slip = IonosphereSlipReason::kLongGap;
  csv.OnPairEpoch(pair);
  csv.EndBatch();
  const std::vector<std::string> rows = Rows();
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_NE(rows[1].find(",first_value,,,,,,data_gap"), std::string::npos) << rows[1];
  EXPECT_NE(rows[2].find(",slip,,,ionospheric_rate,,,geometry"), std::string::npos) << rows[2];
  EXPECT_NE(rows[3].find(",jump,,,,,,new_ephemeris"), std::string::npos) << rows[3];
  EXPECT_NE(rows[4].find(",gap,,,long_gap,,,"), std::string::npos) << rows[4];
}

TEST_F(Table, ALoneFirstEpochWaitsForItsPairs) {
  Satellite(0, 5, {"1C"});
  csv.EndBatch();
  Satellite(1, 5, {"1C"});
  csv.OnPairEpoch(Pair(0, 5, "1C", "2W"));
  csv.OnPairEpoch(Pair(1, 5, "1C", "2W"));
  csv.EndBatch();
  const std::vector<std::string> rows = Rows();
  ASSERT_EQ(rows.size(), 3U);
  for (int i : {1, 2}) EXPECT_NE(rows[static_cast<std::size_t>(i)].find("2W,0.2500"), std::string::npos);
}

TEST_F(Table, ALoneEpochOfARunIsWrittenAtItsEnd) {
  Satellite(0, 5, {"1C"});
  csv.EndBatch();
  csv.Finish(total_code_qc_result{});
  EXPECT_EQ(Rows().size(), 2U);
}

TEST_F(Table, OfASatelliteListedTwiceTheFirstHasThePairs) {
  Satellite(0, 5, {"1C"});
  Satellite(0, 5, {"1C"});
  Satellite(1, 5, {"1C"});
  csv.OnPairEpoch(Pair(0, 5, "1C", "2W"));
  csv.EndBatch();
  const std::vector<std::string> rows = Rows();
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_NE(rows[1].find("2W"), std::string::npos);
  EXPECT_EQ(rows[2].find("2W"), std::string::npos);
}

TEST(DetailFilter, LeavesOutRowsOfSatellitesAndSignals) {
  std::string text;
  DetailCsv csv([&text](std::string_view piece) { text += piece; },
                [](char letter, int number, std::string_view signal) {
                  return letter == 'G' && number == 5 && signal == "1C";
                });
  csv.Begin({kStart, 0.0}, 30);
  for (const int prn : {4, 5}) {
    Signal_QC_gbt signals[2] = {};
    signals[0].code = static_cast<std::uint8_t>(Code("1C"));
    signals[1].code = static_cast<std::uint8_t>(Code("2W"));
    orsolva::SatelliteEpochDetail detail;
    detail.number = prn;
    detail.satellite = {orsolva_host::kGps, prn};
    detail.time = {kStart, 0.0};
    detail.signals = signals;
    detail.signal_count = 2;
    csv.OnSatelliteEpoch(detail);
  }
  csv.Finish(total_code_qc_result{});
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
  EXPECT_NE(text.find(",G05,1C,"), std::string::npos) << text;
}

TEST(DetailCsv, AFailureOfTheWritingComesOutOfEndBatch) {
  DetailCsv csv([](std::string_view) { throw std::runtime_error("full"); });
  csv.Begin({kStart, 0.0}, 30);
  EXPECT_THROW(csv.EndBatch(), std::runtime_error);
}

}  // namespace
