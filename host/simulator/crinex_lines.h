// Epochs as the lines of a CRINEX 3 file: differences between epochs instead of values.
//
// Source: Hatanaka 2008, A compression format and tools for GNSS observation data.
#ifndef ORSOLVA_SIMULATOR_CRINEX_LINES_H
#define ORSOLVA_SIMULATOR_CRINEX_LINES_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/simulator/observation_writer.h"

namespace orsolva_host {

class CrinexLines : public ObservationLines {
 public:
  using ObservationLines::ObservationLines;
  /// The two lines before the RINEX header.
  static std::string Preamble();
  void Append(const ObservationEpoch& epoch, std::string& out) override;

 private:
  static constexpr int kOrder = 3;

  /// An observation type of a satellite: its last value and differences.
  struct Arc {
    int reached = -1;  ///< order of the last difference; -1 without a value
    std::array<std::int64_t, kOrder + 1> last = {};
  };
  struct SatelliteArcs {
    std::int64_t epoch = -1;  ///< the last one in which it appeared
    std::vector<Arc> arcs;
    std::string flags;  ///< two characters a cell
  };

  void AppendEpochLine(const ObservationEpoch& epoch, std::string& out);
  void AppendSatellite(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                       std::string& out);
  static void AppendCell(std::int64_t value, Arc& arc, std::string& out);

  std::string last_line_;
  std::int64_t epoch_ = 0;
  std::map<SatelliteId, SatelliteArcs> satellites_;
  std::vector<ObservationCell> cells_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_CRINEX_LINES_H
