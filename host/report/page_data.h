// What the pages of the program have in common: a built page, and data in script elements of it.
#ifndef ORSOLVA_REPORT_PAGE_DATA_H
#define ORSOLVA_REPORT_PAGE_DATA_H

#include <string>
#include <string_view>

namespace orsolva_host {

/// The pages without data, as host/web builds them: of one report, and the index of many.
std::string_view ReportPage();
std::string_view NetworkPage();

/// Where the data go in a page that host/web builds.
extern const char* const kPageDataMark;

/// The built page with elements of data in place of the mark.
std::string FilledPage(std::string_view page, std::string_view elements);

/// The page with a description in its head, which previews and searches of files show.
std::string Described(std::string html, const std::string& description);

/// A script element that is never run and holds data. @param data  InsideScript() or letters and digits
std::string DataElement(const char* id, const char* type, std::string_view data);

/// JSON that is safe inside a script element: "<" and the two line ends that JSON allows and scripts do not
/// are written as escapes.
std::string InsideScript(std::string json);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_PAGE_DATA_H
