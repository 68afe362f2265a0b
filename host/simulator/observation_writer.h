// Writes epochs as a RINEX 3.05 observation file.
#ifndef ORSOLVA_SIMULATOR_OBSERVATION_WRITER_H
#define ORSOLVA_SIMULATOR_OBSERVATION_WRITER_H

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/output/byte_sink.h"
#include "host/rinex/satellite_names.h"
#include "host/simulator/scenario.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// Turns epochs into the lines of a file body.
class ObservationLines {
 public:
  explicit ObservationLines(const Scenario& scenario);
  virtual ~ObservationLines() = default;

  /// The header, with the approximate position and the first epoch given.
  std::string Header(const std::array<double, 3>& position_m, const Time_gbt& first) const;
  /// Appends the lines of an epoch.
  virtual void Append(const ObsEpoch_QC_gbt& epoch, std::string& out);

 protected:
  /// "> 2020 06 25 00 00 30.0000000  0 35"
  static std::string EpochLine(const ObsEpoch_QC_gbt& epoch);
  /// Signal code numbers of a system in file order; each has three types: code, phase and SNR.
  const std::vector<int>& NumbersOf(std::uint8_t system) const { return numbers_[SystemPlace(system)]; }
  /// The cells of a satellite in thousandths, in file order; 0 where a signal is missing.
  void TakeCells(const Satellite_gbt& satellite, std::vector<std::int64_t>& cells) const;

 private:
  static std::size_t SystemPlace(std::uint8_t system);
  std::string TypeLines(char letter) const;
  std::string GlonassLines() const;

  Scenario scenario_;
  std::array<std::vector<int>, kSystems> numbers_;
  std::array<std::array<std::uint8_t, 256>, kSystems> places_ = {};  ///< of a number in its list, 1-based
  std::vector<std::int64_t> cells_;
};

/// Streams a file: the header is written with the first epoch.
class ObservationWriter {
 public:
  /// @param crinex  CRINEX 3 instead of plain lines
  ObservationWriter(std::unique_ptr<ByteSink> sink, const Scenario& scenario,
                    const std::array<double, 3>& header_position_m, bool crinex = false);
  ~ObservationWriter();

  void Write(const ObsEpoch_QC_gbt& epoch);
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
