// What header and name of an observation file state, as the plain data that an analysis compares with.
#ifndef ORSOLVA_RINEX_STATION_STATEMENTS_H
#define ORSOLVA_RINEX_STATION_STATEMENTS_H

#include <string>
#include <string_view>

#include "host/observation/station_description.h"
#include "host/rinex/observation_header.h"

namespace orsolva_host {

/// Of a RINEX name, long or short, in any case and with or without the suffix of a compression: station,
/// begin, period and interval. Short names: a day, an hour (sessions a to x) or a quarter of an hour
/// (RINEX 2.11, section 4); numbered sessions have no period. Empty for any other name.
FileNameStatement StatementOfName(std::string_view name);

/// @param path  of the file, for its name
StationDescription DescriptionOf(const ObservationHeader& header, const std::string& path);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_STATION_STATEMENTS_H
