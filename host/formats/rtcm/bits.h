// Bit fields of a message, most significant bit first.
#ifndef ORSOLVA_FORMATS_RTCM_BITS_H
#define ORSOLVA_FORMATS_RTCM_BITS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orsolva_host::rtcm {

/// Reads fields one after another. A field that reaches beyond the data is 0, and so is every one after it;
/// Overrun() then says so. No byte outside the data is read.
class BitReader {
 public:
  explicit BitReader(std::string_view bytes) : bytes_(bytes) {}

  /// @param bits  0 to 64
  std::uint64_t Unsigned(int bits) {
    // Eight bytes at once hold a field of up to 57 bits, wherever in a byte it begins.
    const std::size_t first = position_ >> 3;
    if (bits < 1 || bits > 57 || first + sizeof(std::uint64_t) > bytes_.size()) return UnsignedByBytes(bits);
    const std::uint64_t word = WordAt(first);
    const auto used = static_cast<int>(position_ & 7);
    position_ += static_cast<std::size_t>(bits);
    return word << used >> (64 - bits);
  }
  /// Two's complement.
  std::int64_t Signed(int bits) {
    const std::uint64_t value = Unsigned(bits);
    const std::uint64_t sign = std::uint64_t{1} << (bits - 1);
    return static_cast<std::int64_t>((value ^ sign) - sign);
  }
  /// A sign bit, then the magnitude (intS of the standard, GLONASS).
  std::int64_t SignMagnitude(int bits);

  std::size_t BitsLeft() const { return bytes_.size() * 8 - position_; }
  bool Overrun() const { return overrun_; }

 private:
  std::uint64_t UnsignedByBytes(int bits);
  /// Written out, so that compilers see one load and one swap.
  std::uint64_t WordAt(std::size_t first) const {
    const auto* b = reinterpret_cast<const unsigned char*>(bytes_.data() + first);
    return std::uint64_t{b[0]} << 56 | std::uint64_t{b[1]} << 48 | std::uint64_t{b[2]} << 40 |
           std::uint64_t{b[3]} << 32 | std::uint64_t{b[4]} << 24 | std::uint64_t{b[5]} << 16 |
           std::uint64_t{b[6]} << 8 | std::uint64_t{b[7]};
  }

  std::string_view bytes_;
  std::size_t position_ = 0;
  bool overrun_ = false;
};

/// Appends fields. Bits of a value above those of its field are cut off.
class BitWriter {
 public:
  void Unsigned(std::uint64_t value, int bits);
  void Signed(std::int64_t value, int bits) { Unsigned(static_cast<std::uint64_t>(value), bits); }
  void SignMagnitude(std::int64_t value, int bits);

  /// The bytes so far, the last one filled with zeros.
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
  std::size_t position_ = 0;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_BITS_H
