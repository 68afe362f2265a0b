// The detail table of the built program, held against the report of the same run.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/host/folder.h"
#include "tests/host/program.h"
#include "tests/host/shared_data.h"
#include "tests/support/json_reader.h"

namespace {

using json = orsolva_test::Json;
using orsolva_test::Answer;
using orsolva_test::DataFile;
using orsolva_test::Folder;
using orsolva_test::Orsolva;
using orsolva_test::ReadText;

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields(1);
  for (const char c : line) {
    if (c == ',') {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

struct PairSum {
  long count = 0;
  long slips = 0;
  double squares = 0;
};

/// By satellite and signal, then partner, above the cut-off.
using Sums = std::map<std::string, std::map<std::string, PairSum>>;

Sums SumsOf(const std::string& table) {
  Sums sums;
  std::istringstream lines(table);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    const std::vector<std::string> f = Fields(line);
    if (f.size() != 16) {
      ADD_FAILURE() << line;
      continue;
    }
    if (f[7].empty()) continue;
    PairSum& sum = sums[f[1] + f[2]][f[7]];
    if (!f[15].empty()) ++sum.slips;
    if (f[8].empty() || f[5] != "1") continue;
    ++sum.count;
    sum.squares += std::stod(f[8]) * std::stod(f[8]);
  }
  return sums;
}

/// Figures of a signal come from the most complete partner of each satellite: the one with the most values.
PairSum OfSignal(const Sums& sums, const std::string& letter, const std::string& signal) {
  PairSum all;
  for (const auto& [key, partners] : sums) {
    if (key.substr(0, 1) != letter || key.substr(3) != signal) continue;
    PairSum most;
    for (const auto& [partner, sum] : partners) {
      if (sum.count > most.count) most = sum;
    }
    all.count += most.count;
    all.slips += most.slips;
    all.squares += most.squares;
  }
  return all;
}

TEST(DetailTable, GivesTheCountsAndRmsOfTheReport) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Folder folder;
  const std::string path = folder / "quarter.csv";
  const Answer a = Orsolva("qc --json --systems GE --detail " + path + " " + DataFile("SEPT078M.21O") + " " +
                           DataFile("SEPT078M.21P"));
  ASSERT_EQ(a.code, 0) << a.err;
  const Sums sums = SumsOf(ReadText(path));
  const json report = json::parse(a.out);
  int compared = 0;
  for (const json& signal : report["library"]["signals"]) {
    if (signal["mp_values"].is_null()) continue;
    const PairSum sum =
        OfSignal(sums, signal["letter"].get<std::string>(), signal["signal"].get<std::string>());
    EXPECT_EQ(sum.count, signal["mp_values"].get<long>()) << signal["signal"];
    EXPECT_EQ(sum.slips, signal["phase_geometry_slip_epochs"].get<long>()) << signal["signal"];
    // Residuals are written to 0.1 mm.
    EXPECT_NEAR(std::sqrt(sum.squares / static_cast<double>(sum.count)), signal["mp_rms_m"].get<double>(),
                1e-4);
    ++compared;
  }
  EXPECT_GE(compared, 5);
}

TEST(DetailTable, DoesNotChangeTheReport) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Folder folder;
  const std::string path = folder / "same.csv.gz";
  const std::string files = DataFile("SEPT078M.21O") + " " + DataFile("SEPT078M.21P");
  const Answer without = Orsolva("qc --json --sats " + files);
  const Answer with = Orsolva("qc --json --sats --detail " + path + " " + files);
  EXPECT_EQ(without.out, with.out);
  EXPECT_EQ(ReadText(path).substr(0, 2), "\x1f\x8b");
}

TEST(DetailTable, AFailedRunLeavesNoTable) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Folder folder;
  const std::string path = folder / "none.csv";
  EXPECT_EQ(Orsolva("qc --detail " + path + " " + DataFile("SEPT078M.21O") + " /nonexistent.nav").code, 1);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(DetailTable, AFolderThatIsNotThereIsNamed) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Answer a =
      Orsolva("qc --detail /nonexistent/t.csv " + DataFile("SEPT078M.21O") + " " + DataFile("SEPT078M.21P"));
  EXPECT_EQ(a.code, 1);
  EXPECT_NE(a.err.find("/nonexistent/"), std::string::npos) << a.err;
}

TEST(HtmlReport, HoldsTheReportOfTheRunAndChangesNothingOfIt) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const Folder folder;
  const std::string path = folder / "page.html";
  const std::string files = DataFile("SEPT078M.21O") + " " + DataFile("SEPT078M.21P");
  const Answer without = Orsolva("qc --json --sats " + files);
  const Answer with = Orsolva("qc --json --sats --html " + path + " " + files);
  EXPECT_EQ(without.out, with.out);
  const std::string page = ReadText(path);
  const std::string start = "id=\"report-data\">";
  const std::size_t from = page.find(start);
  ASSERT_NE(from, std::string::npos);
  const std::size_t to = page.find("</script>", from);
  // The page has all but the single signals of satellites.
  json whole = json::parse(with.out);
  whole["analysis"].erase("satellite_signals");
  EXPECT_EQ(json::parse(page.substr(from + start.size(), to - from - start.size())), whole);
}

}  // namespace
