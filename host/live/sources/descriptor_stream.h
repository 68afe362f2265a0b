// A stream behind a file descriptor.
#ifndef ORSOLVA_LIVE_SOURCES_DESCRIPTOR_STREAM_H
#define ORSOLVA_LIVE_SOURCES_DESCRIPTOR_STREAM_H

#include <chrono>
#include <string>

#include "host/live/sources/byte_stream.h"

namespace orsolva_host::live {

/// Closed with the object; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number, bool owned = true) : number_(number), owned_(owned) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();
  int Number() const { return number_; }

 private:
  int number_ = -1;
  bool owned_ = true;
};

/// What the system says of an error number.
std::string ReasonOf(int error);

/// The connection is over.
ReadOutcome Over(std::string problem);

class DescriptorStream : public ByteStream {
 public:
  /// @param problem  that reading reports; empty: none @param silence  zero: for ever
  /// @param end      what is said when the other side has closed
  DescriptorStream(Descriptor descriptor, std::string problem, std::chrono::seconds silence, const char* end);
  ReadOutcome Read(std::chrono::milliseconds longest) override;

 private:
  ReadOutcome Nothing() const;

  Descriptor descriptor_;
  std::string problem_;
  std::chrono::seconds silence_;
  const char* end_;
  std::chrono::steady_clock::time_point last_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_DESCRIPTOR_STREAM_H
