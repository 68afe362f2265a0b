#include "host/formats/rtcm/bits.h"

#include <algorithm>

namespace orsolva_host::rtcm {

std::uint64_t BitReader::UnsignedByBytes(int bits) {
  if (static_cast<std::size_t>(bits) > BitsLeft()) {
    overrun_ = true;
    position_ = bytes_.size() * 8;
    return 0;
  }
  std::uint64_t value = 0;
  while (bits > 0) {
    const int used = static_cast<int>(position_ & 7);
    const int take = std::min(8 - used, bits);
    const unsigned byte = static_cast<unsigned char>(bytes_[position_ >> 3]);
    value = value << take | ((byte >> (8 - used - take)) & ((1u << take) - 1));
    position_ += static_cast<std::size_t>(take);
    bits -= take;
  }
  return value;
}

std::int64_t BitReader::SignMagnitude(int bits) {
  const std::uint64_t value = Unsigned(bits);
  const std::uint64_t sign = std::uint64_t{1} << (bits - 1);
  const auto magnitude = static_cast<std::int64_t>(value & (sign - 1));
  return (value & sign) != 0 ? -magnitude : magnitude;
}

void BitWriter::Unsigned(std::uint64_t value, int bits) {
  while (bits > 0) {
    const int used = static_cast<int>(position_ & 7);
    if (used == 0) bytes_.push_back('\0');
    const int take = std::min(8 - used, bits);
    const auto part = static_cast<unsigned>(value >> (bits - take)) & ((1u << take) - 1);
    const auto byte = static_cast<unsigned char>(bytes_.back()) | part << (8 - used - take);
    bytes_.back() = static_cast<char>(static_cast<unsigned char>(byte));
    position_ += static_cast<std::size_t>(take);
    bits -= take;
  }
}

void BitWriter::SignMagnitude(std::int64_t value, int bits) {
  const std::uint64_t sign = value < 0 ? std::uint64_t{1} << (bits - 1) : 0;
  const std::uint64_t magnitude = static_cast<std::uint64_t>(value < 0 ? -value : value);
  Unsigned(sign | (magnitude & ((std::uint64_t{1} << (bits - 1)) - 1)), bits);
}

}  // namespace orsolva_host::rtcm
