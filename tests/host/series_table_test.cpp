// The table of figures over time: columns, empty fields and both forms; and what a page keeps of it.
#include "host/report/series_table.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "host/report/series_collector.h"

namespace {

using namespace orsolva_host;
using analysis::SeriesRow;
using analysis::SeriesSubject;
using Json = nlohmann::json;

constexpr std::int64_t kMidnight_ns = 1593043200 * kNanosecondsPerSecond;
constexpr std::int64_t kBin_ns = 300 * kNanosecondsPerSecond;

SeriesRow Signal(std::int64_t bin, double snr_dbhz = 45.678) {
  SeriesRow row;
  row.time_ns = kMidnight_ns + bin * kBin_ns;
  row.subject = SeriesSubject::kSatelliteSignal;
  row.satellite = {'G', 5};
  row.code = {'2', 'W'};
  row.expected_epochs = 10;
  row.observed_epochs = 9;
  row.elevation_deg = 41.236;
  row.snr_dbhz = snr_dbhz;
  row.snr_values = 9;
  row.multipath_m = 0.31416;
  row.multipath_values = 8;
  row.slips = 1;
  return row;
}

SeriesRow Station(std::int64_t bin, double clock_s = 1.25e-4) {
  SeriesRow row;
  row.time_ns = kMidnight_ns + bin * kBin_ns;
  row.observed_epochs = 10;
  row.satellites = 31.5;
  row.pdop = 1.234;
  row.clock_s = clock_s;
  row.enu_m = {0.1234, -1.5, 2.0006};
  return row;
}

TEST(SeriesTable, HasAColumnForEveryFigureAndEmptyFieldsForNone) {
  EXPECT_EQ(
      SeriesCsvHeading(),
      "time_gpst,system,satellite,signal,expected_epochs,observed_epochs,satellites,elevation_deg,snr_dbhz,"
      "snr_values,multipath_m,multipath_values,slips,roti_tecu_per_min,pdop,clock_s,east_m,north_m,up_m\n");
  EXPECT_EQ(SeriesLine(Signal(1), TableForm::kCsv),
            "2020-06-25 00:05:00.000,G,G05,2W,10,9,,41.24,45.68,9,0.3142,8,1,,,,,,\n");
  EXPECT_EQ(SeriesLine(Station(0), TableForm::kCsv),
            "2020-06-25 00:00:00.000,,,,,10,31.50,,,,,,0,,1.23,0.00012500000,0.123,-1.500,2.001\n");
}

TEST(SeriesTable, JsonLinesHaveNullForWhatIsAbsent) {
  const Json row = Json::parse(SeriesLine(Signal(1), TableForm::kJsonLines));
  EXPECT_EQ(row["satellite"], "G05");
  EXPECT_EQ(row["multipath_m"], 0.3142);
  EXPECT_TRUE(row["pdop"].is_null());
  EXPECT_EQ(row.size(), 19U);
  EXPECT_TRUE(Json::parse(SeriesLine(Station(0), TableForm::kJsonLines))["system"].is_null());
}

TEST(SeriesCollector, KeepsEachSubjectFromItsFirstBinOn) {
  SeriesCollector collector;
  collector.Add(Station(0));
  collector.Add(Station(1));
  collector.Add(Signal(1));
  const Json page = Json::parse(collector.Json());
  EXPECT_EQ(page["first_s"], 1593043200);
  EXPECT_EQ(page["bin_s"], 300);
  EXPECT_EQ(page["bins"], 2);
  EXPECT_EQ(page["station"]["up_mm"], Json::parse("[2001,2001]"));
  EXPECT_EQ(page["station"]["clock_ps"], Json::parse("[125000000,125000000]"));
  const Json& signal = page["series"][0];
  EXPECT_EQ(signal["of"], "G05");
  EXPECT_EQ(signal["signal"], "2W");
  EXPECT_EQ(signal["first"], 1);
  EXPECT_EQ(signal["available"], Json::parse("[900]"));
  EXPECT_EQ(signal["snr"], Json::parse("[457]"));
  EXPECT_EQ(signal["multipath"], Json::parse("[314]"));
}

TEST(SeriesCollector, KnowsWhenASatelliteWasObserved) {
  SeriesRow row = Signal(1);
  row.subject = SeriesSubject::kSatellite;
  SeriesCollector collector;
  collector.Add(Station(0));
  collector.Add(row);
  row.time_ns += 2 * kBin_ns;
  row.roti = 0.0317;
  collector.Add(row);
  const Json page = Json::parse(collector.Json());
  EXPECT_EQ(page["series"][0]["of"], "G05");
  EXPECT_TRUE(page["series"][0]["signal"].is_null());
  EXPECT_EQ(page["series"][0]["observed"], Json::parse("[9,null,9]"));
  EXPECT_EQ(page["series"][0]["roti"], Json::parse("[null,null,32]"));
}

TEST(SeriesCollector, JoinsBinsUntilTheyAreFewEnough) {
  SeriesCollector collector;
  const auto bins = static_cast<std::int64_t>(SeriesCollector::kMaxBins) + 1;
  for (std::int64_t bin = 0; bin < bins; ++bin) {
    collector.Add(Station(bin, static_cast<double>(bin) * 1e-6));
    collector.Add(Signal(bin, bin % 2 == 0 ? 40 : 50));
  }
  const Json page = Json::parse(collector.Json());
  EXPECT_EQ(page["bin_s"], 600);
  EXPECT_EQ(page["bins"], (bins + 1) / 2);
  EXPECT_EQ(page["station"]["clock_ps"][1], 2000000) << "the first of two";
  EXPECT_EQ(page["series"][0]["snr"][0], 450) << "the mean of two";
  EXPECT_EQ(page["series"][0]["snr"].back(), 400) << "a single one";
  EXPECT_EQ(page["series"][0]["slips"][0], 2);
  EXPECT_EQ(page["series"][0]["multipath"][0], 314);
}

TEST(SeriesCollector, ATimeFarAwayTakesNoMoreMemory) {
  SeriesCollector collector;
  collector.Add(Station(0));
  collector.Add(Station(1'000'000));
  EXPECT_LE(Json::parse(collector.Json())["bins"], SeriesCollector::kMaxBins);
}

TEST(SeriesCollector, WithoutRowsIsEmpty) {
  const Json page = Json::parse(SeriesCollector().Json());
  EXPECT_EQ(page["bins"], 0);
  EXPECT_TRUE(page["series"].empty());
}

}  // namespace
