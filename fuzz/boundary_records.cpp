// Valid runs of the library spoiled as the input says: every choice of the mutator is taken from its bytes.
#include <cstdint>

#include "fuzz/require.h"
#include "tests/support/mutator.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// Little-endian words of the input; zeros after its end.
class InputWords {
 public:
  InputWords(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  std::uint32_t operator()() {
    std::uint32_t word = 0;
    for (int shift = 0; shift < 32 && position_ < size_; shift += 8) {
      word |= std::uint32_t{data_[position_++]} << shift;
    }
    return word;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t position_ = 0;
};

const orsolva_test::SimulatedSky& Sky() {
  static const orsolva_test::SimulatedSky sky([] {
    orsolva_test::SkyOptions options;
    options.Epochs = 16;
    return options;
  }());
  return sky;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orsolva_test::Mutator<InputWords> mutator(InputWords(data, size));
  const orsolva_test::MutatedRunFacts facts = orsolva_test::MutatedRun(Sky(), mutator);
  orsolva_fuzz::Require(facts.Broken == nullptr, facts.Broken);
  return 0;
}
