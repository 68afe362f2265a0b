#include "host/report/network_html.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>

#include "host/report/page_data.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

using Json = nlohmann::ordered_json;

template <typename T>
Json ValueOf(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json TextOf(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

Json RowJson(const NetworkRow& row, const std::string& path, const FigureTables& tables) {
  Json j;
  j["file"] = row.file;
  j["page"] = row.page.empty() ? Json(nullptr) : Json(LinkTo(row.page, path));
  j["marker"] = TextOf(row.marker);
  j["state"] = StateOf(row);
  j["verdict"] = TextOf(row.verdict.text);
  j["error"] = TextOf(ErrorOf(row));
  j["first_epoch_gpst"] = row.first_epoch ? Json(TimeText(*row.first_epoch)) : Json(nullptr);
  j["duration_h"] = row.judged ? Json(row.duration_h) : Json(nullptr);
  j["lost_epochs"] = row.lost_epochs ? Json(*row.lost_epochs) : Json(nullptr);
  for (const auto& figure : tables.headline) j[figure.key] = ValueOf(figure.get(row.headline));
  for (const auto& figure : tables.library_headline)
    j[figure.key] = ValueOf(figure.get(row.library_headline));
  j["notices"] = row.judged ? Json(row.notices) : Json(nullptr);
  return j;
}

Json SummaryJson(const NetworkSummary& sum) {
  Json j;
  j["files"] = sum.files;
  j["errors"] = sum.errors;
  j["failed"] = sum.failed;
  j["fair"] = sum.fair;
  j["good"] = sum.good;
  j["median_completeness_ratio"] = ValueOf(sum.median_completeness);
  j["least_completeness_ratio"] = ValueOf(sum.least_completeness);
  j["first_epoch_gpst"] = sum.first_epoch ? Json(TimeText(*sum.first_epoch)) : Json(nullptr);
  j["duration_h"] = sum.duration_h;
  return j;
}

/// How many files, and what the first is like.
std::string DescriptionOf(const std::vector<NetworkRow>& rows) {
  const NetworkSummary sum = SummaryOf(rows);
  const std::string text = fmt::format("{} files, {} with errors, {} poor or not judged, {} fair, {} good",
                                       sum.files, sum.errors, sum.failed, sum.fair, sum.good);
  if (rows.empty()) return text;
  const NetworkRow& worst = rows.front();
  const std::string name = std::filesystem::path(worst.file).filename().string();
  const std::string said = worst.verdict.text.empty() ? ErrorOf(worst) : worst.verdict.text;
  return text + fmt::format("; {}: {} - {}", name, StateOf(worst), said);
}

}  // namespace

std::string LinkTo(const std::string& file, const std::string& page) {
  namespace fs = std::filesystem;
  const fs::path from = fs::absolute(page).lexically_normal().parent_path();
  const std::string relative =
      fs::absolute(file).lexically_normal().lexically_relative(from).generic_string();
  constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string link;
  for (const char c : relative) {
    if (kPlain.find(c) != std::string_view::npos) {
      link += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      link += {'%', kHex[byte >> 4U], kHex[byte & 15U]};
    }
  }
  return link;
}

std::string NetworkHtml(const std::vector<NetworkRow>& rows, const NetworkHead& head, const std::string& path,
                        const FigureTables& tables) {
  Json j;
  j["library_version"] = head.library_version;
  j["profile"] = TextOf(head.profile);
  j["summary"] = SummaryJson(SummaryOf(rows));
  j["rows"] = Json::array();
  for (const NetworkRow& row : rows) j["rows"].push_back(RowJson(row, path, tables));
  const std::string json = InsideScript(j.dump(1, ' ', false, Json::error_handler_t::replace));
  return Described(FilledPage(NetworkPage(), DataElement("network-data", "application/json", json)),
                   DescriptionOf(rows));
}

}  // namespace orsolva_host
