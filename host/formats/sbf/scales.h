// Units of the fields of MeasEpoch, for reading and writing.
#ifndef ORSOLVA_FORMATS_SBF_SCALES_H
#define ORSOLVA_FORMATS_SBF_SCALES_H

namespace orsolva_host::sbf {

constexpr double kCodeUnits_per_m = 1000;
constexpr double kPhaseUnits_per_cycle = 1000;
constexpr double kDopplerUnits_per_hz = 10000;
constexpr double kCn0Units_per_dbhz = 4;
constexpr double kCn0Offset_dbhz = 10;  ///< of all signals but GPS L1P and L2P
constexpr int kNoCn0 = 255;

constexpr int kFirstLockLimit_s = 65534;
constexpr int kOtherLockLimit_s = 254;

constexpr int kChannelOffset = 8;  ///< of the frequency number of GLONASS

/// @param signal  number
constexpr double Cn0Offset(int signal) { return signal == 1 || signal == 2 ? 0 : kCn0Offset_dbhz; }

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_SCALES_H
