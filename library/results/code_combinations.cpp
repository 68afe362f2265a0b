#include "results/code_combinations.h"

#include "qc/base/epoch_data.h"
#include "toolkit/signals.h"

namespace orsolva {
namespace {

using gnssqctoolkit::IList;

/// The frequency bands of BDS that take part in a target.
bool IsBandOfTarget(CombinationTarget target, int band) {
  switch (target) {
    case CombinationTarget::kBds2:
      return band == 21 || band == 27 || band == 6;
    case CombinationTarget::kBds3:
      return band == 21 || band == 6 || band == 1 || band == 5 || band == 7 || band == 36 || band == 8;
    case CombinationTarget::kBds3Stationary:
      return band == 21 || band == 6;
    default:
      return true;
  }
}

bool IsKept(const QcSysConfig& config, int system, CombinationTarget target, std::int32_t code) {
  const int slot = gnssqctoolkit::SignalFrequency(system, code);
  if (slot < 1 || slot > kBandSlots) return false;
  if (config.Select != 0 && config.FreqEnable[slot - 1] == 0) return false;
  if (config.Extra != 0 && !config.CodeList.Contains(code)) return false;
  return IsBandOfTarget(target, gnssqctoolkit::SignalBand(system, code));
}

/// Extends `prefix` by every code of the band lists from `band` down to the first, depth first.
void Extend(const IList* bands, int band, const IList& prefix, QcCodeCombination& out) {
  if (band < 0) {
    if (prefix.Count() > 0) out.Lists[out.Count++] = prefix;
    return;
  }
  if (bands[band].Count() == 0) {
    Extend(bands, band - 1, prefix, out);
    return;
  }
  for (const std::int32_t code : bands[band]) {
    if (out.Count >= kMaxCombinations) return;
    IList longer = prefix;
    longer.Push(code);
    Extend(bands, band - 1, longer, out);
  }
}

}  // namespace

bool IsCodeEnabled(const QcSysConfig& config, int system, int code) {
  const int slot = gnssqctoolkit::SignalFrequency(system, code);
  return slot >= 1 && slot <= kBandSlots && config.FreqEnable[slot - 1] != 0;
}

QcCodeCombination BuildCombinations(const QcSysConfig& config, int system, CombinationTarget target,
                                    const IList& codes) {
  IList bands[kBandSlots];
  for (const std::int32_t code : codes) {
    if (!IsKept(config, system, target, code)) continue;
    bands[gnssqctoolkit::SignalFrequency(system, code) - 1].Push(code);
  }
  QcCodeCombination out;
  Extend(bands, kBandSlots - 1, IList(), out);
  return out;
}

}  // namespace orsolva
