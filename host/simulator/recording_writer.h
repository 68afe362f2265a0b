// Writes a simulated span as a recording of a stream.
#ifndef ORSOLVA_SIMULATOR_RECORDING_WRITER_H
#define ORSOLVA_SIMULATOR_RECORDING_WRITER_H

#include "host/observation/observation_epoch.h"

namespace orsolva_host {

/// The recording is decoded as it is written, so that its twin in another format can be made of what a reader
/// of the recording gets.
class RecordingWriter {
 public:
  virtual ~RecordingWriter() = default;

  /// Writes an epoch. @throws WriteError, as Close
  virtual void Write(const ObservationEpoch& epoch) = 0;
  virtual void Close() = 0;

  /// The next epoch that a reader of the recording gets, the last ones after Close.
  virtual bool Next(ObservationEpoch& epoch) = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_RECORDING_WRITER_H
