// What a recording of a stream holds, without judging it.
#ifndef ORSOLVA_JUDGING_STREAM_CONTENTS_H
#define ORSOLVA_JUDGING_STREAM_CONTENTS_H

#include <functional>
#include <memory>
#include <string>

#include "host/judging/stream_reading.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// Is given one row after another: its name, and its text.
using ContentRow = std::function<void(const std::string& name, const std::string& text)>;

/// Reads the stream once, which may be a pipe, and gives rows of frames, messages, station, epochs and, by
/// system, observations and ephemerides. What was read before an error is given too.
/// @throws FileError
void ShowStream(StreamFormat format, std::unique_ptr<ByteSource> bytes, const std::string& name,
                Diagnostics& diagnostics, const ContentRow& row);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_STREAM_CONTENTS_H
