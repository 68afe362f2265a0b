// Reads a recording of a u-blox receiver epoch by epoch.
#ifndef ORSOLVA_FORMATS_UBX_READER_H
#define ORSOLVA_FORMATS_UBX_READER_H

#include <memory>
#include <string>

#include "host/formats/streams/recording_reader.h"
#include "host/formats/ubx/decoder.h"

namespace orsolva_host::ubx {

/// Streams the epochs of a file of UBX frames: an epoch per RXM-RAWX, in the order of the file. Damaged
/// frames and messages, impossible fields and messages of other types are counted and cost only themselves.
class Reader : public RecordingReader {
 public:
  /// @param epochs  off: of raw measurements the time and the channels of GLONASS alone are read
  /// @throws FileError when there is no frame
  Reader(std::unique_ptr<ByteSource> source, std::string name, Diagnostics& diagnostics, bool epochs = true);

  const Decoder& Messages() const { return decoder_; }

 private:
  void TakeMessage(std::string_view message) override { decoder_.Take(message); }
  bool TakeEpoch(ObservationEpoch& epoch) override { return decoder_.Next(epoch); }
  void EndMessages() override {}
  void AddNotices() override;

  Decoder decoder_;
};

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_READER_H
