#include "qc/base/config.h"

#include <algorithm>
#include <cstring>

#include "toolkit/satellite.h"

namespace orsolva {

namespace {

struct SlotDefault {
  std::uint8_t SysCode;
  std::uint8_t FreqNum;      ///< frequency slots in use by default
  std::uint8_t FreqDefault;  ///< leading frequency flags the defaults switch on
};

// GPS, GLONASS, BDS, Galileo, QZSS, BD3.
constexpr SlotDefault kSlotDefaults[kSystemSlots] = {
    {gnssqctoolkit::kGps, 2, 3},     {gnssqctoolkit::kGlonass, 2, 2}, {gnssqctoolkit::kBds, 3, 6},
    {gnssqctoolkit::kGalileo, 3, 2}, {gnssqctoolkit::kQzss, 2, 4},    {gnssqctoolkit::kBds, 3, 6},
};

void OverlayIncludedSatellites(const config_qct& config, QcSysConfig* sys) {
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    for (int k = 0; k < 64; ++k) {
      sys[slot].IncludeSat[k] = static_cast<std::uint8_t>(config.include_satellite[slot][k] & 0xFF);
    }
  }
  std::memcpy(sys[kSlotBd3].IncludeSat, sys[kSlotBds].IncludeSat, sizeof(sys[kSlotBd3].IncludeSat));
}

void OverlayFrequencies(const config_qct& config, QcSysConfig* sys) {
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    for (int f = 0; f < 6; ++f) {
      if (config.satellite_freq[slot][f] == 0) sys[slot].FreqEnable[f] = 0;
    }
  }
  // Kept for compatibility: for the BDS-3 slot only the value 1 of the BDS row enables a frequency, while any
  // non-zero value keeps it enabled in the BDS slot itself.
  for (int f = 0; f < 6; ++f) {
    sys[kSlotBd3].FreqEnable[f] = config.satellite_freq[kSlotBds][f] == 1 ? 1 : 0;
  }
}

}  // namespace

int SystemSlotOf(int system) {
  switch (system) {
    case gnssqctoolkit::kGps:
      return kSlotGps;
    case gnssqctoolkit::kGlonass:
      return kSlotGlonass;
    case gnssqctoolkit::kBds:
      return kSlotBds;
    case gnssqctoolkit::kGalileo:
      return kSlotGalileo;
    case gnssqctoolkit::kQzss:
      return kSlotQzss;
    default:
      return -1;
  }
}

int CodeListSlotOf(int system) {
  const int slot = SystemSlotOf(system);
  return slot == kSlotQzss ? 5 : slot;
}

QcSysConfig::QcSysConfig() { std::memset(IncludeSat, 1, sizeof(IncludeSat)); }

QcConfig::QcConfig() {
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    Sys[slot].Enable = 1;
    Sys[slot].SysCode = kSlotDefaults[slot].SysCode;
    Sys[slot].FreqNum = kSlotDefaults[slot].FreqNum;
  }
}

void QcConfig::ApplyDefaults() {
  ElevationMask = gnssqctoolkit::kDefaultElevationCutoff;
  AutoDetectFreq = 1;
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    Sys[slot].Select = 1;
    Sys[slot].Enable = 1;
    for (int f = 0; f < kSlotDefaults[slot].FreqDefault; ++f) Sys[slot].FreqEnable[f] = 1;
  }
  Sys[kSlotBd3].SysCode = gnssqctoolkit::kBds;
  Interval = 1.0;
}

void QcConfig::Overlay(const config_qct& config) {
  // Kept for compatibility: an elevation of 0 means a cut-off of 0.0001 rad, not the default of 10 degrees.
  ElevationMask =
      config.elevation > 1e-12 ? config.elevation * gnssqctoolkit::kRadiansPerDegree : kLeastElevationMask;
  OverlayIncludedSatellites(config, Sys);
  for (int slot = 0; slot < 5; ++slot) {
    if (config.enable_system[slot] == 0) Sys[slot].Enable = 0;
  }
  if (config.enable_system[kSlotBds] == 0) Sys[kSlotBd3].Enable = 0;
  if (config.interval > 1e-12) Interval = config.interval;
  AutoDetectFreq = config.auto_detect_freq != 0 ? 1 : 0;
  OverlayFrequencies(config, Sys);
  for (int i = 0; i < 3; ++i) Position[i] = config.enable_position != 0 ? config.position[i] : 0.0;
  EnablePosition = config.enable_position;
}

void QcConfig::NarrowBands(const BandsInUse* bands) {
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    std::copy_n(bands[slot].FreqEnable, 6, Sys[slot].FreqEnable);
    Sys[slot].FreqNum = bands[slot].FreqNum;
  }
}

std::uint32_t QcConfig::EnabledSystems() const {
  std::uint32_t mask = 0;
  for (int slot = 0; slot < 5; ++slot) {
    if (Sys[slot].Enable != 0) mask |= 1U << slot;
  }
  return mask;
}

}  // namespace orsolva
