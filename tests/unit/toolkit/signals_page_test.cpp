// Holds the tables of docs/host/signals.md and of orsolva/signals.h against the library's signal tables.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "tests/support/kept_table.h"
#include "toolkit/constants.h"
#include "toolkit/satellite.h"
#include "toolkit/signals.h"

namespace gnssqctoolkit {
namespace {

struct BandRow {
  int system;
  int band;
  const char* name;
};

// Names of the bands: RINEX 3.05, observation code tables.
constexpr BandRow kBands[] = {
    {kGps, 1, "L1"},      {kGps, 2, "L2"},       {kGps, 5, "L5"},      {kGlonass, 1, "G1"},
    {kGlonass, 4, "G1a"}, {kGlonass, 2, "G2"},   {kGlonass, 6, "G2a"}, {kGlonass, 3, "G3"},
    {kBds, 21, "B1I"},    {kBds, 1, "B1C, B1A"}, {kBds, 5, "B2a"},     {kBds, 27, "B2I"},
    {kBds, 7, "B2b"},     {kBds, 8, "B2a+b"},    {kBds, 6, "B3"},      {kBds, 36, "B3A"},
    {kGalileo, 1, "E1"},  {kGalileo, 5, "E5a"},  {kGalileo, 7, "E5b"}, {kGalileo, 8, "E5"},
    {kGalileo, 6, "E6"},  {kQzss, 1, "L1"},      {kQzss, 2, "L2"},     {kQzss, 5, "L5"},
    {kQzss, 6, "L6"},
};

std::string BandText(int system, int band) {
  for (const BandRow& row : kBands) {
    if (row.system == system && row.band == band) return row.name;
  }
  return "?";
}

/// In MHz, from the stored wavelength; the two GLONASS bands with frequency channels as a formula.
std::string FrequencyText(int system, const SignalRow& row) {
  if (system == kGlonass && row.band == 1) return "1602 + 0.5625 k";
  if (system == kGlonass && row.band == 2) return "1246 + 0.4375 k";
  const long khz = std::lround(kSpeedOfLight / Wavelength(system, row.code, 0) / 1e3);
  char text[32];
  std::snprintf(text, sizeof text, "%ld.%03ld", khz / 1000, khz % 1000);
  return text;
}

struct SystemNames {
  int system;
  const char* page;    ///< heading on the page
  const char* prefix;  ///< in the names of C
  const char* camel;   ///< in the names of C++
};

constexpr SystemNames kSystems[] = {{kGps, "GPS", "GPS", "Gps"},
                                    {kGlonass, "GLONASS", "GLONASS", "Glonass"},
                                    {kBds, "BDS", "BDS", "Bds"},
                                    {kGalileo, "Galileo", "GALILEO", "Galileo"},
                                    {kQzss, "QZSS", "QZSS", "Qzss"}};

/// One text per row of the systems' tables, in their order.
template <class RowText>
std::string ForEachRow(const SystemNames& system, RowText&& row_text) {
  std::string text;
  int rows = 0;
  const SignalRow* table = SignalTable(system.system, rows);
  for (const SignalRow* row = table; row != table + rows; ++row) text += row_text(*row);
  return text;
}

std::string PageTable() {
  std::string text;
  for (const SystemNames& system : kSystems) {
    text += std::string("\n### ") + system.page +
            "\n\n| code number | RINEX 3 | band | frequency, MHz | slot |\n" + "|---|---|---|---|---|\n";
    text += ForEachRow(system, [&](const SignalRow& row) {
      return "| " + std::to_string(row.code) + " | " + row.obs + " | " + BandText(system.system, row.band) +
             " | " + FrequencyText(system.system, row) + " | " + std::to_string(row.frequency) + " |\n";
    });
  }
  return text + "\n";
}

/// Whether a number is listed for the first time: its current name has the first row.
bool IsCurrent(int system, const SignalRow& row) { return FindSignal(system, row.code) == &row; }

std::string NumbersOfC() {
  std::string text;
  for (const SystemNames& system : kSystems) {
    text += ForEachRow(system, [&](const SignalRow& row) {
      if (!IsCurrent(system.system, row)) return std::string();
      return std::string("  ORSOLVA_") + system.prefix + "_" + row.obs + " = " + std::to_string(row.code) +
             ",\n";
    });
  }
  return text;
}

std::string NamesOfCpp() {
  std::string text;
  for (const SystemNames& system : kSystems) {
    text += ForEachRow(system, [&](const SignalRow& row) {
      if (!IsCurrent(system.system, row)) return std::string();
      return std::string("  k") + system.camel + row.obs + " = ORSOLVA_" + system.prefix + "_" + row.obs +
             ",\n";
    });
  }
  return text;
}

/// Carrier in MHz and the step between the channels of GLONASS, as literals.
std::string FrequencyLiterals(int system, const SignalRow& row) {
  const std::string text = FrequencyText(system, row);
  const std::size_t plus = text.find(" + ");
  if (plus == std::string::npos) return text + ", 0.0";
  return text.substr(0, plus) + ".0, " + text.substr(plus + 3, text.find(" k") - plus - 3);
}

std::string RowsOfCpp() {
  std::string text;
  for (const SystemNames& system : kSystems) {
    text += ForEachRow(system, [&](const SignalRow& row) {
      const std::string camel = std::string("k") + system.camel;
      return "    {System::" + camel + ", Signal::" + camel + FindSignal(system.system, row.code)->obs +
             ", " + std::to_string(row.frequency) + ", \"" + row.obs + "\", \"" +
             BandText(system.system, row.band) + "\", " + FrequencyLiterals(system.system, row) + "},\n";
    });
  }
  return text;
}

TEST(SignalsPage, ShowsTheTablesOfTheLibrary) {
  const std::string table = PageTable();
  EXPECT_EQ(table.find('?'), std::string::npos) << "a band without a name";
  orsolva_test::HoldTable(std::string(ORSOLVA_SOURCE_DIR) + "/docs/host/signals.md",
                          "<!-- signals: kept by tests/unit/toolkit/signals_page_test.cpp -->\n",
                          "<!-- end of the signals -->\n", table);
}

void HoldHeader(const std::string& block, const std::string& end, const std::string& rows) {
  orsolva_test::HoldTable(std::string(ORSOLVA_SOURCE_DIR) + "/library/interface/orsolva/signals.h",
                          "/* " + block + ": kept by tests/unit/toolkit/signals_page_test.cpp */\n",
                          "/* " + end + " */\n", rows);
}

TEST(SignalsHeader, HoldsTheTablesOfTheLibrary) {
  HoldHeader("numbers", "end of the numbers", NumbersOfC());
  HoldHeader("names", "end of the names", NamesOfCpp());
  HoldHeader("rows", "end of the rows", RowsOfCpp());
}

TEST(SignalsPage, GlonassChannelsFollowTheFormulasItShows) {
  for (int k = -7; k <= 6; ++k) {
    EXPECT_NEAR(kSpeedOfLight / Wavelength(kGlonass, 30, k), (1602.0 + 0.5625 * k) * 1e6, 1.0) << k;
    EXPECT_NEAR(kSpeedOfLight / Wavelength(kGlonass, 35, k), (1246.0 + 0.4375 * k) * 1e6, 1.0) << k;
  }
}

}  // namespace
}  // namespace gnssqctoolkit
