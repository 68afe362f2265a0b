// Figures over time: the station, the signals of each system, satellites and their signals in bins of five
// minutes of GPS time, the windows of ROTI (ionosphere_rate.h).
//
//   observed_epochs  station: epochs with a code or phase; satellite: such epochs of it from the cut-off up;
//                    signal: epochs with code and phase of it, from the cut-off up; of a system summed over
//                    its satellites
//   expected_epochs  satellite: epochs of the stream at which it is healthy and from the cut-off up; signal:
//                    the same, from the bin on in which the satellite was first observed with it; of a system
//                    summed. Missing epochs of the stream are in neither. Absent without an orbit: then
//                    all elevations count, and a system's sums are over its satellites with orbits, if any
//   satellites       mean number per epoch: with a code or phase; of a signal with both, at any elevation
//   elevation_deg    mean over the epochs observed
//   snr_dbhz         mean over all values above zero
//   multipath_m      RMS about the moving mean, from the cut-off up (code_multipath.h)
//   slips            events that IsSlip, from the cut-off up; of a signal those that name it
//   roti             of the satellite in this window, TECU/min
//   pdop, enu_m      means over the position solutions (position.h); east, north and up of the first position
//                    used: the header's where it fits the codes, else the one computed from them
//   clock_s          of the first position solution: a mean would mix what is before and after a reset
//
// What a phase shows is known late (slip_detector.h, moving_scatter.h): a bin comes out when the phases of
// kLateness_ns after its end are decided. Memory: the bins of that time, 50 bytes per signal of a satellite.
#ifndef ORSOLVA_ANALYSIS_FIGURES_TIME_SERIES_H
#define ORSOLVA_ANALYSIS_FIGURES_TIME_SERIES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "host/analysis/figures/code_multipath.h"
#include "host/analysis/figures/ionosphere_rate.h"
#include "host/analysis/figures/position.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/sky.h"
#include "host/analysis/series_row.h"
#include "host/analysis/slips/event.h"

namespace orsolva_host::analysis {

class TimeSeries {
 public:
  static constexpr std::int64_t kBin_ns = 300 * kNanosecondsPerSecond;
  /// A block is judged at most 660 s after a value or, where none follows, 600 s after the last, found out up
  /// to a bin later; the first epoch of an arc is decided with the second, up to 600 s later.
  static constexpr std::int64_t kLateness_ns = 2400 * kNanosecondsPerSecond;

  explicit TimeSeries(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  /// @param roster, sky  have taken the epoch
  void AddEpoch(const ObservationEpoch& epoch, const SignalRoster& roster, const Sky& sky);
  /// The solution of the epoch that is added next.
  void AddSolution(std::int64_t time_ns, double clock_m, const Position::Solution& solution);
  void AddEvent(const Event& event, const SignalRoster& roster);
  void AddMultipath(SatelliteId id, SignalCode code, const JudgedBlock& block, const SignalRoster& roster);
  void AddRoti(const RotiWindow& window, const SignalRoster& roster);

  /// The time before which all phases are decided.
  std::int64_t DecidedBefore() const;
  /// Whether the epoch added last began a bin.
  bool BeganBin() const { return began_bin_; }

  /// Gives out the bins that are complete; all of them at the end of the stream.
  void Close(const SignalRoster& roster, bool all);
  /// The rows given out since the last call: by bin, the station, then signals by system and code, then
  /// satellites by system and number, each followed by its signals.
  std::vector<SeriesRow> Take();

 private:
  struct Mean {
    double sum = 0;
    Count values = 0;

    void Add(double value) {
      sum += value;
      ++values;
    }
    double Value() const { return values > 0 ? sum / static_cast<double>(values) : kAbsent; }
  };
  struct Signal {
    std::uint32_t epochs = 0;  ///< with code and phase
    std::uint32_t observed = 0;
    std::uint32_t slips = 0;
    Mean snr_dbhz;
    double squares_m2 = 0;
    Count multipath_values = 0;

    void Add(const Signal& more);
    void FillIn(SeriesRow& row) const;
  };
  struct Satellite {
    std::uint32_t observed = 0;
    std::uint32_t expected = 0;
    std::uint32_t slips = 0;
    Mean elevation_deg;
    double roti = kAbsent;
  };
  struct Bin {
    std::int64_t number = 0;
    std::uint32_t epochs = 0;
    std::uint64_t satellite_epochs = 0;
    std::uint32_t slips = 0;
    double clock_m = kAbsent;
    Mean pdop;
    std::array<Mean, 3> enu_m;
    std::vector<Satellite> satellites;  ///< of the roster
    std::vector<Signal> signals;        ///< of the roster
  };
  /// Of a system's signal.
  struct Sum {
    Signal total;
    Count observed_with_orbit = 0;
    Count expected = 0;
    bool has_orbit = false;  ///< any of its satellites
    bool seen = false;
  };

  Bin& BinAt(std::int64_t time_ns);
  Bin* FindBin(std::int64_t time_ns, const SignalRoster& roster);
  void AddSatellite(const ObservationEpoch& epoch, std::size_t place, const SignalRoster& roster,
                    const Sky& sky, Bin& bin);
  void AddExpected(const Sky& sky, Bin& bin);
  void GiveOut(const Bin& bin, const SignalRoster& roster);
  std::vector<Sum> SumsOf(const Bin& bin, const SignalRoster& roster) const;
  void GiveOutSums(const Bin& bin, const SignalRoster& roster);
  void GiveOutStation(const Bin& bin);
  void GiveOutSatellite(const Bin& bin, std::size_t satellite, const SignalRoster& roster);
  void GiveOutSignalsOf(const Bin& bin, std::size_t satellite, const SignalRoster& roster);
  bool IsExpected(const Bin& bin, std::size_t signal, const SignalRoster& roster) const;

  double cutoff_deg_;
  std::deque<Bin> bins_;              ///< by time
  std::deque<std::int64_t> newest_;   ///< times of the epochs whose steps may be open
  std::vector<bool> has_orbit_;       ///< of each satellite of the roster
  std::vector<std::int64_t> begins_;  ///< of each signal, the bin in which it was seen first; -1: never
  bool began_bin_ = false;
  std::vector<SeriesRow> rows_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_TIME_SERIES_H
