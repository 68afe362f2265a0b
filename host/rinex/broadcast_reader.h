// Records of a navigation file as the plain data of host/observation, for every system.
#ifndef ORSOLVA_RINEX_BROADCAST_READER_H
#define ORSOLVA_RINEX_BROADCAST_READER_H

#include <string_view>

#include "host/observation/broadcast_records.h"
#include "host/rinex/navigation_records.h"

namespace orsolva_host {

/// Whether the values of a record are state vectors (GLONASS, SBAS) and not Keplerian elements.
inline bool IsStateVector(char letter) { return letter == 'R' || letter == 'S'; }

/// Adds a record of RINEX 2, 3 or 4 (3.05, tables A6 to A16). Reference times become GPS time: BDS time plus
/// 14 s, UTC (GLONASS) plus the leap seconds of its date; SBAS and the others count in GPS time.
/// @param message  of RINEX 4, such as "FNAV"; empty otherwise
void AddBroadcast(const NavigationRecord& record, std::string_view message, BroadcastRecords& records);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_BROADCAST_READER_H
