// Configuration of a run: library defaults overlaid with the host's values.
#ifndef ORSOLVA_QC_BASE_CONFIG_H
#define ORSOLVA_QC_BASE_CONFIG_H

#include <cstdint>

#include "orsolva/records.h"
#include "toolkit/constants.h"
#include "toolkit/lists.h"

namespace orsolva {

/// Configuration slots. BDS has two: one for the system, one for the satellites numbered 18 and above.
enum SystemSlot : int {
  kSlotGps = 0,
  kSlotGlonass = 1,
  kSlotBds = 2,
  kSlotGalileo = 3,
  kSlotQzss = 4,
  kSlotBd3 = 5
};
inline constexpr int kSystemSlots = 6;

/// List slots of the observed code lists: GPS 0, GLONASS 1, BDS 2, Galileo 3, QZSS 5; 4 and 6 stay empty.
inline constexpr int kCodeListSlots = 7;

/// Configuration slot of a system code (BDS gives kSlotBds), -1 for any other.
int SystemSlotOf(int system);
/// List slot of a system code, -1 for any other.
int CodeListSlotOf(int system);

inline constexpr double kLeastElevationMask = 0.0001;  ///< rad

class QcSysConfig {
 public:
  virtual ~QcSysConfig() = default;

  std::uint8_t Enable = 0;
  std::uint8_t SysCode = 0;
  std::uint8_t FreqNum = 0;
  std::uint8_t Reserved = 0;
  std::uint8_t Select = 0;  ///< two-frequency mode and the band-enable switch of the results
  std::uint8_t FreqEnable[6] = {1, 1, 1, 1, 1, 1};
  std::uint8_t Extra = 0;  ///< only the codes of CodeList are used
  gnssqctoolkit::IList CodeList;
  std::uint8_t IncludeSat[64];

  QcSysConfig();
};

/// The bands of a system that are used.
struct BandsInUse {
  std::uint8_t FreqEnable[6] = {};
  std::uint8_t FreqNum = 0;
};

class QcConfig {
 public:
  QcConfig();
  virtual ~QcConfig() = default;

  std::uint8_t EnablePosition = 0;
  std::uint8_t AutoDetectFreq = 0;
  std::uint32_t SystemMask = 0;
  QcSysConfig Sys[kSystemSlots];
  double Interval = 1.0;                                          ///< s
  double ElevationMask = gnssqctoolkit::kDefaultElevationCutoff;  ///< rad
  double Position[3] = {0.0, 0.0, 0.0};                           ///< ECEF, m

  /// The defaults a run starts from.
  void ApplyDefaults();
  /// The host's values over the present ones.
  void Overlay(const config_qct& config);
  /// Narrows the band flags and band counts of every slot to the bands that are used.
  /// @param bands  kSystemSlots entries
  void NarrowBands(const BandsInUse* bands);
  /// Bits 1, 2, 4, 8, 16 of the enabled slots 0 to 4.
  std::uint32_t EnabledSystems() const;
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_BASE_CONFIG_H
