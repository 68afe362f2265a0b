// Reads a recording of a Septentrio receiver epoch by epoch.
#ifndef ORSOLVA_FORMATS_SBF_READER_H
#define ORSOLVA_FORMATS_SBF_READER_H

#include <memory>
#include <string>
#include <vector>

#include "host/formats/sbf/decoder.h"
#include "host/formats/streams/recording_reader.h"

namespace orsolva_host::sbf {

/// Streams the epochs of a file of SBF blocks: an epoch per MeasEpoch, in the order of the file. Damaged
/// blocks, impossible fields and blocks of other numbers are counted and cost only themselves.
class Reader : public RecordingReader {
 public:
  /// @param epochs  as for Decoder
  /// @throws FileError when there is no block
  Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics, bool epochs = true);

  const Decoder& Messages() const { return decoder_; }
  /// Hands over the ephemerides read since the last call.
  std::vector<NavigationRecord> TakeEphemerides() { return decoder_.TakeEphemerides(); }

 private:
  void TakeMessage(std::string_view message) override { decoder_.Take(message); }
  bool TakeEpoch(ObservationEpoch& epoch) override { return decoder_.Next(epoch); }
  void EndMessages() override {}
  void AddNotices() override;

  Decoder decoder_;
};

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_READER_H
