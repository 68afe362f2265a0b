// Whether data are a recording of a stream, from their content.
#ifndef ORSOLVA_JUDGING_STREAM_DETECTION_H
#define ORSOLVA_JUDGING_STREAM_DETECTION_H

#include <memory>
#include <optional>
#include <string>

#include "host/judging/stream_reading.h"
#include "host/rinex/byte_source.h"

namespace orsolva_host {

struct DetectedStream {
  StreamFormat format = StreamFormat::kRtcm;
  bool navigation = false;  ///< it begins with ephemerides and has no observations in its first 64 KB

  friend bool operator==(const DetectedStream&, const DetectedStream&) = default;
};

/// Looks at the beginning of a source, which delivers it again. Where frames of several formats lie in the
/// first 64 KB, that with observations counts, then that with ephemerides; of equals RTCM 3 comes first, then
/// SBF.
/// @return absent where there is no frame with a correct check sum, and for a RINEX header
std::optional<DetectedStream> DetectStream(std::unique_ptr<ByteSource>& source);

/// Of a regular file, compressed or not; absent for any other and what cannot be read.
std::optional<DetectedStream> DetectStream(const std::string& path);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_STREAM_DETECTION_H
