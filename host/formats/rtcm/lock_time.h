// Lock times, as indicators give them.
#ifndef ORSOLVA_FORMATS_RTCM_LOCK_TIME_H
#define ORSOLVA_FORMATS_RTCM_LOCK_TIME_H

#include <cstdint>

#include "host/formats/streams/lock_time.h"

namespace orsolva_host::rtcm {

using orsolva_host::LockTime;

/// DF013, DF019, DF043, DF049: 7 bits, to 937 s.
LockTime LockTimeOf7Bits(int indicator);
/// DF402: 4 bits, to 524.288 s.
LockTime LockTimeOf4Bits(int indicator);
/// DF407: 10 bits, to 67108.864 s. Indicators above 704 are reserved and read as 704.
LockTime LockTimeOf10Bits(int indicator);

/// The indicator of a lock time, DF402 and DF407. @param milliseconds  0 or more
int Indicator4Bits(std::int64_t milliseconds);
int Indicator10Bits(std::int64_t milliseconds);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_LOCK_TIME_H
