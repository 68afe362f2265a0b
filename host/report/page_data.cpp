#include "host/report/page_data.h"

#include "host/output/embedded_file.h"

ORSOLVA_EMBED("orsolva_report_page", ORSOLVA_PAGES "/report.html");
ORSOLVA_EMBED("orsolva_network_page", ORSOLVA_PAGES "/network.html");

extern "C" const char orsolva_report_page_begin[];
extern "C" const char orsolva_report_page_end[];
extern "C" const char orsolva_network_page_begin[];
extern "C" const char orsolva_network_page_end[];

namespace orsolva_host {

std::string_view ReportPage() {
  return {orsolva_report_page_begin,
          static_cast<std::size_t>(orsolva_report_page_end - orsolva_report_page_begin)};
}

std::string_view NetworkPage() {
  return {orsolva_network_page_begin,
          static_cast<std::size_t>(orsolva_network_page_end - orsolva_network_page_begin)};
}

const char* const kPageDataMark = "<!--DATA-->";

std::string FilledPage(std::string_view page, std::string_view elements) {
  const std::size_t mark = page.find(kPageDataMark);
  std::string html(page.substr(0, mark));
  html += elements;
  html += page.substr(mark + std::string_view(kPageDataMark).size());
  return html;
}

std::string Described(std::string html, const std::string& description) {
  constexpr std::string_view kMark = "content=\"Observation quality\"";
  std::string text = "content=\"";
  for (const char c : description) {
    if (c == '"') {
      text += "&quot;";
    } else if (c == '&') {
      text += "&amp;";
    } else if (c == '<') {
      text += "&lt;";
    } else {
      // A line end in a header's text would end the line of the description.
      text += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
  }
  const std::size_t mark = html.find(kMark);
  if (mark != std::string::npos) html.replace(mark, kMark.size(), text + "\"");
  return html;
}

std::string DataElement(const char* id, const char* type, std::string_view data) {
  std::string element = "<script type=\"";
  element += type;
  element += "\" id=\"";
  element += id;
  element += "\">";
  element += data;
  element += "</script>\n";
  return element;
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

}  // namespace orsolva_host
