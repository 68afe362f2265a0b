// What the fuzz targets of recordings share.
#ifndef ORSOLVA_FUZZ_RECORDED_EPOCHS_H
#define ORSOLVA_FUZZ_RECORDED_EPOCHS_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "host/observation/observation_epoch.h"
#include "host/rinex/byte_source.h"

namespace orsolva_fuzz {

inline std::unique_ptr<orsolva_host::ByteSource> BytesOf(std::string bytes) {
  class Bytes : public orsolva_host::ByteSource {
   public:
    explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}
    std::size_t Read(char* out, std::size_t size) override {
      const std::size_t count = std::min(size, bytes_.size() - at_);
      std::memcpy(out, bytes_.data() + at_, count);
      at_ += count;
      return count;
    }

   private:
    std::string bytes_;
    std::size_t at_ = 0;
  };
  return std::make_unique<Bytes>(std::move(bytes));
}

/// Messages, each behind two bytes of length, in frames. @param high_bits  of the length in its first byte
template <class FrameOf>
std::string Framed(std::string_view messages, unsigned high_bits, FrameOf frame_of) {
  std::string stream;
  while (messages.size() >= 2) {
    const std::size_t length =
        (static_cast<unsigned char>(messages[0]) & high_bits) << 8 | static_cast<unsigned char>(messages[1]);
    const std::string_view message = messages.substr(2, length);
    stream += frame_of(message);
    messages.remove_prefix(2 + message.size());
  }
  return stream;
}

inline void CheckEpoch(const orsolva_host::ObservationEpoch& epoch) {
  std::size_t next = 0;
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    const auto& satellite = epoch.satellites[i];
    Require(satellite.first_signal == next && satellite.signal_count > 0, "signals follow one another");
    Require(i == 0 || epoch.satellites[i - 1].id < satellite.id, "satellites are in order, each once");
    next += satellite.signal_count;
  }
  Require(next == epoch.signals.size(), "every signal has a satellite");
  for (const auto& signal : epoch.signals) {
    Require(!(std::fabs(signal.pseudorange_m) > 1e8), "ranges are those of satellites");
  }
}

}  // namespace orsolva_fuzz

#endif  // ORSOLVA_FUZZ_RECORDED_EPOCHS_H
