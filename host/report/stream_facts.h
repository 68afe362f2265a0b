// What a recorded stream was made of.
#ifndef ORSOLVA_REPORT_STREAM_FACTS_H
#define ORSOLVA_REPORT_STREAM_FACTS_H

#include <cstdint>
#include <string>
#include <vector>

namespace orsolva_host {

/// Messages of one type in a stream.
struct StreamMessages {
  int type = 0;
  std::uint64_t messages = 0;
  std::uint64_t damaged = 0;  ///< too short for their fields, of which nothing is used
  bool decoded = false;       ///< else only counted
};

/// The steps of values in MSM4 and MSM5.
struct CoarseSteps {
  double pseudorange_m = 0;
  double phase_m = 0;
  double snr_dbhz = 0;
};
/// 2^-24 and 2^-29 ms of light, and 1 dB-Hz (rtcm/msm.cpp), rounded.
constexpr CoarseSteps kCoarseSteps = {0.018, 0.0006, 1};

struct StreamFacts {
  std::string format;  ///< "RTCM 3"
  std::uint64_t frames = 0;
  std::uint64_t crc_errors = 0;
  std::uint64_t skipped_bytes = 0;  ///< in no frame
  std::vector<StreamMessages> messages;
  std::string coarse_systems;  ///< letters of the systems with MSM4 or MSM5
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_STREAM_FACTS_H
