// Any bytes as an observation file, plain or CRINEX as its header says.
#include "fuzz/observation_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orsolva_fuzz::ReadObservationText(std::string(data, data + size));
  return 0;
}
