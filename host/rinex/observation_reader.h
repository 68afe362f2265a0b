// Reads an observation file epoch by epoch into the library's records.
#ifndef ORSOLVA_RINEX_OBSERVATION_READER_H
#define ORSOLVA_RINEX_OBSERVATION_READER_H

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/observation/station_description.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/full_epoch.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/observation_header.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/timed_blocks.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// How the cells of a system are used, one entry per observation type.
struct CellPlan {
  int signal = -1;              ///< index in SystemPlan::numbers; -1: the cell is ignored
  char kind = ' ';              ///< 'C' pseudorange, 'L' phase, 'D' Doppler, 'S' signal strength
  bool strength_digit = false;  ///< SNR is taken from the signal strength digit of the phase
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
  std::vector<char> seen;  ///< by signal: whether a pseudorange has been seen; kept only if there are choices
};

struct ObservationOptions {
  /// For signals without an S type, use 6 dB-Hz times the digit of the phase (1 to 9), the lower end of the
  /// digit's range (RINEX 3.05, table 14).
  bool snr_from_strength = false;
  InputLimits limits;
};

/// Streams the epochs of RINEX 2, 3 and 4 observation files, plain or CRINEX, compressed or not.
///
/// Epochs are seconds since 1970-01-01 on the GPS time scale: the calendar of the file, unless the file
/// uses BDS time (14 s are added) or GLONASS time (UTC; the header's leap seconds are added).
/// Missing values are 0. Types of one band and tracking letter form one signal; a signal without any value is
/// omitted. Only the first 8 signals of a satellite and the first 80 satellites of an epoch are kept, with a
/// notice. Events (flags above 1) are skipped, but their header lines are applied. A whole header of another
/// version or form among the observations begins a part of that form. Epochs are delivered in
/// the order of the file, including duplicate ones, those that go backwards in time and those with a wrong
/// time, which give a notice.
///
/// Codes of RINEX 2 are mapped to signals as described in version2_codes.h.
class ObservationReader {
 public:
  /// Opens the file and reads its header. @throws FileError
  ObservationReader(const std::string& path, Diagnostics& diagnostics,
                    const ObservationOptions& options = {});
  /// Reads from an open source. @param name  file name in notices
  ObservationReader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
                    const ObservationOptions& options = {});

  const ObservationHeader& Header() const { return header_; }

  /// Fills the next epoch with observations. If reading fails after the first epoch, a notice says so and
  /// Failure() returns the error; the epochs delivered before are valid.
  /// @return false at the end of the data that can be read
  /// @throws FileError when reading fails before the first epoch
  bool Next(ObsEpoch_QC_gbt& epoch);

  /// The next epoch twice: as the library's record, which has its limits, and with everything the file holds.
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full);

  /// Whether the time of the last epoch is wrong, as the next one shows (TimedBlocks).
  bool HasWrongTime() const { return blocks_.HasWrongTime(); }

  /// Why reading ended before the end of the file; absent when it did not.
  const std::optional<FileError>& Failure() const { return failure_; }

  /// Header lines read so far among the observations that change antenna, receiver or marker; the first
  /// hundred.
  const std::vector<DescriptionChange>& Changes() const { return changes_; }

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
  void NoteChanges(const std::array<std::string, 3>& before);
  void CheckOrder(const Time_gbt& time);
  void TakeEvent(const EpochBlock& block);
  void TakeOtherForm(const EpochBlock& block);
  void NameEvent(const EpochBlock& block);
  void FillEpoch(ObsEpoch_QC_gbt& epoch);
  void AddSatellite(const SatelliteRow& row, ObsEpoch_QC_gbt& epoch);
  bool IsSupported(const SatelliteRow& row, int slot);
  void FillSignals(const SystemPlan& plan, const SatelliteRow& row, Satellite_gbt& satellite);

  std::string name_;
  Diagnostics& diagnostics_;
  ObservationOptions options_;
  LineReader lines_;
  ObservationHeader header_;
  HeaderParser parser_;
  std::unique_ptr<ObservationBody> body_;
  std::array<SystemPlan, kSystems> plans_;
  TimedBlocks blocks_;
  EpochBlock block_;
  FullEpoch full_;
  std::vector<Signal_QC_gbt> signals_;       ///< of the current satellite, including those beyond 8
  std::array<std::size_t, 26> unsupported_;  ///< kinds of notices, by system letter
  std::size_t empty_satellite_;              ///< kind of notice
  std::optional<Time_gbt> last_time_;
  std::optional<FileError> failure_;
  std::vector<DescriptionChange> changes_;
  std::array<std::uint64_t, kSystems> seen_ = {};  ///< satellites of the epoch, one bit per number
  std::int64_t time_shift_s_ = 0;
  bool has_strength_ = false;
  bool has_choices_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_OBSERVATION_READER_H
