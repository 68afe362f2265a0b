// Types of messages (u-blox ZED-F9P interface description, "UBX messages overview").
#ifndef ORSOLVA_FORMATS_UBX_MESSAGES_H
#define ORSOLVA_FORMATS_UBX_MESSAGES_H

namespace orsolva_host::ubx {

constexpr int kRawMeasurements = 0x0215;  ///< RXM-RAWX
constexpr int kVersion = 0x0A04;          ///< MON-VER

/// Whether messages of this type are decoded.
inline bool IsDecoded(int type) { return type == kRawMeasurements || type == kVersion; }

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_MESSAGES_H
