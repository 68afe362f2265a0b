#include "qc/station_position.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "navigation/positioning/positioning.h"
#include "qc/base/epoch_time.h"

namespace orsolva {

namespace {

/// The first signal in frequency-slot order that has a pseudorange; null without one.
const Signal_QC_gbt* FirstRanged(const QcSatData& satellite, const StoredEpoch& epoch) {
  const Signal_QC_gbt* signal = satellite.Signals.data() + epoch.FirstSignal;
  int count = 0;
  for (const std::uint8_t in_slot : epoch.Counts) count += in_slot;
  for (int k = 0; k < count; ++k) {
    if (Present(signal[k].pseudorange)) return &signal[k];
  }
  return nullptr;
}

/// The first record of the satellite in the epoch; null when the epoch does not list it.
const StoredEpoch* FindEpoch(const QcSatData& satellite, std::uint32_t first_sequence, std::uint32_t offset) {
  const auto found = std::lower_bound(
      satellite.Epochs.begin(), satellite.Epochs.end(), offset,
      [first_sequence](const StoredEpoch& e, std::uint32_t o) { return e.Sequence - first_sequence < o; });
  const bool listed = found != satellite.Epochs.end() && found->Sequence - first_sequence == offset;
  return listed ? &*found : nullptr;
}

gnssqctoolkit::PositioningEpoch Gather(QcGNSSObsData& observations, const std::uint8_t* sat_usable,
                                       std::uint32_t first_sequence, std::uint32_t offset) {
  gnssqctoolkit::PositioningEpoch out;
  for (const int number : observations.PresentSatellites()) {
    if (static_cast<std::int8_t>(sat_usable[number - 1]) <= 0) continue;
    const QcSatData& satellite = observations.Sats[number - 1];
    const StoredEpoch* epoch = FindEpoch(satellite, first_sequence, offset);
    if (epoch == nullptr) continue;
    out.Time = ToAbsolute(epoch->Time);
    const Signal_QC_gbt* signal = FirstRanged(satellite, *epoch);
    if (signal != nullptr) {
      out.Observations.push_back({satellite.Satellite, signal->code, signal->pseudorange});
    }
  }
  return out;
}

}  // namespace

bool StationPosition(QcGNSSObsData& observations, const gnssqctoolkit::Ephemeris& ephemeris,
                     const std::uint8_t* sat_usable, std::uint32_t first_sequence, std::uint32_t epochs,
                     double position[3]) {
  constexpr auto kMaxEpochs = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
  std::vector<gnssqctoolkit::PositioningEpoch> gathered;
  for (const int offset : gnssqctoolkit::SpreadEpochs(static_cast<int>(std::min(epochs, kMaxEpochs)))) {
    gathered.push_back(Gather(observations, sat_usable, first_sequence, static_cast<std::uint32_t>(offset)));
  }
  return gnssqctoolkit::PositionFromEpochs(gathered, ephemeris, gnssqctoolkit::SPPOption(), position);
}

}  // namespace orsolva
