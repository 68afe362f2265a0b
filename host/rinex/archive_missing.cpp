// Replaces archive_bytes.cpp in builds without libarchive.
#include "host/rinex/byte_source.h"

namespace orsolva_host {

std::unique_ptr<ByteSource> ArchiveBytes(std::unique_ptr<ByteSource> /*compressed*/, Compression compression,
                                         std::string name, Diagnostics& /*diagnostics*/) {
  throw FileError(
      std::move(name), 0,
      compression == Compression::kZip ? "a zip archive" : "data compressed by compress, bzip2, xz or zstd",
      "an uncompressed or gzip file, since this build has no libarchive",
      "Decompress the file first, or compress it with gzip.");
}

}  // namespace orsolva_host
