// Source of the bytes of a file: a plain file, standard input, compressed data or a text in memory.
#ifndef ORSOLVA_RINEX_BYTE_SOURCE_H
#define ORSOLVA_RINEX_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/rinex/diagnostics.h"

namespace orsolva_host {

/// Limits on one input file. A compressed file of a few kilobytes can expand beyond the size of any disk.
struct InputLimits {
  /// Bytes that a compressed file may expand to. Uncompressed files may have any size.
  std::uint64_t max_decompressed_bytes = std::uint64_t{8} << 30;

  /// Different records that navigation files may contain in total: those of all systems for months.
  std::size_t max_records = 1000000;
};

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Reads up to `size` bytes. @return how many were read; 0 at the end of the data
  virtual std::size_t Read(char* out, std::size_t size) = 0;
};

/// @param reason  errno of the attempt @throws FileError always
[[noreturn]] void FailToOpen(const std::string& path, int reason);

/// Opens a file ("-" is standard input) and decompresses gzip, compress (.Z), zip, bzip2, xz and zstd, also
/// nested, detected from the content and not the name. Of a zip archive the first file is read. Truncated or
/// damaged data give a notice, and what was decompressed before that is still delivered.
/// @throws FileError when the file cannot be opened; reading throws it when the limit is reached
std::unique_ptr<ByteSource> OpenBytes(const std::string& path, Diagnostics& diagnostics,
                                      const InputLimits& limits = {});

/// Decompresses a source as OpenBytes does.
/// @param name   file name in notices
/// @param ahead  compressed data are decompressed by DecompressedAhead
std::unique_ptr<ByteSource> DecompressedBytes(std::unique_ptr<ByteSource> source, const std::string& name,
                                              Diagnostics& diagnostics, const InputLimits& limits = {},
                                              bool ahead = false);

/// Decompresses a source on a thread of its own, ahead of the reader; where the system gives no thread, when
/// it is read. Bytes and errors are the same. Notices about the compression come when the data end.
/// Destruction waits for the source's Read, which must not block.
std::unique_ptr<ByteSource> DecompressedAhead(std::unique_ptr<ByteSource> compressed, const std::string& name,
                                              Diagnostics& diagnostics, const InputLimits& limits = {});

/// The first bytes of a source, at most so many. The source gives them again: it may be a pipe.
std::string Peek(std::unique_ptr<ByteSource>& source, std::size_t size);

/// The bytes of a text.
std::unique_ptr<ByteSource> TextBytes(std::string text);

/// Decompresses gzip data. Concatenated members are joined.
std::unique_ptr<ByteSource> GunzipBytes(std::unique_ptr<ByteSource> compressed, std::string name,
                                        Diagnostics& diagnostics);

enum class Compression { kNone, kGzip, kFilter, kZip };

/// Decompresses data of a compression filter (compress, bzip2, xz, zstd) or the first file of a zip archive.
std::unique_ptr<ByteSource> ArchiveBytes(std::unique_ptr<ByteSource> compressed, Compression compression,
                                         std::string name, Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_BYTE_SOURCE_H
