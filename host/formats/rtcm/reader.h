// Reads a recording of an RTCM 3 stream epoch by epoch.
#ifndef ORSOLVA_FORMATS_RTCM_READER_H
#define ORSOLVA_FORMATS_RTCM_READER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/formats/rtcm/decoder.h"
#include "host/formats/rtcm/frame.h"
#include "host/formats/streams/recording_reader.h"
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
class Reader : public RecordingReader {
 public:
  /// Reads up to the first date.
  /// @throws FileError when there is no frame, or when observations come without any date
  Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics,
         const ReaderOptions& options = {});

  /// What messages read so far say of the station.
  const StationDescription& Station() const { return decoder_.Station(); }

  /// The ephemerides read since the last call.
  BroadcastRecords TakeBroadcast() { return decoder_.TakeBroadcast(); }
  std::vector<EphemerisMessage> TakeEphemerides() { return decoder_.TakeEphemerides(); }

  /// GLONASS channels from outside, such as a navigation file. @param channel  -7 to 13; others are ignored
  void TakeChannel(int glonass_number, int channel) { decoder_.TakeChannel(glonass_number, channel); }

  const Decoder& Messages() const { return decoder_; }

 private:
  void ReadUpToDate();
  void TakeMessage(std::string_view message) override { decoder_.Take(message); }
  bool TakeEpoch(ObservationEpoch& epoch) override { return decoder_.Next(epoch); }
  void EndMessages() override { decoder_.Finish(); }
  void AddNotices() override;

  Decoder decoder_;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_READER_H
