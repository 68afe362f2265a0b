// Any bytes as the epochs of a CRINEX file whose header is sound, so that every input reaches the decoder.
#include "fuzz/observation_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::string HeaderLine(std::string text, const char* label) {
  text.resize(60, ' ');
  return text + label + "\n";
}

std::string Header() {
  return HeaderLine("3.0                 COMPACT RINEX FORMAT", "CRINEX VERS   / TYPE") +
         HeaderLine("packer", "CRINEX PROG / DATE") +
         HeaderLine("     3.04           OBSERVATION DATA    M: MIXED", "RINEX VERSION / TYPE") +
         HeaderLine("G    6 C1C L1C S1C C2W L2W S2W", "SYS / # / OBS TYPES") +
         HeaderLine("R    3 C1C L1C S1C", "SYS / # / OBS TYPES") +
         HeaderLine("E    4 C1X L1X C5X L5X", "SYS / # / OBS TYPES") +
         HeaderLine("C    4 C2I L2I C6I L6I", "SYS / # / OBS TYPES") + HeaderLine("", "END OF HEADER");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orsolva_fuzz::ReadObservationText(Header() + std::string(data, data + size));
  return 0;
}
