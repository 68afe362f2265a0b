// Keeps what plots need of a run, in bounded memory and in the units the page shows.
//
// Every epoch enters the elevation bins, the arcs and the events. The points of the plots are thinned to
// every n-th epoch when there are more than the page can carry; n is given with them.
#ifndef ORSOLVA_REPORT_DETAIL_COLLECTOR_H
#define ORSOLVA_REPORT_DETAIL_COLLECTOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/report/detail_sink.h"

namespace orsolva_host {

constexpr int kElevationBins = 18;         ///< of 5 degrees
constexpr std::int16_t kNoValue = -32768;  ///< no value, in the 16-bit columns
constexpr std::int16_t kMaxValue = 32767;  ///< values beyond are held at +- this

/// What a page shows as an event. The order is that of the names in detail_data.cpp.
enum class EventKind : std::uint8_t {
  kIonosphericRate,
  kLongGap,
  kGeometry,
  kDataGap,
  kNewEphemeris,
  kJump,
  kRestartAfterGap,
};
constexpr int kEventKinds = 7;

/// Whether an event makes a satellite worth a look: a slip of the geometry-free phase or a code jump.
constexpr bool IsHard(EventKind kind) {
  return kind == EventKind::kIonosphericRate || kind == EventKind::kLongGap || kind == EventKind::kJump;
}

struct ElevationBin {
  std::uint64_t count = 0;
  double sum = 0;  ///< of values, or of squares
};
using ElevationBins = std::array<ElevationBin, kElevationBins>;

/// Epochs are counted in intervals from the first epoch of the run.
using EpochIndex = std::uint32_t;

struct Arc {
  EpochIndex first = 0;
  EpochIndex last = 0;
  bool first_above = false;  ///< the elevation cut-off, at the first epoch
  bool last_above = false;
};

struct SignalColumn {
  std::uint32_t code = 0;
  std::vector<std::uint16_t> snr;  ///< 0.01 dB-Hz; 0 = none
  ElevationBins mean_snr;          ///< every epoch with an SNR
  std::uint64_t values = 0;        ///< epochs with an SNR, thinned out ones included
};

struct PairColumn {
  std::uint32_t code = 0;
  std::uint32_t partner = 0;
  std::vector<std::int16_t> residual;  ///< mm; those that enter the RMS
  std::vector<std::int16_t> rate;      ///< geometry-free change, mm/min
  ElevationBins squares;               ///< m^2, residuals that enter the RMS
  std::uint64_t values = 0;
  double last_phases_s = 0;  ///< time of the last epoch with both phases, from the first epoch of the run
  bool has_phases = false;
  std::array<std::uint64_t, kEventKinds> events = {};
};

struct DetailEvent {
  EpochIndex epoch = 0;
  std::uint32_t code = 0;
  std::uint32_t partner = 0;
  std::int16_t elevation = 0;  ///< 0.1 degrees
  EventKind kind = EventKind::kGeometry;
};

/// One satellite: columns of equal length (the shorter ones end in missing values).
struct SatelliteColumns {
  orsolva::DetailSatellite satellite;
  std::vector<EpochIndex> epoch;
  std::vector<std::int16_t> elevation;  ///< 0.01 degrees
  std::vector<std::uint16_t> azimuth;   ///< 0.01 degrees, 0 to 35999
  std::vector<SignalColumn> signals;    ///< in the order of their codes
  std::vector<PairColumn> pairs;        ///< in the order of their codes and partners
  std::vector<Arc> arcs;
  std::vector<DetailEvent> events;
};

class DetailCollector : public DetailSink {
 public:
  /// What is kept: all that a page needs, or only what findings need (arcs, slips and code jumps).
  enum class Keep { kPage, kFindings };

  /// @param budget_bytes  of the plotted points, before they are compressed
  explicit DetailCollector(std::size_t budget_bytes = kDefaultBudget) : budget_bytes_(budget_bytes) {}
  explicit DetailCollector(Keep keep) : keep_(keep) {}

  void Begin(const Time_gbt& first, double interval_s) override;
  void EndBatch() override;
  void Finish(const total_code_qc_result& codes) override;
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail& detail) override;
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override;
  /// Findings do without: they ask only whether a satellite is above the cut-off.
  bool LooksAtDirections() const override { return keep_ == Keep::kPage; }

  const Time_gbt& First() const { return first_; }
  double IntervalS() const { return interval_s_; }
  /// Points are those of every Stride()-th epoch.
  EpochIndex Stride() const { return stride_; }
  /// Tracking breaks of fewer epochs than this are not kept.
  EpochIndex LeastGap() const { return least_gap_; }
  std::uint64_t SatelliteEpochs() const { return satellite_epochs_; }
  std::uint64_t EventsLeftOut() const { return events_left_out_; }
  /// Keeps the points of every other epoch of those kept.
  void Thin();
  /// By satellite number.
  const std::map<int, SatelliteColumns>& Satellites() const { return satellites_; }
  /// After Finish: the pair of a signal that its figures come from; null when it has none.
  const PairColumn* PairOf(const SatelliteColumns& satellite, std::uint32_t code) const;

  static constexpr std::size_t kDefaultBudget = 8'000'000;

 private:
  struct Sample {
    EpochIndex epoch;
    std::int16_t elevation;
    std::uint32_t row;  // of the columns; kNoRow when thinned out
  };
  struct BatchTrack {
    std::vector<Sample> samples;
    std::size_t cursor = 0;
  };

  bool IndexOf(const Time_gbt& time, EpochIndex& index) const;
  const Sample* SampleAt(int number, EpochIndex index);
  std::uint32_t AddRow(SatelliteColumns& columns, EpochIndex index,
                       const orsolva::SatelliteEpochDetail& detail, std::int16_t elevation);
  void AddSignals(SatelliteColumns& columns, const orsolva::SatelliteEpochDetail& detail,
                  const Sample& sample);
  void AddArc(SatelliteColumns& columns, EpochIndex index, bool above_cutoff);
  void AddEvents(SatelliteColumns& columns, PairColumn& pair, const orsolva::PairEpochDetail& detail,
                 const Sample& sample);
  void AddEvent(SatelliteColumns& columns, PairColumn& pair, const Sample& sample, EventKind kind);
  std::vector<bool>::reference Known(const orsolva::PairEpochDetail& detail);
  std::size_t PointBytes() const;
  void JoinArcs();

  std::size_t budget_bytes_ = kDefaultBudget;
  Keep keep_ = Keep::kPage;
  Time_gbt first_{};
  double interval_s_ = 1;
  EpochIndex stride_ = 1;
  EpochIndex least_gap_ = 1;
  std::uint64_t satellite_epochs_ = 0;
  std::size_t arcs_ = 0;
  std::size_t events_ = 0;
  std::uint64_t events_left_out_ = 0;
  bool pairs_seen_ = false;  // in this batch
  std::map<int, SatelliteColumns> satellites_;
  std::map<int, BatchTrack> tracks_;
  std::map<std::uint64_t, std::uint32_t> partners_;  // of satellite and code
  std::vector<bool> known_pairs_;                    // of satellite number, code and partner
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DETAIL_COLLECTOR_H
