// What names and headers of observation files state.
#include <gtest/gtest.h>

#include "host/rinex/station_statements.h"
#include "tests/host/observation_text.h"

namespace orsolva_host {
namespace {

using orsolva_test::HeaderLine;

constexpr std::int64_t kDay_s = 1593043200;  // 2020-06-25, day 177

void ExpectName(const std::string& name, const std::string& station, std::int64_t begin_s,
                std::optional<double> period_s, std::optional<double> interval_s) {
  const FileNameStatement statement = StatementOfName(name);
  EXPECT_EQ(statement.station, station) << name;
  EXPECT_EQ(statement.begin_ns, begin_s * kNanosecondsPerSecond) << name;
  EXPECT_EQ(statement.period_s, period_s) << name;
  EXPECT_EQ(statement.interval_s, interval_s) << name;
}

TEST(StatementOfName, LongNamesHaveBeginPeriodAndInterval) {
  ExpectName("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz", "ESBC00DNK", kDay_s, 86400, 30);
  ExpectName("ESBC00DNK_S_20201771215_15M_01S_MO.rnx", "ESBC00DNK", kDay_s + 12 * 3600 + 900, 900, 1);
  ExpectName("ESBC00DNK_R_20201770000_01H_20Z_GO.rnx", "ESBC00DNK", kDay_s, 3600, 0.05);
  ExpectName("ESBC00DNK_R_20201770000_01H_01C_GO.rnx", "ESBC00DNK", kDay_s, 3600, 0.01);
  ExpectName("ESBC00DNK_U_20201770000_00U_00U_MO.rnx", "ESBC00DNK", kDay_s, std::nullopt, std::nullopt);
}

TEST(StatementOfName, ShortNamesHaveDayHourOrQuarter) {
  ExpectName("esbc1770.20o", "ESBC", kDay_s, 86400, std::nullopt);
  ExpectName("ESBC177M.20D.Z", "ESBC", kDay_s + 12 * 3600, 3600, std::nullopt);
  ExpectName("esbc177b45.20d", "ESBC", kDay_s + 3600 + 45 * 60, 900, std::nullopt);
  ExpectName("esbc1771.20o", "ESBC", kDay_s, std::nullopt, std::nullopt);
}

TEST(StatementOfName, OtherNamesStateNothing) {
  for (const char* name : {"data.obs", "-", "", "esbc1770.20n", "ESBC00DNK_R_20201770000_01D_MN.rnx"}) {
    EXPECT_TRUE(StatementOfName(name).station.empty()) << name;
    EXPECT_FALSE(StatementOfName(name).begin_ns) << name;
  }
}

TEST(DescriptionOf, TimesOfTheHeaderAreGpsTime) {
  const std::string text = orsolva_test::Header(
      "G    1 C1C", "3.04",
      HeaderLine("ESBC", "MARKER NAME") + HeaderLine("    30.000", "INTERVAL") +
          HeaderLine("  2020     6    25     0     0    0.0000000     BDT", "TIME OF FIRST OBS") +
          HeaderLine("  2020     6    25    23    59   30.5000000     BDT", "TIME OF LAST OBS"));
  Diagnostics notices;
  ObservationReader reader(TextBytes(text), "test", notices);
  const StationDescription d = DescriptionOf(reader.Header(), "/somewhere/ESBC1770.20o");
  EXPECT_EQ(d.marker, "ESBC");
  EXPECT_EQ(d.interval_s, 30);
  EXPECT_EQ(d.first_ns, (kDay_s + 14) * kNanosecondsPerSecond);
  EXPECT_EQ(d.last_ns, (kDay_s + 86370 + 14) * kNanosecondsPerSecond + 500'000'000);
  EXPECT_EQ(d.name.station, "ESBC");
  EXPECT_FALSE(d.position_m);
}

TEST(ObservationReader, NamesWhatHeaderLinesAmongTheObservationsChange) {
  const std::string old_antenna = HeaderLine("1                   OLD             NONE", "ANT # / TYPE");
  const std::string new_antenna = HeaderLine("2                   NEW             NONE", "ANT # / TYPE");
  const std::string text = orsolva_test::Header("G    1 C1C", "3.04", old_antenna) +
                           orsolva_test::Epoch("00.0", 1) + orsolva_test::Satellite("G05", {"22000000.000"}) +
                           "\n>                              4  2\n" + old_antenna + new_antenna +
                           orsolva_test::Epoch("30.0", 1) + orsolva_test::Satellite("G05", {"22000000.000"}) +
                           "\n";
  Diagnostics notices;
  ObservationReader reader(TextBytes(text), "test", notices);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  EXPECT_TRUE(reader.Next(*epoch));
  EXPECT_TRUE(reader.Changes().empty());
  EXPECT_TRUE(reader.Next(*epoch));
  ASSERT_EQ(reader.Changes().size(), 1U);
  EXPECT_EQ(reader.Changes()[0].what, "antenna");
  EXPECT_NE(reader.Changes()[0].before.find("OLD"), std::string::npos);
  EXPECT_NE(reader.Changes()[0].after.find("NEW"), std::string::npos);
}

}  // namespace
}  // namespace orsolva_host
