// Compares the table of docs/internals/readers.md with what the readers make of the shared files.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/rinex/input_files.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "tests/host/shared_data.h"
#include "tests/support/kept_table.h"
#include "tests/support/text_file.h"

namespace orsolva_host {
namespace {

const std::string kBegin = "<!-- table of files: kept by tests/host/readers_table_test.cpp -->\n";
const std::string kEnd = "<!-- end of the table -->\n";

std::string Notices(const Diagnostics& diagnostics) {
  std::string text;
  for (const Notice& notice : diagnostics.Notices()) {
    if (!text.empty()) text += "; ";
    if (notice.line > 0) text += fmt::format("line {}: ", notice.line);
    text += notice.text;
    if (notice.count > 1) text += fmt::format(" ({} times)", notice.count);
  }
  return text.empty() ? "none" : text;
}

/// "G32 R24", systems in the library's order.
std::string PerSystem(const std::map<int, std::size_t>& counts) {
  std::string text;
  for (const SystemRow& system : kSystemTable) {
    const auto count = counts.find(system.code);
    if (count == counts.end() || count->second == 0) continue;
    text += (text.empty() ? "" : " ") + fmt::format("{}{}", system.letter, count->second);
  }
  return text;
}

std::string ObservationRow(const std::string& path, const std::string& name) {
  Diagnostics diagnostics;
  ObservationReader reader(path, diagnostics);
  ObsEpoch_QC_gbt epoch;
  int epochs = 0;
  std::map<int, std::set<int>> satellites;
  for (; reader.Next(epoch); ++epochs) {
    for (std::uint32_t i = 0; i < epoch.sat_num; ++i) satellites[epoch.sats[i].sys].insert(epoch.sats[i].prn);
  }
  std::map<int, std::size_t> counts;
  for (const auto& [system, numbers] : satellites) counts[system] = numbers.size();
  const ObservationHeader& header = reader.Header();
  return fmt::format("| `{}` | observations {:.2f}, {} | {} epochs | {} | {} |\n", name, header.version,
                     header.crinex ? "CRINEX" : "plain", epochs, PerSystem(counts), Notices(diagnostics));
}

std::string NavigationRow(const std::string& path, const std::string& name) {
  Diagnostics diagnostics;
  NavigationReader reader(diagnostics);
  reader.Read(path);
  const NavigationSet set = reader.Take();
  const std::map<int, std::size_t> counts = {{kGps, set.gps.size()},
                                             {kGlonass, set.glonass.size()},
                                             {kBds, set.bds.size()},
                                             {kGalileo, set.galileo.size()},
                                             {kQzss, set.qzss.size()}};
  return fmt::format("| `{}` | navigation | {} records | {} | {} |\n", name, set.Size(), PerSystem(counts),
                     Notices(diagnostics));
}

/// The files that the table lists, in its order: a file is added by a row that begins with its name. What
/// else lies in the folder is not looked at.
std::vector<std::string> ListedFiles(const std::string& page) {
  const std::string text = orsolva_test::ReadText(page);
  const std::size_t end = text.find(kEnd);
  std::vector<std::string> names;
  for (std::size_t at = text.find(kBegin); at < end; at = text.find('\n', at) + 1) {
    if (text.compare(at, 3, "| `") == 0)
      names.push_back(text.substr(at + 3, text.find('`', at + 3) - at - 3));
  }
  return names;
}

std::string Table(const std::string& folder, const std::vector<std::string>& names) {
  std::string table =
      "| file | what | read | satellites or records by system | notices |\n|---|---|---|---|---|\n";
  for (const std::string& name : names) {
    const std::string path = folder + "/" + name;
    const FileKind kind = KindOfFile(path);
    table += kind == FileKind::kObservation  ? ObservationRow(path, name)
             : kind == FileKind::kNavigation ? NavigationRow(path, name)
                                             : fmt::format(
                                                   "| `{}` | skipped | | | its first line is that "
                                                   "of neither observations nor navigation |\n",
                                                   name);
  }
  return table;
}

TEST(ReadersTable, DocsShowWhatTheSharedFilesGive) {
  const std::string folder = (orsolva_test::SharedFolder() / "data").string();
  ORSOLVA_NEED_FILE(folder);
  const std::string page = std::string(ORSOLVA_SOURCE_DIR) + "/docs/internals/readers.md";
  const std::vector<std::string> names = ListedFiles(page);
  ASSERT_GT(names.size(), 10U);
  orsolva_test::HoldTable(page, kBegin, kEnd, Table(folder, names));
}

}  // namespace
}  // namespace orsolva_host
