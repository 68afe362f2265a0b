// Stands in for archive_bytes.cpp in builds without libarchive.
#include "host/rinex/byte_source.h"

namespace orsolva_host {

std::unique_ptr<ByteSource> ArchiveBytes(std::unique_ptr<ByteSource> /*packed*/, Packing packing,
                                         std::string name, Diagnostics& /*diagnostics*/) {
  throw FileError(std::move(name), 0,
                  packing == Packing::kZip ? "a zip archive" : "data packed by compress, bzip2, xz or zstd",
                  "a file that is plain or packed by gzip: this build has no libarchive",
                  "Unpack the file first, or pack it with gzip.");
}

}  // namespace orsolva_host
