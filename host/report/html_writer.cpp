#include "host/report/html_writer.h"

#include <utility>

#include "host/report/detail_data.h"
#include "host/report/json_writer.h"

// The built page, embedded as it lies in host/web/dist.
__asm__(
    ".section .rodata\n"
    ".global orsolva_page_begin\n"
    ".global orsolva_page_end\n"
    "orsolva_page_begin:\n"
    ".incbin \"" ORSOLVA_PAGE_FILE
    "\"\n"
    "orsolva_page_end:\n"
    ".byte 0\n"
    ".text\n");

extern "C" const char orsolva_page_begin[];
extern "C" const char orsolva_page_end[];

namespace orsolva_host {
namespace {

constexpr EpochIndex kLongestStride = 1U << 20U;

void AddData(const char* id, const char* type, std::string_view data, std::string& page) {
  page += "<script type=\"";
  page += type;
  page += "\" id=\"";
  page += id;
  page += "\">";
  page += data;
  page += "</script>\n";
}

}  // namespace

const char* const kPageDataMark = "<!--DATA-->";

std::string_view PageTemplate() {
  return {orsolva_page_begin, static_cast<std::size_t>(orsolva_page_end - orsolva_page_begin)};
}

std::string InsideScript(std::string json) {
  const auto replace = [&json](std::string_view what, std::string_view with) {
    std::string out;
    std::size_t from = 0;
    for (std::size_t at; (at = json.find(what, from)) != std::string::npos; from = at + what.size()) {
      out.append(json, from, at - from).append(with);
    }
    if (from > 0) json = out.append(json, from, std::string::npos);
  };
  replace("<", "\\u003c");
  replace("\xe2\x80\xa8", "\\u2028");
  replace("\xe2\x80\xa9", "\\u2029");
  return json;
}

std::string WriteHtml(const Report& report, DetailCollector& detail, std::size_t most_bytes) {
  Report whole = report;
  whole.show_satellites = true;
  const std::string json = InsideScript(WriteJson(whole));
  const auto packed = [&] { return Base64(Gzip(EncodeDetail(detail, report.run.elevation_cutoff_deg))); };
  const std::string_view page = PageTemplate();
  std::string points = packed();
  while (page.size() + json.size() + points.size() > most_bytes && detail.Stride() < kLongestStride) {
    detail.Thin();
    points = packed();
  }
  const std::size_t mark = page.find(kPageDataMark);
  std::string html(page.substr(0, mark));
  AddData("report-data", "application/json", json, html);
  AddData("detail-data", "text/plain", points, html);
  html += page.substr(mark + std::string_view(kPageDataMark).size());
  return html;
}

}  // namespace orsolva_host
