// A recording of a stream, in any of the formats that are read, opened for one reading from its beginning.
#ifndef ORSOLVA_JUDGING_STREAM_READING_H
#define ORSOLVA_JUDGING_STREAM_READING_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/formats/streams/recording_reader.h"
#include "host/judging/stream_navigation.h"
#include "host/report/stream_facts.h"
#include "host/rinex/observation_header.h"

namespace orsolva_host {

enum class StreamFormat : std::uint8_t { kRtcm, kSbf, kUbx };

struct StreamOptions {
  /// A time within half a week of the beginning, for formats whose times may lack a date.
  std::optional<std::int64_t> near_ns;
  bool epochs = true;  ///< off: of observations the time alone is read, and there are no epochs
};

class StreamReading {
 public:
  virtual ~StreamReading() = default;

  /// Epochs, frames and why reading ended.
  virtual RecordingReader& Recording() = 0;

  /// What was found so far.
  StreamFacts Facts();
  /// The first receiver, antenna and position stated so far, and the channels of GLONASS.
  virtual void Describe(ObservationHeader& header) const = 0;
  /// The receiver and antenna stated last; empty where none is.
  virtual std::string Receiver() const = 0;
  virtual std::string Antenna() const = 0;
  /// The time of the first observations, GPS time.
  virtual std::optional<std::int64_t> FirstTime() const = 0;

  /// Hands over the ephemerides read since the last call.
  virtual void GiveEphemerides(StreamNavigation& /*navigation*/) {}
  /// GLONASS channels from outside. @param channel  -7 to 13; others are ignored
  virtual void TakeChannel(int /*glonass_number*/, int /*channel*/) {}

 private:
  /// The format and messages by type.
  virtual void AddFacts(StreamFacts& stream) const = 0;
};

/// @throws FileError when there is no frame; when observations come without any date (rtcm::kFoundNoDate)
std::unique_ptr<StreamReading> ReadStream(StreamFormat format, std::unique_ptr<ByteSource> bytes,
                                          const std::string& name, Diagnostics& diagnostics,
                                          const StreamOptions& options = {});

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_STREAM_READING_H
