// What the header and the name of an observation file state about a station and its data, whatever the
// format. What is not stated is absent or empty.
#ifndef ORSOLVA_OBSERVATION_STATION_DESCRIPTION_H
#define ORSOLVA_OBSERVATION_STATION_DESCRIPTION_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orsolva_host {

/// Times as in ObservationEpoch.
struct FileNameStatement {
  std::string station;  ///< four characters, or nine of a long name; upper case
  std::optional<std::int64_t> begin_ns;
  std::optional<double> period_s;  ///< that the data lie in, from the beginning on
  std::optional<double> interval_s;
};

/// A header line among the observations that changes what the header said.
struct DescriptionChange {
  std::string what;  ///< "antenna", "receiver" or "marker"
  std::string before;
  std::string after;
};

struct StationDescription {
  std::string marker;
  std::optional<double> interval_s;
  std::optional<std::int64_t> first_ns, last_ns;
  std::optional<std::array<double, 3>> position_m;        ///< Earth-centred, Earth-fixed
  std::optional<std::array<double, 3>> given_position_m;  ///< by the user, to compare with
  std::array<std::optional<int>, 100> glonass_channels;   ///< by slot
  FileNameStatement name;
  std::vector<DescriptionChange> changes;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_STATION_DESCRIPTION_H
