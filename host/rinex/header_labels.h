// Labels of header lines, to recognise such lines among the observations.
#ifndef ORSOLVA_RINEX_HEADER_LABELS_H
#define ORSOLVA_RINEX_HEADER_LABELS_H

#include <string_view>

namespace orsolva_host {

/// The label of a header line, from column 61 on.
std::string_view HeaderLabel(std::string_view line);

/// Whether the line carries a label of an observation file's header.
bool IsHeaderLine(std::string_view line);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_HEADER_LABELS_H
