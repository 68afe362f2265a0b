// Combinations of signal codes, one code per band, for which the figures of a system are formed.
#ifndef ORSOLVA_RESULTS_CODE_COMBINATIONS_H
#define ORSOLVA_RESULTS_CODE_COMBINATIONS_H

#include <cstdint>

#include "qc/base/config.h"
#include "toolkit/lists.h"

namespace orsolva {

/// Combinations of a system; further ones are not formed.
inline constexpr int kMaxCombinations = 10;

/// Up to ten lists of codes.
class QcCodeCombination {
 public:
  virtual ~QcCodeCombination() = default;

  int Count = 0;
  gnssqctoolkit::IList Lists[kMaxCombinations];
};

/// Which satellites of a system a set of combinations is for.
enum class CombinationTarget : std::uint8_t {
  kSystem,         ///< all satellites of a system that is not BDS
  kBds2,           ///< BDS below 18
  kBds3,           ///< BDS 18 and above that is not geostationary
  kBds3Stationary  ///< BDS 18 and above, geostationary
};

/// Whether the band slot (1 to 6, from the signal tables) of a code is enabled in the flags of its system;
/// false for a code without a slot.
bool IsCodeEnabled(const QcSysConfig& config, int system, int code);

/// Cartesian product of the codes by band slot. The last band's codes come first in a combination and vary
/// slowest; the product ends at ten.
/// @param codes  the codes observed in the system, in the order of their first appearance
QcCodeCombination BuildCombinations(const QcSysConfig& config, int system, CombinationTarget target,
                                    const gnssqctoolkit::IList& codes);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_CODE_COMBINATIONS_H
