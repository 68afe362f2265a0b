#include "host/live/stations/run_collector.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "host/analysis/slips/detector_constants.h"

namespace orsolva_host::live {
namespace {

/// Epochs that are kept until the oldest one's events are all decided: itself, and one more after it than the
/// detector's lead.
constexpr std::size_t kDecided = analysis::kLead + 2;
constexpr double kPerSquareMicro = 1e6;
/// An RMS beyond it is a fault of the codes that is no multipath; its square would hide all others.
constexpr double kMaxResidual_m = 1000;

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

void RunCollector::AddMultipath(const std::vector<analysis::MultipathBlock>& blocks) {
  std::map<std::int64_t, WindowSums> minutes;
  for (const analysis::MultipathBlock& block : blocks) {
    if (!(block.squares_m2 < static_cast<double>(block.values) * kMaxResidual_m * kMaxResidual_m)) continue;
    SignalSums& signal =
        minutes[BeginOfMinute(block.time_ns)].signals[{block.satellite.system, NameOf(block.signal)}];
    signal.multipath_values += block.values;
    signal.multipath_square_um2 += static_cast<Count>(std::llround(block.squares_m2 * kPerSquareMicro));
  }
  for (const auto& [begin_ns, sums] : minutes) minutes_->Add(begin_ns, sums);
}

std::optional<RunCollector::Slips> RunCollector::NextDecided() {
  if (epochs_.size() < kDecided) return std::nullopt;
  const Slips oldest = epochs_.front();
  epochs_.pop_front();
  return oldest;
}

}  // namespace orsolva_host::live
