#include "host/judging/network_outputs.h"

#include <filesystem>

#include "host/judging/library_version.h"
#include "host/judging/report_stream.h"
#include "host/output/whole_file.h"
#include "host/report/network_html.h"

namespace orsolva_host {

std::string NetworkOutputs::Index(const std::string& path) const {
  return NetworkHtml(rows_, {kLibraryVersion, settings_.profile_title}, path);
}

/// The table in the format of the file's ending.
std::string NetworkOutputs::TableFor(const std::string& path) const {
  const std::string ending = std::filesystem::path(path).extension().string();
  if (ending == ".html") return Index(path);
  return ending == ".csv" ? NetworkCsv(rows_) : NetworkText(rows_, TextStyle());
}

void NetworkOutputs::Write() {
  SortWorstFirst(rows_);
  const std::string& named = settings_.network;
  if (named == "-") WriteOut(TableFor(named));
  if (!named.empty() && named != "-") WriteWholeFile(named, TableFor(named));
  if (!many_ || settings_.folder.empty()) return;
  for (const char* name : {"/network.txt", "/network.csv"}) {
    WriteWholeFile(settings_.folder + name, TableFor(name));
  }
  if (!index_.empty()) WriteWholeFile(index_, Index(index_));
}

}  // namespace orsolva_host
