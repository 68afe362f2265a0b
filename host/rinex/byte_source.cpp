#include "host/rinex/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

namespace orsolva_host {
namespace {

class FileBytes : public ByteSource {
 public:
  explicit FileBytes(const std::string& path, std::FILE* file)
      : path_(path), file_(file), owned_(file != stdin) {}
  ~FileBytes() override {
    if (owned_) std::fclose(file_);
  }
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::fread(out, 1, size, file_);
    if (count == 0 && std::ferror(file_)) {
      if (errno == EISDIR) {
        throw FileError(path_, 0, "a folder", "a file",
                        "Name the files; orsolva qc takes a folder that has observation files in it.");
      }
      throw FileError(path_, 0, std::strerror(errno), "readable data", "Check the path and the disk.");
    }
    return count;
  }

 private:
  std::string path_;
  std::FILE* file_;
  bool owned_;
};

class MemoryBytes : public ByteSource {
 public:
  explicit MemoryBytes(std::string text) : text_(std::move(text)) {}

  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::min(size, text_.size() - position_);
    std::memcpy(out, text_.data() + position_, count);
    position_ += count;
    return count;
  }

 private:
  std::string text_;
  std::size_t position_ = 0;
};

/// Gives back the bytes read to detect the compression, then the rest.
class PrefixedBytes : public ByteSource {
 public:
  PrefixedBytes(std::string prefix, std::unique_ptr<ByteSource> rest)
      : prefix_(std::move(prefix)), rest_(std::move(rest)) {}

  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = prefix_.Read(out, size);
    return count > 0 ? count : rest_->Read(out, size);
  }

 private:
  MemoryBytes prefix_;
  std::unique_ptr<ByteSource> rest_;
};

/// Stops reading when compressed data expand beyond the limit.
class LimitedBytes : public ByteSource {
 public:
  LimitedBytes(std::unique_ptr<ByteSource> bytes, std::string name, const InputLimits& limits)
      : bytes_(std::move(bytes)), name_(std::move(name)), most_(limits.max_decompressed_bytes) {}

  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = bytes_->Read(out, size);
    if (count > most_ - given_) {
      throw FileError(name_, 0, "more than " + std::to_string(most_) + " bytes when decompressed", "fewer",
                      "Raise the limit with --max-size if the file is meant to be that large.");
    }
    given_ += count;
    return count;
  }

 private:
  std::unique_ptr<ByteSource> bytes_;
  std::string name_;
  std::uint64_t most_;
  std::uint64_t given_ = 0;
};

/// Detects the compression from the first bytes.
Compression CompressionOf(std::string_view magic) {
  constexpr std::string_view kXz(
      "\xfd"
      "7zXZ\0",
      6);
  const auto begins = [magic](std::string_view with) { return magic.substr(0, with.size()) == with; };
  if (begins("\x1f\x8b")) return Compression::kGzip;
  if (begins("PK\x03\x04")) return Compression::kZip;
  const bool filter = begins("\x1f\x9d") || begins("BZh") || begins(kXz) || begins("\x28\xb5\x2f\xfd");
  return filter ? Compression::kFilter : Compression::kNone;
}

constexpr std::size_t kMagicBytes = 6;

}  // namespace

void FailToOpen(const std::string& path, int reason) {
  if (reason == ENOENT) throw FileError(path, 0, "no such file", "", "Check the name and the folder.");
  throw FileError(path, 0, std::string("cannot be opened: ") + std::strerror(reason), "",
                  "Check the name and the permissions.");
}

std::string Peek(std::unique_ptr<ByteSource>& source, std::size_t size) {
  std::string bytes(size, '\0');
  std::size_t held = 0;
  while (held < size) {
    const std::size_t count = source->Read(bytes.data() + held, size - held);
    if (count == 0) break;
    held += count;
  }
  bytes.resize(held);
  source = std::make_unique<PrefixedBytes>(bytes, std::move(source));
  return bytes;
}

std::unique_ptr<ByteSource> TextBytes(std::string text) {
  return std::make_unique<MemoryBytes>(std::move(text));
}

std::unique_ptr<ByteSource> DecompressedBytes(std::unique_ptr<ByteSource> source, const std::string& name,
                                              Diagnostics& diagnostics, const InputLimits& limits,
                                              bool ahead) {
  // A compressed file inside an archive is common; deeper nesting is no accident.
  constexpr int kMaxCompressionLayers = 3;
  for (int depth = 0; depth < kMaxCompressionLayers; ++depth) {
    const Compression compression = CompressionOf(Peek(source, kMagicBytes));
    if (compression == Compression::kNone) break;
    if (ahead) return DecompressedAhead(std::move(source), name, diagnostics, limits);
    source = compression == Compression::kGzip
                 ? GunzipBytes(std::move(source), name, diagnostics)
                 : ArchiveBytes(std::move(source), compression, name, diagnostics);
    source = std::make_unique<LimitedBytes>(std::move(source), name, limits);
  }
  return source;
}

std::unique_ptr<ByteSource> OpenBytes(const std::string& path, Diagnostics& diagnostics,
                                      const InputLimits& limits) {
  std::FILE* file = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
  if (!file) FailToOpen(path, errno);
  return DecompressedBytes(std::make_unique<FileBytes>(path, file), path, diagnostics, limits);
}

}  // namespace orsolva_host
