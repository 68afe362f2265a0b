// Whether data are a recording of an RTCM 3 stream, from their content.
#ifndef ORSOLVA_JUDGING_RTCM_DETECTION_H
#define ORSOLVA_JUDGING_RTCM_DETECTION_H

#include <memory>
#include <string>

#include "host/rinex/byte_source.h"

namespace orsolva_host {

enum class RtcmContent {
  kNone,          ///< no frame with a correct CRC within the first 64 KB, or a RINEX header
  kObservations,  ///< frames, also of messages that are neither
  kNavigation,    ///< ephemerides and no observations
};

/// Looks at the beginning of a source, which delivers it again.
RtcmContent RtcmContentOf(std::unique_ptr<ByteSource>& source);

/// Of a regular file, compressed or not; kNone for any other and what cannot be read.
RtcmContent RtcmContentOf(const std::string& path);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_RTCM_DETECTION_H
