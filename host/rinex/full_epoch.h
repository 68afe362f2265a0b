// Fills the observation model, which keeps every satellite, signal and flag, from the epochs of a file.
#ifndef ORSOLVA_RINEX_FULL_EPOCH_H
#define ORSOLVA_RINEX_FULL_EPOCH_H

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/observation_header.h"

namespace orsolva_host {

class FullEpoch {
 public:
  /// Learns what the cells of each system mean. Must be called again when the header's types change.
  void Plan(const ObservationHeader& header);

  /// Gives a cell of RINEX 2 to the other signal that it may belong to (version2_codes.h).
  void Assign(char letter, std::size_t cell, SignalCode code);

  /// Keeps what an event block says for the epoch after it.
  void TakeEvent(int flag);

  /// A value of 0 is absent, as RINEX has it. Of a satellite listed twice the first line counts; a satellite
  /// without any value is left out.
  /// @param time  of the epoch on the GPS time scale
  void Fill(const EpochBlock& block, const Time_gbt& time, ObservationEpoch& epoch);

 private:
  struct CellMeaning {
    int signal = -1;  ///< place in SystemCells::codes, -1: not an observation that is kept
    char kind = ' ';
    double scale = 1;
  };
  struct SystemCells {
    std::vector<SignalCode> codes;
    std::vector<CellMeaning> cells;
  };

  CellMeaning MeaningOf(const ObservationHeader& header, char letter, const std::string& type,
                        SystemCells& system);
  void FillSatellite(const SystemCells& system, const EpochBlock& block, const SatelliteRow& row,
                     ObservationEpoch& epoch);

  std::array<SystemCells, 26> systems_;
  std::bitset<26 * 100> seen_;  ///< satellites of the epoch at hand
  std::uint32_t events_ = 0;
};

/// What divides the values of a type in the file.
double ScaleOf(const ObservationHeader& header, char letter, const std::string& type);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_FULL_EPOCH_H
