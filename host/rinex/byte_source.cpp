#include "host/rinex/byte_source.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

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

/// Gives back the bytes that were looked at to tell the packing, then the rest.
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

class GzipBytes : public ByteSource {
 public:
  GzipBytes(std::unique_ptr<ByteSource> packed, std::string name, Diagnostics& diagnostics)
      : packed_(std::move(packed)), name_(std::move(name)), diagnostics_(diagnostics), input_(kInputSize) {
    constexpr int kGzipWindow = 15 + 16;
    ended_ = inflateInit2(&stream_, kGzipWindow) != Z_OK;
  }
  ~GzipBytes() override { inflateEnd(&stream_); }
  GzipBytes(const GzipBytes&) = delete;
  GzipBytes& operator=(const GzipBytes&) = delete;

  std::size_t Read(char* out, std::size_t size) override {
    stream_.next_out = reinterpret_cast<Bytef*>(out);
    stream_.avail_out = static_cast<uInt>(std::min<std::size_t>(size, 1U << 30));
    const std::size_t wanted = stream_.avail_out;
    while (!ended_ && stream_.avail_out == wanted) Step();
    return wanted - stream_.avail_out;
  }

 private:
  static constexpr std::size_t kInputSize = 1U << 16;

  bool Refill() {
    const std::size_t count = packed_->Read(input_.data(), input_.size());
    stream_.next_in = reinterpret_cast<Bytef*>(input_.data());
    stream_.avail_in = static_cast<uInt>(count);
    return count > 0;
  }

  void Step() {
    if (stream_.avail_in == 0 && !Refill()) return End("the packed data end early");
    const int state = inflate(&stream_, Z_NO_FLUSH);
    if (state == Z_STREAM_END) return NextMember();
    if (state != Z_OK && state != Z_BUF_ERROR) End("the packed data are damaged");
  }

  void NextMember() {
    if (stream_.avail_in == 0 && !Refill()) {
      ended_ = true;
    } else if (stream_.next_in[0] == 0x1f) {
      inflateReset(&stream_);
    } else {
      End("bytes after the packed data are left out");
    }
  }

  void End(const char* why) {
    ended_ = true;
    diagnostics_.Add(name_, 0, why, false);
  }

  std::unique_ptr<ByteSource> packed_;
  std::string name_;
  Diagnostics& diagnostics_;
  std::vector<char> input_;
  z_stream stream_ = {};
  bool ended_ = false;
};

/// The packing that the first bytes give away and that is not read; empty for none.
std::string_view ForeignPacking(const std::string& magic) {
  const std::string_view m = magic;
  if (m.substr(0, 2) == "\x1f\x9d") return "a file packed with compress (.Z)";
  if (m.substr(0, 4) == "PK\x03\x04") return "a zip archive";
  if (m.substr(0, 3) == "BZh") return "a file packed with bzip2";
  if (m.substr(0, 6) == std::string_view("\xfd"
                                         "7zXZ\0",
                                         6))
    return "a file packed with xz";
  return {};
}

std::string ReadMagic(ByteSource& source) {
  std::string magic;
  char buffer[6];
  while (magic.size() < sizeof buffer) {
    const std::size_t count = source.Read(buffer, sizeof buffer - magic.size());
    if (count == 0) break;
    magic.append(buffer, count);
  }
  return magic;
}

}  // namespace

std::unique_ptr<ByteSource> TextBytes(std::string text) {
  return std::make_unique<MemoryBytes>(std::move(text));
}

std::unique_ptr<ByteSource> GunzipBytes(std::unique_ptr<ByteSource> packed, std::string name,
                                        Diagnostics& diagnostics) {
  return std::make_unique<GzipBytes>(std::move(packed), std::move(name), diagnostics);
}

std::unique_ptr<ByteSource> OpenBytes(const std::string& path, Diagnostics& diagnostics) {
  std::FILE* file = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
  if (!file) {
    throw FileError(path, 0, std::strerror(errno), "a readable file", "Check the name and the permissions.");
  }
  std::unique_ptr<ByteSource> bytes = std::make_unique<FileBytes>(path, file);
  std::string magic = ReadMagic(*bytes);
  const std::string_view foreign = ForeignPacking(magic);
  if (!foreign.empty()) {
    throw FileError(path, 0, std::string(foreign), "plain text or gzip", "Unpack the file first.");
  }
  const bool gzip = magic.substr(0, 2) == "\x1f\x8b";
  bytes = std::make_unique<PrefixedBytes>(std::move(magic), std::move(bytes));
  return gzip ? GunzipBytes(std::move(bytes), path, diagnostics) : std::move(bytes);
}

}  // namespace orsolva_host
