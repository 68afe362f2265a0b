// Bytes of a stream as they come.
#ifndef ORSOLVA_LIVE_SOURCES_BYTE_STREAM_H
#define ORSOLVA_LIVE_SOURCES_BYTE_STREAM_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "host/live/sources/source_spec.h"
#include "host/live/sources/source_table.h"

namespace orsolva_host::live {

/// How reading went.
struct ReadOutcome {
  enum class State {
    kData,
    kNothing,  ///< nothing came in the time
    kEnd,      ///< the connection is over; problem says why
    kRefused,  ///< by the other side, for a reason that does not go away by itself: unknown mount, password
  } state = State::kNothing;
  std::string bytes;
  std::string problem;  ///< a sentence without secrets
};

/// One connection. It belongs to one thread.
class ByteStream {
 public:
  virtual ~ByteStream() = default;
  /// Waits for data, at most so long.
  virtual ReadOutcome Read(std::chrono::milliseconds longest) = 0;
};

/// What opening a stream needs besides its source.
struct ConnectionOptions {
  std::string certificates;                  ///< file of authorities; empty: those of the system
  std::optional<std::array<double, 3>> llh;  ///< where the caster asks for a position: degrees and metres
  MountWishes* wishes = nullptr;             ///< outlives the stream; null: the caster is not asked
  std::chrono::seconds silence{60};          ///< without a byte the connection is given up
};

/// Connects, or begins to; a failure is reported by the first Read.
std::unique_ptr<ByteStream> OpenStream(const SourceSpec& spec, const ConnectionOptions& options);

// One each.
std::unique_ptr<ByteStream> OpenCaster(const SourceSpec& spec, const ConnectionOptions& options);
std::unique_ptr<ByteStream> OpenTcp(const SourceSpec& spec, const ConnectionOptions& options);
std::unique_ptr<ByteStream> OpenSerial(const SourceSpec& spec, const ConnectionOptions& options);
std::unique_ptr<ByteStream> OpenStandardInput();

/// Whether this build reads from casters.
bool HasCasters();

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_BYTE_STREAM_H
