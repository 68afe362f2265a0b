// ReceiverSetup: what the user entered about the station, and the receiver (Septentrio mosaic and AsteRx SBF
// Reference Guide, block 5902).
#ifndef ORSOLVA_FORMATS_SBF_RECEIVER_SETUP_H
#define ORSOLVA_FORMATS_SBF_RECEIVER_SETUP_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orsolva_host::sbf {

/// Empty where the block does not say.
struct ReceiverSetup {
  std::string marker;
  std::string marker_number;
  std::string receiver;
  std::string receiver_number;
  std::string firmware;
  std::string antenna;  ///< type, with the radome from the 17th character on
  std::string antenna_number;
};

/// Fields of later revisions, and the offsets of the antenna, are not read. @return absent when it is too
/// short
std::optional<ReceiverSetup> ReadReceiverSetup(std::string_view block);
std::string WriteReceiverSetup(const ReceiverSetup& setup, std::int64_t time_ns);

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_RECEIVER_SETUP_H
