// Code pairs: which observation code is combined with which for the multipath and slip measures.
//
// A pair (code a, partner b) measures the code multipath of a with the ionosphere removed by the carrier
// phases of the bands of a and b. The pairs of a system are built once per run from the codes observed.
#ifndef ORSOLVA_MEASURES_CHANNEL_COMBINATIONS_H
#define ORSOLVA_MEASURES_CHANNEL_COMBINATIONS_H

#include <array>
#include <cstdint>
#include <vector>

#include "qc/base/config.h"
#include "qc/base/epoch_data.h"
#include "toolkit/lists.h"
#include "toolkit/satellite.h"

namespace orsolva {

/// Largest number of pairs of one band.
inline constexpr int kPairsPerBand = 10;

/// A measured code and its partner on another band.
class ChannelComb {
 public:
  virtual ~ChannelComb() = default;

  std::uint32_t Code = 0;
  std::uint32_t Partner = 0;
};

/// The pairs of one system, in its band order: GPS 1, 2, 5; GLONASS 1, 2; QZSS 1, 2, 5, 6;
/// Galileo 1, 5, 7, 8, 6; BDS-2 21, 27, 6; BDS-3 21, none, 6 or 36, 1, 5, 7.
class MpIodChannelCombination {
 public:
  virtual ~MpIodChannelCombination() = default;

  std::uint8_t System = 0;
  ChannelComb Pairs[kBandSlots][kPairsPerBand];
  std::uint8_t Count[kBandSlots] = {};
};

/// Appends (a, b) for every a of `list_a` in order and every b of `list_b` in order, up to kPairsPerBand.
/// @param pairs  room for kPairsPerBand
/// @return number of pairs
int PairCodes(const std::vector<std::uint32_t>& list_a, const std::vector<std::uint32_t>& list_b,
              ChannelComb* pairs);

/// Epochs of the moving average: 50 up to 5 s, whole part of 300 s / interval up to 30 s, 10 beyond.
int MpWindowLength(double interval);

/// The pairs of every system.
class ChannelCombinations {
 public:
  virtual ~ChannelCombinations() = default;

  /// Records by configuration slot; the sixth is never filled.
  MpIodChannelCombination Systems[kSystemSlots];
  /// BDS satellites numbered 18 and above that are not geostationary.
  MpIodChannelCombination Bds3;
  /// Geostationary BDS satellites numbered 18 and above.
  MpIodChannelCombination Bds3Geostationary;

  /// Builds all records.
  /// @param code_lists  kCodeListSlots lists of observed codes
  /// @return by configuration slot the bands in use: those that are enabled and have codes
  std::array<BandsInUse, kSystemSlots> Build(const QcConfig& config, const gnssqctoolkit::IList* code_lists);

  /// The record of a satellite, null for a system without pairs.
  const MpIodChannelCombination* ForSatellite(const gnssqctoolkit::SatelliteId& satellite) const;
};

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_CHANNEL_COMBINATIONS_H
