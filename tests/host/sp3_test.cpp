// SP3 files written by hand, and what the reader makes of them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "host/formats/sp3_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kMidnight_s = 1593043200;  // 2020-06-25

std::string FirstLines(const std::string& system = "GPS", char version = 'd', int epochs = 1) {
  char line[80];
  std::snprintf(line, sizeof line, "#%cP2020  6 25  0  0  0.00000000 %7d TRACK IGb14 FIT TEST\n", version,
                epochs);
  return line + std::string("## 2111 345600.00000000   900.00000000 59025 0.0000000000000\n") +
         "+    1   G05  0  0\n++         5  0  0\n%c M  cc " + system + " ccc cccc\n%c cc cc ccc ccc cccc\n" +
         "%f  0.0000000  0.000000000\n%i    0    0\n/* a comment\n";
}

std::string Epoch(int minute) {
  char line[40];
  std::snprintf(line, sizeof line, "*  2020  6 25  0 %2d  0.00000000\n", minute);
  return line;
}

std::string Position(const std::string& satellite, double x_km, double clock_us,
                     const std::string& flags = "") {
  char line[100];
  std::snprintf(line, sizeof line, "P%s%14.6f%14.6f%14.6f%14.6f", satellite.c_str(), x_km, -14087.476822,
                x_km == 0 ? 0.0 : 1000.5, clock_us);
  std::string text = line;
  if (!flags.empty()) text.resize(74, ' ');
  return text + flags + "\n";
}

struct Read {
  Diagnostics notices;
  PreciseOrbits orbits;

  explicit Read(const std::string& text, const InputLimits& limits = {}) { Add(text, limits); }
  void Add(const std::string& text, const InputLimits& limits = {}) {
    ReadPreciseOrbits(TextBytes(text), "test.sp3", notices, limits, orbits);
  }
  const std::vector<PrecisePoint>& Of(char system, int number) {
    return orbits.satellites[{system, static_cast<std::uint8_t>(number)}];
  }
  const Notice* Found(const std::string& part) const {
    for (const Notice& n : notices.Notices()) {
      if (n.text.find(part) != std::string::npos) return &n;
    }
    return nullptr;
  }
};

TEST(Sp3Reader, PositionsAreMetresAndClocksSeconds) {
  Read file(FirstLines() + Epoch(0) + Position("G05", 11459.480933, 142.763416) + "EOF\n");
  ASSERT_EQ(file.Of('G', 5).size(), 1U);
  const PrecisePoint& p = file.Of('G', 5)[0];
  EXPECT_EQ(p.time_ns, kMidnight_s * kNanosecondsPerSecond);
  EXPECT_DOUBLE_EQ(p.position_m[0], 11459480.933);
  EXPECT_DOUBLE_EQ(p.position_m[1], -14087476.822);
  EXPECT_DOUBLE_EQ(p.position_m[2], 1000500.0);
  EXPECT_DOUBLE_EQ(p.clock_s, 142.763416e-6);
  EXPECT_EQ(p.flags, 0);
  EXPECT_EQ(file.notices.Total(), 0);
}

TEST(Sp3Reader, EverySystemHasItsPlace) {
  std::string text = FirstLines() + Epoch(0);
  for (const char* name : {"G01", "R24", "E36", "C62", "J03", "I09", "S29"}) text += Position(name, 20000, 1);
  Read file(text + "EOF\n");
  EXPECT_EQ(file.orbits.satellites.size(), 7U);
  EXPECT_EQ(file.Of('C', 62).size(), 1U);
}

TEST(Sp3Reader, AMissingClockIsAbsentAndAMissingPositionLeavesThePointOut) {
  const std::string zero = "PG06      0.000000      0.000000      0.000000      1.000000\n";
  Read file(FirstLines() + Epoch(0) + Position("G05", 20000, 999999.999999) + zero +
            Position("G07", 20000, 1).substr(0, 46) + "\nEOF\n");
  ASSERT_EQ(file.Of('G', 5).size(), 1U);
  EXPECT_TRUE(std::isnan(file.Of('G', 5)[0].clock_s));
  EXPECT_TRUE(file.Of('G', 6).empty());
  ASSERT_EQ(file.Of('G', 7).size(), 1U);
  EXPECT_TRUE(std::isnan(file.Of('G', 7)[0].clock_s));
  EXPECT_EQ(file.notices.Total(), 0);
}

TEST(Sp3Reader, FlagsAreInTheirColumns) {
  Read file(FirstLines() + Epoch(0) + Position("G01", 20000, 1, "E") + Position("G02", 20000, 1, " P") +
            Position("G03", 20000, 1, "    M") + Position("G04", 20000, 1, "EP  MP") + "EOF\n");
  EXPECT_EQ(file.Of('G', 1)[0].flags, kClockEvent);
  EXPECT_EQ(file.Of('G', 2)[0].flags, kClockPredicted);
  EXPECT_EQ(file.Of('G', 3)[0].flags, kManeuver);
  EXPECT_EQ(file.Of('G', 4)[0].flags, kClockEvent | kClockPredicted | kManeuver | kOrbitPredicted);
}

TEST(Sp3Reader, TimeSystemsBecomeGpsTime) {
  const std::pair<const char*, int> shifts[] = {{"GPS", 0},  {"GAL", 0},   {"QZS", 0},  {"IRN", 0},
                                                {"BDT", 14}, {"TAI", -19}, {"UTC", 18}, {"GLO", 18}};
  for (const auto& [system, shift_s] : shifts) {
    Read file(FirstLines(system) + Epoch(15) + Position("G05", 20000, 1) + "EOF\n");
    EXPECT_EQ(file.Of('G', 5)[0].time_ns, (kMidnight_s + 900 + shift_s) * kNanosecondsPerSecond) << system;
  }
  EXPECT_NE(Read(FirstLines("XYZ") + "EOF\n").Found("unknown time system"), nullptr);
}

TEST(Sp3Reader, VelocitiesAndAccuraciesArePassedOver) {
  const std::string v = "VG05  20298.880364 -18462.044804   1381.387685    -4.534317\n";
  const std::string e = "EP   55   55   55     222  1234567 -1234567  5999999      -30       21 -1230000\n";
  Read file(FirstLines() + Epoch(0) + Position("G05", 20000, 1) + e + v + "EV   22   22   22     111\nEOF\n");
  EXPECT_EQ(file.Of('G', 5).size(), 1U);
  EXPECT_EQ(file.notices.Total(), 0);
}

TEST(Sp3Reader, FilesAreMergedAndWhatIsNotPredictedIsKept) {
  Read file(FirstLines() + Epoch(0) + Position("G05", 20001, 1) + Epoch(15) +
            Position("G05", 20002, 1, "     P") + "EOF\n");
  file.Add(FirstLines() + Epoch(15) + Position("G05", 20003, 1) + Epoch(0) + Position("G05", 20004, 1) +
           "EOF\n");
  ASSERT_EQ(file.Of('G', 5).size(), 2U);
  EXPECT_DOUBLE_EQ(file.Of('G', 5)[0].position_m[0], 20001e3);
  EXPECT_DOUBLE_EQ(file.Of('G', 5)[1].position_m[0], 20003e3);
}

TEST(Sp3Reader, BadLinesAreSkippedWithTheirPlace) {
  Read file(FirstLines("GPS", 'd', 3) + "PG09  nothing\n" + Epoch(0) + Position("G05", 20000, 1) +
            "PG06 abc\n" + Position("G07", 500000, 1) + Position("L11", 7000, 1) + Position("??1", 7000, 1) +
            "nonsense\n" + "*  2020 13 25  0  0  0.0\n" + Position("G08", 20000, 1) + Epoch(15) +
            Position("G05", 2e4, 5e5) + "EOF\n");
  EXPECT_EQ(file.Of('G', 5).size(), 2U);
  EXPECT_TRUE(file.Of('G', 8).empty());
  ASSERT_NE(file.Found("not one of a satellite"), nullptr);
  EXPECT_EQ(file.Found("not one of a satellite")->count, 2);
  EXPECT_EQ(file.Found("not one of a satellite")->line, 13);
  EXPECT_NE(file.Found("before the first epoch line"), nullptr);
  EXPECT_NE(file.Found("positions of system L"), nullptr);
  EXPECT_NE(file.Found("unreadable satellite"), nullptr);
  EXPECT_NE(file.Found("no part of an SP3 file"), nullptr);
  EXPECT_NE(file.Found("without a date"), nullptr);
  EXPECT_NE(file.Found("not a number of microseconds"), nullptr);
  EXPECT_NE(file.Found("fewer epochs"), nullptr);
}

TEST(Sp3Reader, ATruncatedFileIsNamedAndJoinedFilesAreRead) {
  const std::string whole = FirstLines() + Epoch(0) + Position("G05", 20000, 1);
  const Read cut(whole);
  ASSERT_TRUE(cut.notices.Incomplete());
  EXPECT_NE(std::string(cut.notices.Incomplete()->what()).find("without EOF"), std::string::npos);
  Read joined(whole + "EOF\n" + FirstLines() + Epoch(15) + Position("G05", 20000, 1) + "EOF\n");
  EXPECT_EQ(joined.Of('G', 5).size(), 2U);
  EXPECT_EQ(joined.notices.Total(), 0);
  EXPECT_FALSE(joined.notices.Incomplete());
}

TEST(Sp3Reader, OtherFilesAndVersionsAreRefusedWithAdvice) {
  EXPECT_THROW(Read(""), FileError);
  EXPECT_THROW(Read("     3.05           N: GNSS NAV DATA\n"), FileError);
  try {
    Read(FirstLines("GPS", 'a'));
    FAIL() << "SP3-a was taken";
  } catch (const FileError& error) {
    EXPECT_EQ(error.Found(), "SP3-a");
    EXPECT_EQ(error.Line(), 1);
    EXPECT_FALSE(error.Advice().empty());
  }
}

TEST(Sp3Reader, MorePositionsThanTheLimitAreRefused) {
  InputLimits limits;
  limits.max_records = 2;
  const std::string two = FirstLines() + Epoch(0) + Position("G05", 20000, 1) + Position("G06", 20000, 1);
  Read file(two + "EOF\n", limits);
  EXPECT_EQ(file.orbits.satellites.size(), 2U);
  EXPECT_THROW(Read(two + Position("G07", 20000, 1) + "EOF\n", limits), FileError);
  EXPECT_THROW(file.Add(two + "EOF\n", limits), FileError);
}

TEST(Sp3Reader, ARealCompressedFileIsReadWhole) {
  const std::string path = orsolva_test::DataFile("GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz");
  ORSOLVA_NEED_FILE(path);
  Diagnostics notices;
  PreciseOrbits orbits;
  ReadPreciseOrbits(path, notices, {}, orbits);
  EXPECT_EQ(notices.Total(), 0);
  EXPECT_EQ(orbits.satellites.size(), 75U);
  for (const auto& [satellite, points] : orbits.satellites)
    EXPECT_EQ(points.size(), 96U) << NameOf(satellite);
}

}  // namespace
}  // namespace orsolva_host
