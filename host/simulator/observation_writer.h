// Writes epochs as a RINEX 3.05 observation file.
#ifndef ORSOLVA_SIMULATOR_OBSERVATION_WRITER_H
#define ORSOLVA_SIMULATOR_OBSERVATION_WRITER_H

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "host/output/byte_sink.h"
#include "host/rinex/satellite_names.h"
#include "host/simulator/scenario.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// One observation of a file: its value in thousandths, 0 where it is missing, and its two flags.
struct ObservationCell {
  std::int64_t value = 0;
  char loss_of_lock = ' ';
  char strength = ' ';

  bool HasFlags() const { return loss_of_lock != ' ' || strength != ' '; }
};

/// In which order a file lists the signals of a system.
enum class SignalOrder { kScenario, kCodes };

/// Turns epochs into the lines of a file body.
class ObservationLines {
 public:
  explicit ObservationLines(const Scenario& scenario, SignalOrder order = SignalOrder::kScenario);
  virtual ~ObservationLines() = default;

  /// The header, with the approximate position and the first epoch given.
  std::string Header(const std::array<double, 3>& position_m, const Time_gbt& first) const;
  /// Appends the lines of an epoch.
  virtual void Append(const ObservationEpoch& epoch, std::string& out);

 protected:
  /// "> 2020 06 25 00 00 30.0000000  0 35"
  static std::string EpochLine(const ObservationEpoch& epoch);
  /// The cells of a satellite in file order.
  void TakeCells(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                 std::vector<ObservationCell>& cells) const;

 private:
  static ObservationCell CellOf(const SignalObservation& observation, char kind);
  std::string TypeLines(char letter) const;
  std::string GlonassLines() const;

  Scenario scenario_;
  std::string kinds_;                                      ///< first letters of the types of a signal
  std::array<std::vector<SignalCode>, kSystems> signals_;  ///< in file order
  std::vector<ObservationCell> cells_;
};

/// Streams a file: the header is written with the first epoch.
class ObservationWriter {
 public:
  /// @param crinex  CRINEX 3 instead of plain lines
  ObservationWriter(std::unique_ptr<ByteSink> sink, const Scenario& scenario,
                    const std::array<double, 3>& header_position_m, bool crinex = false,
                    SignalOrder order = SignalOrder::kScenario);
  ~ObservationWriter();

  void Write(const ObservationEpoch& epoch);
  /// @throws WriteError, as Write
  void Close();

 private:
  void Flush();

  std::unique_ptr<ByteSink> sink_;
  std::unique_ptr<ObservationLines> lines_;
  std::array<double, 3> header_position_m_;
  bool begun_ = false;
  std::string buffer_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_OBSERVATION_WRITER_H
