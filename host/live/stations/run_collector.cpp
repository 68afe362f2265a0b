#include "host/live/stations/run_collector.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host::live {
namespace {

/// Epochs after which every event of an epoch is decided, one more than the detector's lead.
constexpr std::size_t kDecided = 6;
constexpr double kPerSquareMicro = 1e6;
/// A residual beyond it is a jump that the library has not yet restarted at; its square would not be a
/// figure.
constexpr double kMaxResidual_m = 1000;

std::int64_t NanosecondsOf(const Time_gbt& time) {
  return time.time * kNanosecondsPerSecond + std::llround(time.sec * 1e9);
}

}  // namespace

void RunCollector::Add(const analysis::Event& event) {
  const bool jump = event.kind == analysis::EventKind::kJump;
  if (event.satellite.system == ' ' || !(jump || analysis::IsSlip(event.kind))) return;
  const auto epoch = std::find_if(epochs_.begin(), epochs_.end(),
                                  [&event](const Slips& e) { return e.gps_ns == event.time_ns; });
  const bool again = epoch != epochs_.end() && !epoch->slipped.insert(event.satellite).second;
  WindowSums sums;
  sums.slip_events = again ? 0 : 1;
  for (const SignalCode code : event.signals) {
    SignalSums& signal = sums.signals[{event.satellite.system, NameOf(code)}];
    ++(jump ? signal.jumps : signal.slips);
  }
  minutes_->Add(event.time_ns, sums);
}

RunCollector::PairSums& RunCollector::SumsOf(const orsolva::PairEpochDetail& detail) {
  const auto system = static_cast<std::uint8_t>(detail.satellite.sys);
  const auto code = static_cast<std::uint32_t>(detail.code);
  for (PairSums& sums : pairs_) {
    if (sums.system == system && sums.code == code) return sums;
  }
  return pairs_.emplace_back(PairSums{system, code});
}

void RunCollector::OnPairEpoch(const orsolva::PairEpochDetail& detail) {
  if (!detail.has_multipath || !detail.counting || !(std::fabs(detail.residual_m) < kMaxResidual_m)) return;
  const std::int64_t minute_ns = BeginOfMinute(NanosecondsOf(detail.time));
  if (minute_ns != minute_ns_) FlushMinute();
  minute_ns_ = minute_ns;
  PairSums& sums = SumsOf(detail);
  ++sums.values;
  sums.square_um2 +=
      static_cast<Count>(std::llround(detail.residual_m * detail.residual_m * kPerSquareMicro));
}

void RunCollector::FlushMinute() {
  WindowSums sums;
  for (PairSums& pair : pairs_) {
    const int slot = SystemSlotOfCode(pair.system);
    if (slot < 0 || pair.values == 0) continue;
    const std::string name(SignalName(pair.system, static_cast<int>(pair.code)));
    SignalSums& signal = sums.signals[{kSystemTable[slot].letter, name}];
    signal.multipath_values += pair.values;
    signal.multipath_square_um2 += pair.square_um2;
    pair.values = pair.square_um2 = 0;
  }
  if (!sums.signals.empty()) minutes_->Add(minute_ns_, sums);
}

std::optional<RunCollector::Slips> RunCollector::NextDecided() {
  if (epochs_.size() < kDecided) return std::nullopt;
  const Slips oldest = epochs_.front();
  epochs_.pop_front();
  return oldest;
}

}  // namespace orsolva_host::live
