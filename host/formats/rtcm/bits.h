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
  std::uint64_t Unsigned(int bits);
  /// Two's complement.
  std::int64_t Signed(int bits);
  /// A sign bit, then the magnitude (intS of the standard, GLONASS).
  std::int64_t SignMagnitude(int bits);

  std::size_t BitsLeft() const { return bytes_.size() * 8 - position_; }
  bool Overrun() const { return overrun_; }

 private:
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
