// Reads a recording of a stream epoch by epoch, whatever its frames hold.
#ifndef ORSOLVA_FORMATS_STREAMS_RECORDING_READER_H
#define ORSOLVA_FORMATS_STREAMS_RECORDING_READER_H

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/formats/streams/frame_finder.h"
#include "host/observation/observation_epoch.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// Frames may lie between any other bytes. Notices with what was counted are added at the end of the data.
class RecordingReader {
 public:
  virtual ~RecordingReader() = default;
  RecordingReader(const RecordingReader&) = delete;
  RecordingReader& operator=(const RecordingReader&) = delete;

  /// Fills the next epoch. If reading fails after the first epoch, a notice says so and Failure() returns the
  /// error; the epochs delivered before are valid.
  /// @return false at the end of the data that can be read
  /// @throws FileError when reading fails before the first epoch
  bool Next(ObservationEpoch& epoch);

  /// Why reading ended before the end of the file; absent when it did not.
  const std::optional<FileError>& Failure() const { return failure_; }

  const FrameCounts& Frames() const { return frames_.Counts(); }

 protected:
  RecordingReader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
                  const FrameForm& form);

  const std::string& Name() const { return name_; }
  /// Reads a message and keeps it: TakeMessage is given it when its turn comes. @return valid until the next
  /// message is read; absent at the end of the data, and after 4 MB without a frame, which are something else
  std::optional<std::string_view> ReadAhead();
  /// Adds a notice with its number, if that is not 0. @param recovered  as in Diagnostics
  void AddNotice(std::uint64_t count, const std::string& text, bool recovered);

 private:
  /// The next message, in order.
  virtual void TakeMessage(std::string_view message) = 0;
  /// Fills the next epoch that is complete. @return false when more messages are needed
  virtual bool TakeEpoch(ObservationEpoch& epoch) = 0;
  /// No message follows.
  virtual void EndMessages() = 0;
  /// Adds notices of what was counted in messages.
  virtual void AddNotices() = 0;

  bool ReadMore();
  bool TakeNext();
  bool Advance(ObservationEpoch& epoch);
  void Finish();

  std::unique_ptr<ByteSource> source_;
  std::string name_;
  Diagnostics& diagnostics_;
  FrameFinder frames_;
  std::deque<std::string> ahead_;
  std::optional<FileError> failure_;
  bool any_epoch_ = false;
  bool at_end_ = false;
  bool finished_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_RECORDING_READER_H
