// The choices of a fuzz target's mutator, taken from its input.
#ifndef ORSOLVA_FUZZ_INPUT_WORDS_H
#define ORSOLVA_FUZZ_INPUT_WORDS_H

#include <cstddef>
#include <cstdint>

namespace orsolva_fuzz {

/// Little-endian words of the input; zeros after its end.
class InputWords {
 public:
  InputWords(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool AtEnd() const { return position_ >= size_; }

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

}  // namespace orsolva_fuzz

#endif  // ORSOLVA_FUZZ_INPUT_WORDS_H
