// Reads a recording of an RTCM 3 stream epoch by epoch.
#ifndef ORSOLVA_FORMATS_RTCM_READER_H
#define ORSOLVA_FORMATS_RTCM_READER_H

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/frame.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host::rtcm {

/// What a FileError has found where observations come and no date.
constexpr std::string_view kFoundNoDate = "observations without a date";

struct ReaderOptions {
  /// When the recording was made, within half a week, GPS time. Absent: from the first full date in the first
  /// 4 MB, or else from the first GPS week (stream_clock.h).
  std::optional<std::int64_t> near_ns;
  EpochEnd epoch_end = EpochEnd::kNextTime;
  /// Off: of observation messages the time alone is read, and there are no epochs; for the ephemerides and
  /// the station of a whole recording.
  bool epochs = true;
};

/// Streams the epochs of a file of RTCM 3 frames, between which other bytes may lie.
///
/// Damaged frames and messages, impossible fields and messages of other types are counted and cost only
/// themselves; notices with their numbers are added at the end of the data. Epochs are delivered in the order
/// of the file.
class Reader {
 public:
  /// Reads up to the first date.
  /// @throws FileError when there is no frame, or when observations come without any date
  Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
         const ReaderOptions& options = {});

  /// What messages read so far say of the station.
  const StationDescription& Station() const { return decoder_.Station(); }

  /// Fills the next epoch. If reading fails after the first epoch, a notice says so and Failure() returns the
  /// error; the epochs delivered before are valid.
  /// @return false at the end of the data that can be read
  /// @throws FileError when reading fails before the first epoch
  bool Next(ObservationEpoch& epoch);

  /// The ephemerides read since the last call.
  BroadcastRecords TakeBroadcast() { return decoder_.TakeBroadcast(); }
  std::vector<EphemerisMessage> TakeEphemerides() { return decoder_.TakeEphemerides(); }

  /// GLONASS channels from outside, such as a navigation file. @param channel  -7 to 13; others are ignored
  void TakeChannel(int glonass_number, int channel) { decoder_.TakeChannel(glonass_number, channel); }

  /// Why reading ended before the end of the file; absent when it did not.
  const std::optional<FileError>& Failure() const { return failure_; }

  const FrameCounts& Frames() const { return frames_.Counts(); }
  const Decoder& Messages() const { return decoder_; }

 private:
  void ReadAhead();
  bool ReadMore();
  bool Advance(ObservationEpoch& epoch);
  void Finish();
  void AddNotices();

  std::unique_ptr<ByteSource> source_;
  std::string name_;
  Diagnostics& diagnostics_;
  FrameScanner frames_;
  Decoder decoder_;
  std::deque<std::string> ahead_;  ///< messages before the first date
  std::optional<FileError> failure_;
  bool any_epoch_ = false;
  bool at_end_ = false;
  bool finished_ = false;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_READER_H
