// The part of the text report that says what was read and with which settings.
#ifndef ORSOLVA_REPORT_RUN_TEXT_H
#define ORSOLVA_REPORT_RUN_TEXT_H

#include <string>
#include <string_view>
#include <vector>

#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// The part with its heading.
std::string RunText(const Report& report, const TextStyle& style);

/// "a, b"; a dash for nothing.
std::string Joined(const std::vector<std::string>& parts, std::string_view between);

/// Where an interval or a position comes from, in words.
std::string SourceText(const std::string& source);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_RUN_TEXT_H
