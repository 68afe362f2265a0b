#include "host/analysis/figures/code_range.h"

#include <cmath>
#include <string_view>

#include "host/analysis/geometry/constants.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

enum class Clock { kAny, kBroadcast, kPrecise };

/// Attributes by preference: those that the clock belongs to first.
struct PairRow {
  char system;
  Clock clock;
  char first_band;
  std::string_view first;
  char second_band;
  std::string_view second;
};

constexpr PairRow kPairTable[] = {
    {'G', Clock::kAny, '1', "WPYCLXS", '2', "WPYDCLXS"},  //
    {'R', Clock::kAny, '1', "PC", '2', "PC"},             //
    {'E', Clock::kBroadcast, '1', "CXBZ", '7', "QXI"},    //
    {'E', Clock::kBroadcast, '1', "CXBZ", '5', "QXI"},    //
    {'E', Clock::kPrecise, '1', "CXBZ", '5', "QXI"},      //
    {'E', Clock::kPrecise, '1', "CXBZ", '7', "QXI"},      //
    {'C', Clock::kAny, '2', "IXQ", '6', "IXQ"},           //
    {'J', Clock::kAny, '1', "CLXSEB", '2', "LXS"},        //
    {'J', Clock::kAny, '1', "CLXSEB", '5', "QXI"},        //
};

/// The code of a band with the attribute that comes first; 0 when there is none.
double CodeOf(const ObservationEpoch& epoch, const SatelliteObservation& satellite, char band,
              std::string_view attributes) {
  std::size_t best = attributes.size();
  double code_m = 0;
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    if (o.code.band != band || !IsRange(o.pseudorange_m)) continue;
    const std::size_t rank = attributes.find(o.code.attribute);
    if (rank < best) best = rank, code_m = o.pseudorange_m;
  }
  return code_m;
}

}  // namespace

CodeRange CodeRangeOf(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                      const ModelledRange& range) {
  CodeRange codes;
  const char system = satellite.id.system;
  for (const PairRow& row : kPairTable) {
    if (row.system != system) continue;
    if (row.clock != Clock::kAny && (row.clock == Clock::kPrecise) != range.precise) continue;
    const double first_m = CodeOf(epoch, satellite, row.first_band, row.first);
    if (first_m == 0) return codes;
    // The ratio of GLONASS carriers is 9 to 7 in every channel.
    const double f1 = CarrierFrequency(system, row.first_band, 0);
    const double f2 = CarrierFrequency(system, row.second_band, 0);
    const double gain = f1 * f1 / (f1 * f1 - f2 * f2);
    codes.one_band_m = first_m - range.group_delay_m;
    const double second_m = CodeOf(epoch, satellite, row.second_band, row.second);
    if (second_m == 0) continue;
    codes.two_bands_m = gain * codes.one_band_m + (1 - gain) * second_m;
    return codes;
  }
  return codes;
}

}  // namespace orsolva_host::analysis
