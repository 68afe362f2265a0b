// Reads an observation file epoch by epoch into the library's records.
#ifndef ORSOLVA_RINEX_OBSERVATION_READER_H
#define ORSOLVA_RINEX_OBSERVATION_READER_H

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/full_epoch.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/observation_header.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// What is done with the cells of one system, one entry an observation type.
struct CellPlan {
  int signal = -1;              ///< place in SystemPlan::numbers; -1: the cell is passed over
  char kind = ' ';              ///< 'C' pseudorange, 'L' phase, 'D' Doppler, 'S' signal strength
  bool strength_digit = false;  ///< the digit after the phase stands for the signal strength
  double scale = 1;
};

/// A cell of RINEX 2 that belongs to one of two signals, see version2_codes.h.
struct SignalChoice {
  std::size_t cell = 0;
  int first = -1;
  int second = -1;
};

struct SystemPlan {
  std::vector<std::uint8_t> numbers;  ///< signal code numbers in the order of their first types
  std::vector<CellPlan> cells;
  std::vector<SignalChoice> choices;
  std::vector<char> seen;  ///< by signal: whether a pseudorange was met; kept only where there are choices
};

struct ObservationOptions {
  /// Where a signal has no S type, take 6 dB-Hz times the digit after its phase (1 to 9), the lower end of
  /// the digit's range (RINEX 3.05, table 14).
  bool snr_from_strength = false;
  InputLimits limits;
};

/// Streams the epochs of RINEX 2, 3 and 4 observation files, plain or CRINEX, compressed or not.
///
/// Epochs are seconds since 1970-01-01 on the GPS time scale: the calendar of the file as it stands, unless
/// the file counts in BDS time (14 s are added) or GLONASS time (UTC; the header's leap seconds are added).
/// Missing values are 0. Types of one band and tracking letter form one signal; a signal without any value is
/// left out. Only the first 8 signals of a satellite and the first 80 satellites of an epoch are kept, with a
/// notice. Events (flags above 1) are passed over, but their header lines are taken. Epochs come in the order
/// of the file, also those that stand twice or run backwards, which get a notice.
///
/// Codes of RINEX 2 become signals as version2_codes.h says.
class ObservationReader {
 public:
  /// Opens the file and reads its header. @throws FileError
  ObservationReader(const std::string& path, Diagnostics& diagnostics,
                    const ObservationOptions& options = {});
  /// Reads from a source already open. @param name  what notices call the file
  ObservationReader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
                    const ObservationOptions& options = {});

  const ObservationHeader& Header() const { return header_; }

  /// Fills the next epoch with observations. Where the file cannot be read on after an epoch was given, a
  /// notice says so and Failure() tells why; the epochs given before are good.
  /// @return false at the end of the data that can be read
  /// @throws FileError when the file cannot be read on before its first epoch
  bool Next(ObsEpoch_QC_gbt& epoch);

  /// The next epoch twice: as the library's record, which has its limits, and with everything the file holds.
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full);

  /// Why reading ended before the end of the file; absent when it did not.
  const std::optional<FileError>& Failure() const { return failure_; }

  /// False once the whole file is known to hold no signal strength at all.
  bool HasSignalStrength() const { return has_strength_; }

 private:
  bool Advance(ObsEpoch_QC_gbt& epoch);
  void MakePlans();
  void PlanSystem(int slot);
  CellPlan PlanCell(int slot, const std::string& type, SystemPlan& plan);
  CellPlan PlanCell2(int slot, const std::string& type, SystemPlan& plan);
  void PlanStrengthDigits(SystemPlan& plan);
  void PlanTimeScale();
  void SettleChoices();
  void AssignChoices();
  void CheckOrder(const Time_gbt& time);
  void TakeEvent(const EpochBlock& block);
  void NameEvent(const EpochBlock& block);
  void FillEpoch(ObsEpoch_QC_gbt& epoch);
  void AddSatellite(const SatelliteRow& row, ObsEpoch_QC_gbt& epoch);
  bool IsJudged(const SatelliteRow& row, int slot);
  void FillSignals(const SystemPlan& plan, const SatelliteRow& row, Satellite_gbt& satellite);

  std::string name_;
  Diagnostics& diagnostics_;
  ObservationOptions options_;
  LineReader lines_;
  ObservationHeader header_;
  HeaderParser parser_;
  std::unique_ptr<ObservationBody> body_;
  std::array<SystemPlan, kSystems> plans_;
  EpochBlock block_;
  FullEpoch full_;
  std::vector<Signal_QC_gbt> signals_;    ///< of the satellite at hand, also those beyond 8
  std::array<std::size_t, 26> unjudged_;  ///< kinds of notices, by system letter
  std::size_t empty_satellite_;           ///< kind of notice
  std::optional<Time_gbt> last_time_;
  std::optional<FileError> failure_;
  std::array<std::uint64_t, kSystems> met_ = {};  ///< satellites of the epoch, a bit a number
  std::int64_t time_shift_s_ = 0;
  bool has_strength_ = false;
  bool has_choices_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_OBSERVATION_READER_H
