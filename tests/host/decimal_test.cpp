#include "host/rinex/decimal.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

double Parsed(std::string_view text) {
  double value = -1;
  EXPECT_EQ(ParseDecimal(text, value), FieldState::kNumber) << text;
  return value;
}

FieldState StateOf(std::string_view text) {
  double value = -1;
  const FieldState state = ParseDecimal(text, value);
  if (state != FieldState::kNumber) {
    EXPECT_EQ(value, 0) << text;
  }
  return state;
}

TEST(Decimal, ReadsTheFormsOfRinex) {
  EXPECT_EQ(Parsed("  23818653.240"), 23818653.240);
  EXPECT_EQ(Parsed("-678367.9920  "), -678367.9920);
  EXPECT_EQ(Parsed(" .603088719072D-02"), 0.603088719072e-2);
  EXPECT_EQ(Parsed("-.568434188608d-11"), -0.568434188608e-11);
  EXPECT_EQ(Parsed("1.0e+00"), 1.0);
  EXPECT_EQ(Parsed("+7."), 7.0);
  EXPECT_EQ(Parsed("0.000"), 0.0);
}

TEST(Decimal, TellsBlankAndBadFieldsFromNumbers) {
  EXPECT_EQ(StateOf(""), FieldState::kBlank);
  EXPECT_EQ(StateOf("              "), FieldState::kBlank);
  for (const char* bad : {"-", ".", "+.", "1.2.3", "1 2", "nan", "inf", "0x10", "1e", "1e+", "12a", "--1",
                          "1e99999", "1e999", "*******"}) {
    EXPECT_EQ(StateOf(bad), FieldState::kBad) << bad;
  }
}

TEST(Decimal, NumbersTooSmallForADoubleAreZero) { EXPECT_EQ(Parsed("1e-999"), 0.0); }

TEST(Decimal, IsRoundedCorrectlyAsTheStandardLibraryDoes) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 200000; ++i) {
    std::string text(1, "-+ "[random() % 3]);
    const int digits = 1 + static_cast<int>(random() % 24);
    const int point = static_cast<int>(random() % (digits + 1));
    for (int k = 0; k < digits; ++k) {
      if (k == point) text += '.';
      text += static_cast<char>('0' + random() % 10);
    }
    if (random() % 2) text += "e" + std::to_string(static_cast<int>(random() % 80) - 40);
    ASSERT_EQ(Parsed(text), std::strtod(text.c_str(), nullptr)) << text;
  }
}

TEST(Decimal, ThousandthsFromAWholeNumberAreTheSameAsFromText) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 100000; ++i) {
    const std::uint64_t number = random() % 9999999999999ULL;
    const std::string digits = std::to_string(number + 10000000000000ULL).substr(1);
    const std::string text = digits.substr(0, 10) + "." + digits.substr(10);
    ASSERT_EQ(Parsed(text), static_cast<double>(number) / 1000.0) << text;
  }
}

TEST(Integer, ReadsWholeNumbersAlone) {
  std::int64_t value = 0;
  EXPECT_EQ(ParseInteger("  43", value), FieldState::kNumber);
  EXPECT_EQ(value, 43);
  EXPECT_EQ(ParseInteger("-2196 ", value), FieldState::kNumber);
  EXPECT_EQ(value, -2196);
  EXPECT_EQ(ParseInteger("   ", value), FieldState::kBlank);
  for (const char* bad : {"1.0", "1 2", "-", "1e3", "9999999999999999999"}) {
    EXPECT_EQ(ParseInteger(bad, value), FieldState::kBad) << bad;
  }
}

TEST(CivilTime, CountsSecondsOfTheCalendarAsItStands) {
  CivilTime c;
  ASSERT_TRUE(ParseCivil("2020", "06", "25", "00", "00", "30.5000000", c));
  EXPECT_EQ(ToTime(c).time, 1593043230);
  EXPECT_EQ(ToTime(c).sec, 0.5);
  ASSERT_TRUE(ParseCivil("1980", " 1", " 6", " 0", " 0", "  0.0000000", c));
  EXPECT_EQ(ToTime(c).time, 315964800);
}

TEST(CivilTime, RoundTripsOverFourCenturies) {
  for (std::int64_t days = -25567; days < 83000; days += 13) {
    const Time_gbt time = {days * 86400 + 3723, 0.25};
    const Time_gbt back = ToTime(ToCivil(time));
    ASSERT_EQ(back.time, time.time);
    ASSERT_EQ(back.sec, time.sec);
  }
}

TEST(CivilTime, RefusesFieldsOutOfRange) {
  CivilTime c;
  EXPECT_FALSE(ParseCivil("2020", "13", "25", "00", "00", "0.0", c));
  EXPECT_FALSE(ParseCivil("2020", "00", "25", "00", "00", "0.0", c));
  EXPECT_FALSE(ParseCivil("2020", "01", "32", "00", "00", "0.0", c));
  EXPECT_FALSE(ParseCivil("2020", "01", "01", "00", "00", "61.0", c));
  EXPECT_FALSE(ParseCivil("2020", "01", "01", "00", "00", "1.x", c));
  EXPECT_FALSE(ParseCivil("2020", "01", "01", "", "00", "1.0", c));
  EXPECT_FALSE(ParseCivil("  20", "01", "01", "00", "00", "1.0", c));
}

TEST(CivilTime, WritesMilliseconds) {
  EXPECT_EQ(TimeText({1593043199, 0.9996}), "2020-06-25 00:00:00.000");
  EXPECT_EQ(TimeText({1593043199, 0.25}), "2020-06-24 23:59:59.250");
}

}  // namespace
}  // namespace orsolva_host
