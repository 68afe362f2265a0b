// The collected detail as the page carries it.
#ifndef ORSOLVA_REPORT_DETAIL_DATA_H
#define ORSOLVA_REPORT_DETAIL_DATA_H

#include <string>
#include <string_view>

#include "host/report/detail_collector.h"

namespace orsolva_host {

/// RFC 4648, with padding.
std::string Base64(std::string_view bytes);

/// RFC 1952.
std::string Gzip(std::string_view bytes);

/// A header and columns: the header's length (32 bits, little-endian), the header (one JSON object), then the
/// columns that the header names by their first byte. A column of n 16-bit numbers is its n low bytes, then
/// its n high bytes, so that it packs well; smooth columns hold the change from row to row, modulo 65536. The
/// page's detail.ts is the reader.
/// @param cutoff_deg  elevation cut-off
std::string EncodeDetail(const DetailCollector& detail, double cutoff_deg);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DETAIL_DATA_H
