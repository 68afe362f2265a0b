// Writes a verdict as text.
#ifndef ORSOLVA_REPORT_VERDICT_TEXT_H
#define ORSOLVA_REPORT_VERDICT_TEXT_H

#include <string>

#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// The grade, then a line for every outcome that is not good, and how far failed ones miss their limit.
std::string VerdictText(const ProfileVerdict& verdict, const TextStyle& style);

/// The tone of a grade.
Tone ToneOf(const std::string& grade);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_VERDICT_TEXT_H
