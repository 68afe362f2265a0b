// Destination of the bytes of a file: plain, or compressed with gzip when the name ends in ".gz".
#ifndef ORSOLVA_OUTPUT_BYTE_SINK_H
#define ORSOLVA_OUTPUT_BYTE_SINK_H

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace orsolva_host {

/// A file that cannot be written: its name and why.
class WriteError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Nobody reads standard output any more, as after `| head -1`.
class ClosedPipe : public WriteError {
 public:
  ClosedPipe() : WriteError("nothing reads standard output any more") {}
};

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  /// @throws WriteError
  virtual void Write(const char* data, std::size_t size) = 0;
  /// Must be called at the end; only then is the file complete. @throws WriteError
  virtual void Close() = 0;
};

/// @param name  file name in errors, if `path` is renamed later
/// @throws WriteError when the file cannot be opened
std::unique_ptr<ByteSink> OpenSink(const std::string& path, const std::string& name = {});

/// Creates a folder and its parents. @throws WriteError
void MakeFolder(const std::string& folder);

/// Collects the bytes in a string that outlives the sink.
std::unique_ptr<ByteSink> TextSink(std::string& text);

}  // namespace orsolva_host

#endif  // ORSOLVA_OUTPUT_BYTE_SINK_H
