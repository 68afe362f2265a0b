// A recording of a stream as a source of epochs.
#ifndef ORSOLVA_JUDGING_STREAM_SOURCE_H
#define ORSOLVA_JUDGING_STREAM_SOURCE_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/judging/epoch_source.h"
#include "host/judging/shared_navigation.h"
#include "host/judging/stream_reading.h"

namespace orsolva_host {

/// Rounds values to the decimals of a RINEX file (1 mm, 0.001 cycles, 0.001 Hz, 0.001 dB-Hz), so that a
/// stream and its conversion give the same report. The steps of MSM7 are half as wide at most, far below any
/// noise. What rounds to 0 is absent, as it is in RINEX.
void RoundAsRinex(ObservationEpoch& epoch);

/// A recording without any date gets its week from `near_ns`, else from the records of named navigation files
/// (TakeChannels).
///
/// Reads the recording twice: first the ephemerides, the station and the time at which it begins, so that
/// epochs before the first ephemerides are judged as all others are, then the epochs.
class StreamSource : public EpochSource {
 public:
  using Open = std::function<std::unique_ptr<ByteSource>(Diagnostics&)>;

  /// @param open  returns the bytes from the beginning on, each time that it is called; kept
  /// @param near_ns  a time within half a week of the beginning, GPS time, used where the stream has no date
  /// @throws FileError
  StreamSource(StreamFormat format, std::string name, Open open, std::optional<std::int64_t> near_ns,
               Diagnostics& diagnostics);

  const std::string& Name() const override { return name_; }
  const ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override;
  const std::optional<FileError>& Failure() const override {
    return reader_ ? reader_->Recording().Failure() : undated_;
  }
  std::vector<DescriptionChange> Changes() const override { return changes_; }
  std::shared_ptr<const ReadNavigation> Navigation() const override { return navigation_; }
  void TakeChannels(const BroadcastRecords& records) override;
  std::optional<StreamFacts> Stream() const override {
    return reader_ ? std::optional(reader_->Facts()) : std::nullopt;
  }

 private:
  void Begin(std::optional<std::int64_t> near_ns);
  void Survey(std::optional<std::int64_t> near_ns);
  void NoteChanges();

  StreamFormat format_;
  std::string name_;
  Open open_;
  Diagnostics& diagnostics_;
  ObservationHeader header_;
  std::shared_ptr<const ReadNavigation> navigation_;  ///< null without ephemerides
  std::unique_ptr<StreamReading> reader_;             ///< null while there is no date
  std::optional<FileError> undated_;
  std::string antenna_, receiver_;  ///< as stated last
  std::vector<DescriptionChange> changes_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_STREAM_SOURCE_H
