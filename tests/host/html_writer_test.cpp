// The page of a report: what is collected, how it is coded, and that nothing of a file becomes markup.
#include "host/report/html_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/report/detail_data.h"
#include "host/report/page_data.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "tests/support/json_reader.h"

namespace {

using json = orsolva_test::Json;
using orsolva_host::Base64;
using orsolva_host::DetailCollector;
using orsolva_host::InsideScript;
using orsolva_host::SatelliteColumns;

constexpr std::int64_t kStart = 1593043200;
constexpr double kRadiansPerDegree = 0.017453292519943295;

std::uint32_t Code(const char* name) {
  return static_cast<std::uint32_t>(orsolva_host::SignalNumber(orsolva_host::kGps, name, 3.04));
}

/// The header of the encoded detail.
json Header(const DetailCollector& detail) {
  const std::string bytes = orsolva_host::EncodeDetail(detail, 10);
  const auto byte = [&](std::size_t i) {
    return std::size_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  };
  return json::parse(bytes.substr(4, byte(0) | byte(1) | byte(2) | byte(3)));
}

class Collected : public testing::Test {
 protected:
  void Start(std::size_t budget = DetailCollector::kDefaultBudget) {
    detail = std::make_unique<DetailCollector>(budget);
    detail->Begin(At(0), 30);
  }

  static Time_gbt At(int epoch) { return {kStart + 30 * epoch, 0.0}; }

  void Satellite(int epoch, int prn, double elevation_deg = 42.5, float snr = 45.25F) {
    Signal_QC_gbt signal = {};
    signal.code = static_cast<std::uint8_t>(Code("1C"));
    signal.snr = snr;
    orsolva::SatelliteEpochDetail told;
    told.number = prn;
    told.satellite = {orsolva_host::kGps, prn};
    told.time = At(epoch);
    told.elevation_rad = elevation_deg * kRadiansPerDegree;
    told.azimuth_rad = -90 * kRadiansPerDegree;
    told.above_cutoff = true;
    told.signals = &signal;
    told.signal_count = 1;
    detail->OnSatelliteEpoch(told);
  }

  void Pair(int epoch, int prn, const char* partner, double residual_m, bool counting = true) {
    orsolva::PairEpochDetail told;
    told.number = prn;
    told.satellite = {orsolva_host::kGps, prn};
    told.time = At(epoch);
    told.code = Code("1C");
    told.partner = Code(partner);
    told.counting = counting;
    told.has_multipath = true;
    told.residual_m = residual_m;
    told.has_geometry_free_step = epoch > 0;
    told.geometry_free_step_m = 0.010;
    detail->OnPairEpoch(told);
  }

  const SatelliteColumns& Only() const { return detail->Satellites().begin()->second; }

  std::unique_ptr<DetailCollector> detail;
};

TEST_F(Collected, ColumnsHoldTheUnitsOfThePage) {
  Start();
  Satellite(0, 5);
  Satellite(1, 5);
  Pair(0, 5, "2W", 0.1234);
  Pair(1, 5, "2W", -40.0);
  detail->EndBatch();
  detail->Finish(total_code_qc_result{});
  const SatelliteColumns& columns = Only();
  EXPECT_EQ(columns.elevation, (std::vector<std::int16_t>{4250, 4250}));
  EXPECT_EQ(columns.azimuth[0], 27000);
  EXPECT_EQ(columns.signals[0].snr[0], 4525);
  const orsolva_host::PairColumn* pair = detail->PairOf(columns, Code("1C"));
  ASSERT_NE(pair, nullptr);
  EXPECT_EQ(pair->residual, (std::vector<std::int16_t>{123, -32767}));
  EXPECT_EQ(pair->rate[0], orsolva_host::kNoValue);
  EXPECT_EQ(pair->rate[1], 20);  // 10 mm in half a minute
}

TEST_F(Collected, ResidualsBelowTheCutoffAreLeftOut) {
  Start();
  Satellite(0, 5);
  Satellite(1, 5);
  Pair(0, 5, "2W", 0.1, false);
  Pair(1, 5, "2W", 0.1);
  detail->EndBatch();
  detail->Finish(total_code_qc_result{});
  EXPECT_EQ(detail->PairOf(Only(), Code("1C"))->values, 1U);
}

TEST_F(Collected, ThePairOfASignalHasTheMostCompletePartnerAndTheFirstOfEquals) {
  for (const bool second_better : {false, true}) {
    Start();
    Satellite(0, 5);
    Satellite(1, 5);
    for (int epoch : {0, 1}) {
      Pair(epoch, 5, "2L", 0.1);
      Pair(epoch, 5, "2W", 0.2);
    }
    detail->EndBatch();
    auto codes = std::make_unique<total_code_qc_result>();
    code_qc_block& block = codes->sat[0][4];
    block.count = 2;
    block.entries[0].code = static_cast<std::uint8_t>(Code("2L"));
    block.entries[0].completeness = 0.5;
    block.entries[1].code = static_cast<std::uint8_t>(Code("2W"));
    block.entries[1].completeness = second_better ? 0.6 : 0.5;
    detail->Finish(*codes);
    const std::uint32_t first = std::min(Code("2L"), Code("2W"));
    const std::uint32_t wanted = second_better ? Code("2W") : first;
    EXPECT_EQ(detail->PairOf(Only(), Code("1C"))->partner, wanted);
  }
}

TEST_F(Collected, ManyEpochsAreThinnedAndTheRestIsStillCounted) {
  Start(1200);
  for (int epoch = 0; epoch < 400; ++epoch) Satellite(epoch, 5);
  for (int epoch = 0; epoch < 400; ++epoch) Pair(epoch, 5, "2W", 0.1);
  detail->EndBatch();
  detail->Finish(total_code_qc_result{});
  const SatelliteColumns& columns = Only();
  EXPECT_EQ(detail->Stride(), 4U);
  EXPECT_EQ(columns.epoch.size(), 100U);
  for (const auto epoch : columns.epoch) EXPECT_EQ(epoch % 4, 0U);
  EXPECT_EQ(columns.signals[0].values, 400U);
  EXPECT_EQ(detail->PairOf(columns, Code("1C"))->squares[8].count, 400U);
  const json told = Header(*detail);
  EXPECT_EQ(told["stride"], 4);
  EXPECT_EQ(told["satellites"][0]["runs"], json::array({0, 100}));
}

TEST_F(Collected, APageTooLargeIsThinnedUntilItFits) {
  Start();
  std::minstd_rand random(1);  // noise does not compress
  for (int epoch = 0; epoch < 4000; ++epoch) {
    const double elevation = static_cast<double>(random() % 9000) / 100;
    Satellite(epoch, 5, elevation, static_cast<float>(random() % 6000) / 100 + 1);
  }
  detail->EndBatch();
  detail->Finish(total_code_qc_result{});
  EXPECT_EQ(detail->Stride(), 1U);
  const std::size_t whole = WriteHtml(orsolva_host::Report(), *detail, {}).size();
  EXPECT_EQ(detail->Stride(), 1U);
  const std::string page = WriteHtml(orsolva_host::Report(), *detail, {}, {}, whole - 4000);
  EXPECT_LE(page.size(), whole - 4000);
  EXPECT_GT(detail->Stride(), 1U);
}

TEST_F(Collected, ColumnsAreLowBytesThenHighBytesAndSmoothOnesAreChanges) {
  Start();
  Satellite(0, 5, 42.5);
  Satellite(1, 5, 40.0);
  const std::string bytes = orsolva_host::EncodeDetail(*detail, 10);
  const json header = Header(*detail);
  const std::size_t blob = bytes.find("events_left_out");
  const std::size_t start =
      bytes.find('}', blob) + 1 + header["satellites"][0]["elevation"].get<std::size_t>();
  // 4250 = 0x109a, then -250 = 0xff06.
  EXPECT_EQ(bytes.substr(start, 4), "\x9a\x06\x10\xff");
}

TEST_F(Collected, ABreakOfTrackingEndsAnArc) {
  Start();
  for (int epoch : {0, 1, 2, 5, 6}) Satellite(epoch, 5);
  EXPECT_EQ(Only().arcs.size(), 2U);
  const json told = Header(*detail);
  EXPECT_EQ(told["satellites"][0]["arcs"], json::array({0, 2, 5, 6}));
  EXPECT_EQ(told["satellites"][0]["runs"], json::array({0, 3, 5, 2}));
}

TEST_F(Collected, ALoneFirstEpochKeepsItsPairs) {
  Start();
  Satellite(0, 5);
  detail->EndBatch();
  Satellite(1, 5);
  Pair(0, 5, "2W", 0.1);
  Pair(1, 5, "2W", 0.1);
  detail->EndBatch();
  detail->Finish(total_code_qc_result{});
  EXPECT_EQ(detail->PairOf(Only(), Code("1C"))->values, 2U);
}

TEST_F(Collected, AbsurdValuesStayWithinTheColumns) {
  Start();
  Satellite(0, 5, 1e300, 1e30F);
  Satellite(1, 5, std::nan(""), -1.0F);
  Pair(0, 5, "2W", std::nan(""));
  Pair(1, 5, "2W", 1e300);
  orsolva::SatelliteEpochDetail far;
  far.number = 5;
  far.time = {std::int64_t{1} << 62, 0.0};
  detail->OnSatelliteEpoch(far);
  detail->EndBatch();
  detail->Finish(total_code_qc_result{});
  EXPECT_EQ(Header(*detail)["satellites"].size(), 1U);
}

TEST(Page, Base64IsThatOfRfc4648) {
  EXPECT_EQ(Base64(""), "");
  EXPECT_EQ(Base64("f"), "Zg==");
  EXPECT_EQ(Base64("fo"), "Zm8=");
  EXPECT_EQ(Base64("foo"), "Zm9v");
  EXPECT_EQ(Base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(Base64(std::string("\xff\xfe\x00", 3)), "//4A");
}

TEST(Page, JsonInsideAScriptHoldsNoMarkup) {
  EXPECT_EQ(InsideScript(R"({"a":"</script><!--"})"), R"({"a":"\u003c/script>\u003c!--"})");
  EXPECT_EQ(InsideScript("\"\xe2\x80\xa8\xe2\x80\xa9\""), "\"\\u2028\\u2029\"");
  EXPECT_EQ(json::parse(InsideScript(R"("<b>")")), "<b>");
}

TEST(Page, TheTemplatesTakeDataOnceAndNameNoOtherPlace) {
  for (const std::string_view page : {orsolva_host::ReportPage(), orsolva_host::NetworkPage()}) {
    const std::size_t mark = page.find(orsolva_host::kPageDataMark);
    ASSERT_NE(mark, std::string::npos);
    EXPECT_EQ(page.find(orsolva_host::kPageDataMark, mark + 1), std::string::npos);
    for (const char* outside :
         {"src=\"", "<link", "@import", "url(http", "fetch(", "XMLHttpRequest", "import("}) {
      EXPECT_EQ(page.find(outside), std::string::npos) << outside;
    }
  }
}

TEST(Page, NamesOfFilesAndHeadersCannotLeaveTheirScript) {
  orsolva_host::Report report;
  report.run.marker = "</script><script>alert(1)</script>";
  report.run.observation_file = "<img src=x>.rnx";
  DetailCollector nothing;
  const std::string page = WriteHtml(report, nothing, {});
  EXPECT_EQ(page.find("<script>alert"), std::string::npos);
  EXPECT_EQ(page.find("<img"), std::string::npos);
  EXPECT_NE(page.find("\\u003cimg src=x>.rnx"), std::string::npos);
}

}  // namespace
