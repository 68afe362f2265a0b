// The collected detail as JSON: numbers in base64 columns of 16-bit little-endian integers.
#ifndef ORSOLVA_REPORT_DETAIL_JSON_H
#define ORSOLVA_REPORT_DETAIL_JSON_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/report/detail_collector.h"

namespace orsolva_host {

/// RFC 4648, with padding.
std::string Base64(std::string_view bytes);

/// One JSON object on one line; the page's decode.ts is its reader.
/// @param cutoff_deg  elevation cut-off
std::string WriteDetailJson(const DetailCollector& detail, double cutoff_deg);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DETAIL_JSON_H
