// Where the bytes of a file come from: a plain file, standard input, a gzip stream or a text in memory.
#ifndef ORSOLVA_RINEX_BYTE_SOURCE_H
#define ORSOLVA_RINEX_BYTE_SOURCE_H

#include <cstddef>
#include <memory>
#include <string>

#include "host/rinex/diagnostics.h"

namespace orsolva_host {

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Reads up to `size` bytes. @return how many were read; 0 at the end of the data
  virtual std::size_t Read(char* out, std::size_t size) = 0;
};

/// Opens a file ("-" is standard input) and unpacks gzip when the content is gzip, whatever the name says.
/// Data that end early or are damaged give a notice, and what was unpacked before is still delivered.
/// @throws FileError when the file cannot be opened, or is packed in a way that is not read
std::unique_ptr<ByteSource> OpenBytes(const std::string& path, Diagnostics& diagnostics);

/// The bytes of a text.
std::unique_ptr<ByteSource> TextBytes(std::string text);

/// Unpacks `packed`, which holds gzip data. Members that follow each other are joined.
std::unique_ptr<ByteSource> GunzipBytes(std::unique_ptr<ByteSource> packed, std::string name,
                                        Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_BYTE_SOURCE_H
