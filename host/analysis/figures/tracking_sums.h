// Arcs and interruptions of phases by signal, satellite and system.
//
// An arc of a signal is a run of phases without a break. It goes on over a hole of up to 600 s whose end is
// found continuous. It ends with any slip of the signal, also one that the detector takes off, with a jump,
// where a hole is left open, with a longer hole, while the detector leaves the signal out as unstable, and at
// the cut-off. Its length is the time from first to last phase; a single phase is no arc. An arc of a
// satellite goes on while at least one of its phases does. Those of a system are its satellites'.
//
// An interruption is a hole of a signal of up to 600 s after which it returns; counted where it returns, and
// named after who was away when it began: the receiver (no epoch with phases in the stream, or a power
// failure), the satellite (others were observed), or the signal (others of the satellite were observed).
// Signals that return together are one interruption of their satellite. After it phases went on continuous,
// slipped by cycles that are certain, or it is not resolved which. Longer holes end arcs and are not counted
// here; a satellite that sets makes one, too.
//
// Population: arcs from the cut-off up, interruptions there and below it apart; observations without an
// elevation count as up.
#ifndef ORSOLVA_ANALYSIS_FIGURES_TRACKING_SUMS_H
#define ORSOLVA_ANALYSIS_FIGURES_TRACKING_SUMS_H

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/arc_lengths.h"
#include "host/analysis/figures/per_satellite.h"
#include "host/analysis/figures/step_outcome.h"

namespace orsolva_host::analysis {

struct InterruptionCounts {
  /// Who was away, and how its phases went on.
  enum class Cause : std::uint8_t { kNone, kSignal, kSatellite, kReceiver };
  enum class End : std::uint8_t { kContinuous, kSlipped, kUnresolved };

  Count by_signal = 0, by_satellite = 0, by_receiver = 0;
  Count continuous = 0, slipped = 0, unresolved = 0;
  Count phases = 0;  ///< observed, interrupted or not

  void Add(Cause cause, End end);
  void Add(const InterruptionCounts& other);
};

class TrackingSums {
 public:
  explicit TrackingSums(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  void SetInterval(double interval_s) { interval_s_ = interval_s; }
  /// An epoch of the stream. @param number  in the stream
  void AddEpoch(const ObservationEpoch& epoch, std::int64_t number);
  void AddStep(const StepOutcome& outcome);

  void FillIn(AnalysisResult& result) const;

 private:
  using Cause = InterruptionCounts::Cause;
  using End = InterruptionCounts::End;

  /// An arc that is being observed and the lengths of those before.
  struct Arcs {
    ArcLengths lengths;
    bool open = false;
    std::int64_t first_ns = 0;
    std::int64_t last_ns = 0;

    /// A phase. @param goes_on  unbroken from the one before
    void Add(bool up, bool goes_on, std::int64_t time_ns);
    void End();
    ArcLengths WithOpen() const;
  };
  struct Signal {
    SignalCode code;
    double frequency_hz = 0;
    Arcs arcs;
    Cause away = Cause::kNone;  ///< why it is away
    std::int64_t last_ns = 0;   ///< of its last phase
    bool observed = false;
    std::array<InterruptionCounts, 2> interruptions;  // below the cut-off, from it up
  };
  struct Satellite {
    Arcs arcs;
    std::array<InterruptionCounts, 2> interruptions;
    std::vector<Signal> signals;  ///< by number
    QuietRun quiet;

    void EndRun();
  };
  /// Where phases of all satellites ended together.
  struct Outage {
    std::int64_t last_number;  ///< of the last epoch before
    std::int64_t last_ns;
  };

  void BeginSatellite(const StepOutcome& outcome, Satellite& satellite) const;
  static std::optional<End> CloseHoles(const StepOutcome& outcome, Cause hole, Satellite& satellite);
  static bool CloseHole(const StepOutcome& outcome, std::size_t place, Cause hole, Signal& signal);
  static void NoteAbsent(const StepOutcome& outcome, Cause hole, Satellite& satellite);
  static void AddPhases(const StepOutcome& outcome, Satellite& satellite);
  Cause CauseOfGap(const StepOutcome& outcome) const;

  double cutoff_deg_;
  double interval_s_ = 0;
  std::int64_t last_number_ = -1;  ///< of the last epoch with phases
  std::int64_t last_ns_ = 0;
  bool power_failed_ = false;   ///< since then
  std::deque<Outage> outages_;  ///< of the last 600 s
  PerSatellite<Satellite> satellites_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_TRACKING_SUMS_H
