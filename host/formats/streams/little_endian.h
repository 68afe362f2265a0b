// Fields of receivers' own formats: whole bytes, least significant first, IEEE 754.
#ifndef ORSOLVA_FORMATS_STREAMS_LITTLE_ENDIAN_H
#define ORSOLVA_FORMATS_STREAMS_LITTLE_ENDIAN_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace orsolva_host {

template <std::size_t kBytes>
using UnsignedOfBytes =
    std::conditional_t<kBytes == 1, std::uint8_t,
                       std::conditional_t<kBytes == 2, std::uint16_t,
                                          std::conditional_t<kBytes == 4, std::uint32_t, std::uint64_t>>>;

/// A field of the type at a place. @pre it lies within the bytes
template <class Field>
Field FieldAt(std::string_view bytes, std::size_t place) {
  using Bits = UnsignedOfBytes<sizeof(Field)>;
  Bits bits = 0;
  for (std::size_t i = sizeof(Field); i-- > 0;) {
    const auto byte = static_cast<unsigned char>(bytes[place + i]);
    bits = static_cast<Bits>(static_cast<std::uint64_t>(bits) << 8 | byte);
  }
  return std::bit_cast<Field>(bits);
}

template <class Field>
void AppendField(Field value, std::string& bytes) {
  const auto bits = std::bit_cast<UnsignedOfBytes<sizeof(Field)>>(value);
  for (std::size_t i = 0; i < sizeof(Field); ++i) {
    bytes.push_back(static_cast<char>(static_cast<std::uint64_t>(bits) >> 8 * i & 0xFF));
  }
}

/// The text of a field of fixed length, up to the first zero, without blanks at its end.
inline std::string TextAt(std::string_view bytes, std::size_t place, std::size_t length) {
  std::string_view text = bytes.substr(place, length);
  text = text.substr(0, text.find('\0'));
  return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_LITTLE_ENDIAN_H
