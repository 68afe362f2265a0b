// A file opened once, with the kind of its content: what reads on may be given a pipe.
#ifndef ORSOLVA_JUDGING_OPENED_FILE_H
#define ORSOLVA_JUDGING_OPENED_FILE_H

#include <memory>
#include <optional>
#include <string>

#include "host/judging/stream_reading.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// What has no form of its own counts as observations, whose reader says what it expects.
enum class ContentKind { kObservations, kNavigation, kPreciseOrbits, kStream };

struct OpenedFile {
  std::unique_ptr<ByteSource> bytes;  ///< from the first one on, decompressed
  ContentKind kind = ContentKind::kObservations;
  std::optional<StreamFormat> stream;  ///< of a stream
};

/// @param path  "-" is standard input @throws FileError when it cannot be opened or read
OpenedFile OpenAnyFile(const std::string& path, Diagnostics& diagnostics, const InputLimits& limits);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_OPENED_FILE_H
