// Opens an observation file so that the bytes read from disk are counted.
#ifndef ORSOLVA_JUDGING_COUNTED_FILE_H
#define ORSOLVA_JUDGING_COUNTED_FILE_H

#include <memory>
#include <string>

#include "host/judging/run_monitor.h"
#include "host/rinex/byte_source.h"

namespace orsolva_host {

/// As OpenBytes. With a monitor that counts bytes, those of a regular file are added to it as they are read.
/// @throws FileError
std::unique_ptr<ByteSource> OpenCounted(const std::string& path, Diagnostics& diagnostics,
                                        const InputLimits& limits, RunMonitor* monitor);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_COUNTED_FILE_H
