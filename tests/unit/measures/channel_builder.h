// Builds the code pairs of a run from observed codes, and writes them down in one line.
#ifndef ORSOLVA_TESTS_UNIT_MEASURES_CHANNEL_BUILDER_H
#define ORSOLVA_TESTS_UNIT_MEASURES_CHANNEL_BUILDER_H

#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <string>

#include "measures/channel_combinations.h"

namespace orsolva::testing {

inline const char kBdsText[] = "error; bds system not enough frequency number!\n";
inline const char kGalileoText[] = "error; no choose galileo system qc code num!\n";

// One code of each band.
enum : std::int32_t {
  kG1 = 1,
  kG2 = 15,
  kG5 = 20,
  kR1 = 30,
  kR2 = 35,
  kR3 = 40,
  kE1 = 62,
  kE5 = 65,
  kE7 = 68,
  kE8 = 71,
  kE6 = 74,
  kJ1 = 120,
  kJ2 = 127,
  kJ5 = 130,
  kJ6 = 136,
  kC21 = 150,
  kC1 = 153,
  kC5 = 161,
  kC27 = 164,
  kC7 = 167,
  kC8 = 170,
  kC6 = 173,
  kC36 = 176,
};

struct Builder {
  QcConfig Config;
  gnssqctoolkit::IList Lists[kCodeListSlots];
  ChannelCombinations Combinations;

  Builder() {
    Config.ApplyDefaults();
    for (QcSysConfig& sys : Config.Sys) sys.Select = 1;
    Config.AutoDetectFreq = 1;
  }
  Builder& Observe(int list, std::initializer_list<std::int32_t> codes) {
    for (std::int32_t code : codes) Lists[list].Append(code);
    return *this;
  }
  Builder& Select(std::uint8_t select) {
    for (QcSysConfig& sys : Config.Sys) sys.Select = select;
    return *this;
  }
  Builder& Flags(int slot, std::initializer_list<int> flags) {
    Config.AutoDetectFreq = 0;
    int f = 0;
    for (int flag : flags) Config.Sys[slot].FreqEnable[f++] = static_cast<std::uint8_t>(flag);
    return *this;
  }
  ChannelCombinations& Build() {
    Config.NarrowBands(Combinations.Build(Config, Lists).data());
    return Combinations;
  }
  std::string FlagText(int slot) const {
    std::string text;
    for (std::uint8_t flag : Config.Sys[slot].FreqEnable) text += flag != 0 ? '1' : '0';
    return text;
  }
};

/// "slot:code-partner" of every pair, in order.
inline std::string Pairs(const MpIodChannelCombination& record) {
  std::ostringstream text;
  for (int slot = 0; slot < kBandSlots; ++slot) {
    for (int i = 0; i < record.Count[slot]; ++i) {
      text << slot << ":" << record.Pairs[slot][i].Code << "-" << record.Pairs[slot][i].Partner << " ";
    }
  }
  return text.str();
}

}  // namespace orsolva::testing

#endif  // ORSOLVA_TESTS_UNIT_MEASURES_CHANNEL_BUILDER_H
