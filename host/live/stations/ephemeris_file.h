// A file as second source of ephemerides.
#ifndef ORSOLVA_LIVE_STATIONS_EPHEMERIS_FILE_H
#define ORSOLVA_LIVE_STATIONS_EPHEMERIS_FILE_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/formats/rtcm/ephemeris.h"
#include "host/observation/broadcast_records.h"

namespace orsolva_host::live {

/// Messages with the records made from them, in one order; those of a navigation file are made from its
/// records.
struct FileEphemerides {
  std::vector<rtcm::EphemerisMessage> messages;
  BroadcastRecords records;
};

/// Reads a recording of RTCM 3 or a RINEX navigation file, compressed or not. A message has what RTCM 3 sends
/// of a record; SBAS is left out, which has none.
/// @param near_ns  a time within half a week of a recording @throws FileError; RunError when it holds none
FileEphemerides ReadEphemerides(const std::string& path, std::int64_t near_ns);

/// Without those whose reference time is earlier, s on the GPS time scale.
FileEphemerides Since(const FileEphemerides& all, double oldest_s);

/// Whether a file has been written since it was last looked at.
class FileWatch {
 public:
  explicit FileWatch(std::string path) : path_(std::move(path)) {}
  /// @return false also the first time, and where there is no file
  bool Changed();

 private:
  std::string path_;
  std::optional<std::filesystem::file_time_type> written_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_EPHEMERIS_FILE_H
