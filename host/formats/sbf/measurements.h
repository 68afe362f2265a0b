// MeasEpoch: the measurements of an epoch (Septentrio mosaic and AsteRx SBF Reference Guide, block 4027).
//
// A sub-block of type 1 has the first signal of a satellite in full; those of type 2 behind it have further
// signals as differences from it. Both may be longer than is known here: the block says how long they are.
#ifndef ORSOLVA_FORMATS_SBF_MEASUREMENTS_H
#define ORSOLVA_FORMATS_SBF_MEASUREMENTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host::sbf {

/// Fields of a sub-block of type 2 as transmitted, the parts of one value joined.
struct OtherSignal {
  int signal = 0;             ///< signal number, extension included
  int antenna = 0;            ///< 0 is the main antenna
  std::uint8_t lock_s = 255;  ///< clipped to 254; 255: do not use
  std::uint8_t cn0 = 255;     ///< 255: do not use
  int code_offset_mm = 0;     ///< to the pseudorange of type 1, m/1000
  bool has_code = false;      ///< else do not use
  int carrier_m_cycles = 0;   ///< phase less pseudorange, cycles/1000
  bool has_carrier = false;   ///< else do not use
  int doppler_offset = 0;     ///< to the scaled Doppler of type 1, Hz/10000
  bool has_doppler = false;   ///< else do not use
  bool half_cycle = false;    ///< the phase has a half-cycle ambiguity
};

/// Fields of a sub-block of type 1.
struct FirstSignal {
  int svid = 0;
  int signal = 0;
  int antenna = 0;
  std::int64_t code_mm = 0;  ///< 0: do not use
  std::int32_t doppler = 0;  ///< Hz/10000
  bool has_doppler = false;
  int carrier_m_cycles = 0;
  bool has_carrier = false;
  std::uint8_t cn0 = 255;
  std::uint16_t lock_s = 65535;  ///< clipped to 65534; 65535: do not use
  bool half_cycle = false;
  int frequency_number = 0;  ///< GLONASS: 1 to 14, the channel plus 8; 0: not given
  std::vector<OtherSignal> others;
};

struct MeasEpoch {
  std::int64_t time_ns = 0;
  bool scrambled = false;  ///< the receiver lacks the permission to give measurements
  bool e6b = false;        ///< E6 is E6B
  std::vector<FirstSignal> satellites;
};

/// @return absent when sub-blocks are shorter than their fields or reach beyond the block, or it is too short
std::optional<MeasEpoch> ReadMeasEpoch(std::string_view block, std::int64_t time_ns);
/// A block. @pre at most 255 satellites with at most 255 others each
std::string WriteMeasEpoch(const MeasEpoch& epoch);

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_MEASUREMENTS_H
