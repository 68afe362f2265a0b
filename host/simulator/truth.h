// Truth of a simulated span: everything that a quality check should find, counted during generation.
#ifndef ORSOLVA_SIMULATOR_TRUTH_H
#define ORSOLVA_SIMULATOR_TRUTH_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "orsolva/records.h"

namespace orsolva_host {

/// A sum of values with its count.
struct MeanOf {
  std::uint64_t count = 0;
  double sum = 0;

  void Add(double value) {
    ++count;
    sum += value;
  }
  double Mean() const { return count ? sum / static_cast<double>(count) : 0.0; }
};

/// Five degrees of elevation, from 0; the last one ends at 90.
inline constexpr int kTruthBin_deg = 5;
inline constexpr std::size_t kTruthBins = 18;

/// Errors and strength of a signal within a range of elevations.
struct BinTruth {
  MeanOf snr, noise_square, multipath_square, phase_noise_square;
};

struct SignalTruth {
  std::string name;                ///< such as "1C"
  int number = 0;                  ///< signal code number of the library
  std::uint64_t tracked = 0;       ///< epochs delivered with this signal
  std::uint64_t above_cutoff = 0;  ///< those of them with the satellite above the truth cut-off
  std::uint64_t arcs = 0;          ///< times the signal was acquired
  MeanOf noise_square;             ///< m^2, above the cut-off
  MeanOf multipath_square;         ///< m^2, above the cut-off
  MeanOf code_error_square;        ///< m^2, above the cut-off: noise, multipath and code jumps together
  MeanOf detrended_square;  ///< m^2, above the cut-off: noise and multipath minus their moving mean, see
                            ///< Truth; a code jump restarts the mean
  MeanOf snr;               ///< dB-Hz, every epoch tracked
  MeanOf snr_above_cutoff;
  MeanOf snr_below30;  ///< at and below 30 degrees
  MeanOf snr_above30;
  MeanOf phase_noise_square;  ///< m^2, above the cut-off; with scintillation
  std::array<BinTruth, kTruthBins> by_elevation;
  std::uint64_t flags_at_slips = 0;    ///< loss-of-lock flags in epochs with an injected slip
  std::uint64_t slips_unflagged = 0;   ///< epochs with a slip and no flag
  std::uint64_t flags_at_arcs = 0;     ///< in the first epoch of an arc
  std::uint64_t flags_elsewhere = 0;   ///< with neither
  std::uint64_t half_cycle_flags = 0;  ///< epochs with an unresolved half-cycle ambiguity
};

struct SatelliteTruth {
  char system = 'G';
  int number = 0;
  bool healthy = true;
  std::uint64_t visible = 0;       ///< nominal epochs of the span with the satellite above the horizon
  std::uint64_t above_cutoff = 0;  ///< nominal epochs with it above the truth cut-off, delivered or not
  /// Epochs delivered with the satellite above the truth cut-off and two of its signals tracked, or its only
  /// one.
  std::uint64_t two_signals = 0;
  std::vector<SignalTruth> signals;
};

/// One fault injected into the data.
struct InjectedFault {
  std::string kind;       ///< as in a scenario file, such as "slip"
  std::string satellite;  ///< such as "G04"; empty when all are affected
  std::string signal;     ///< empty when all are affected
  Time_gbt time = {};     ///< of the first epoch affected
  double duration_s = 0;
  double size = 0;
  double elevation_deg = 0;  ///< with a satellite
  bool seen = true;          ///< false when the signal was not tracked at the time, so nothing shows
  bool flagged = false;      ///< a slip with a loss-of-lock flag
};

struct ClockMoment {
  Time_gbt time = {};
  double bias_s = 0;
};

/// Where the antenna was, Earth-fixed.
struct TrackPoint {
  Time_gbt time = {};
  std::array<double, 3> position_m = {};
};

struct Truth {
  std::array<double, 3> position_m = {};  ///< at rest
  std::array<double, 3> header_position_m = {};
  std::vector<TrackPoint> track;  ///< of a moving antenna, every ten seconds and more
  double cutoff_deg = 10;
  double interval_s = 30;
  /// Epochs of the moving mean subtracted from the code error; equal to the averaging window of the check.
  int mean_window = 10;
  std::uint64_t nominal_epochs = 0;
  std::uint64_t delivered_epochs = 0;  ///< including duplicates
  std::uint64_t missing_epochs = 0;
  Time_gbt first = {};
  Time_gbt last = {};
  std::vector<SatelliteTruth> satellites;
  std::vector<InjectedFault> faults;
  std::vector<ClockMoment> clock;  ///< at the start, every ten minutes and at each jump
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_TRUTH_H
