#include "qc/base/config_text.h"

#include <cstddef>
#include <cstdio>

#include "toolkit/constants.h"

namespace orsolva {
namespace {

constexpr int kHostSystems = 5;  // BD3 follows BDS and has no flag of its own

/// " GPS 1 GLO 0 ..." of five flags.
template <class Flag>
std::string SystemFlags(Flag flag) {
  std::string text;
  for (int slot = 0; slot < kHostSystems; ++slot) {
    text += std::string(" ") + kSystemLabels[slot] + (flag(slot) ? " 1" : " 0");
  }
  return text;
}

/// A line per system slot: its label and its flags.
template <std::size_t kFlags>
std::string SlotLines(const QcConfig& config, const std::uint8_t (QcSysConfig::*flags)[kFlags]) {
  std::string text;
  for (int slot = 0; slot < kSystemSlots; ++slot) {
    text += kSystemLabels[slot];
    for (const std::uint8_t flag : config.Sys[slot].*flags) text += flag != 0 ? " 1" : " 0";
    text += "\n";
  }
  return text;
}

std::string Values(const QcConfig& config) {
  char text[256];
  std::snprintf(text, sizeof text, kValuesFormat, config.ElevationMask / gnssqctoolkit::kRadiansPerDegree,
                config.Interval, static_cast<int>(config.AutoDetectFreq),
                static_cast<int>(config.EnablePosition), config.Position[0], config.Position[1],
                config.Position[2]);
  return text;
}

}  // namespace

std::string ConfigText(const QcConfig& config, std::uint32_t combination_mask) {
  std::string text = kEnableSystemLabel;
  text += SystemFlags([&config](int slot) { return config.Sys[slot].Enable != 0; }) + "\n";
  text += kCombinationSystemLabel;
  text += SystemFlags([combination_mask](int slot) { return (combination_mask & (1U << slot)) != 0; });
  text += Values(config);
  text += SlotLines(config, &QcSysConfig::FreqEnable);
  text += std::string(kIncludeSatelliteLabel) + "\n";
  return text + SlotLines(config, &QcSysConfig::IncludeSat);
}

}  // namespace orsolva
