#include "host/output/byte_sink.h"

#include <zlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace orsolva_host {
namespace {

/// Fast packing: a day at 1 Hz is a gigabyte before it.
constexpr char kGzipMode[] = "wb1";
constexpr unsigned kGzipBuffer = 1 << 18;

[[noreturn]] void Fail(const std::string& path, const char* reason) {
  throw WriteError(path + ": could not be written (" + reason +
                   "). Check the folder and the room on the disk.");
}

class PlainSink : public ByteSink {
 public:
  explicit PlainSink(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb")) {
    if (!file_) Fail(path_, std::strerror(errno));
  }
  ~PlainSink() override {
    if (file_) std::fclose(file_);
  }
  PlainSink(const PlainSink&) = delete;
  PlainSink& operator=(const PlainSink&) = delete;

  void Write(const char* data, std::size_t size) override {
    if (std::fwrite(data, 1, size, file_) != size) Fail(path_, std::strerror(errno));
  }
  void Close() override {
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) Fail(path_, std::strerror(errno));
  }

 private:
  std::string path_;
  std::FILE* file_;
};

class GzipSink : public ByteSink {
 public:
  explicit GzipSink(const std::string& path) : path_(path), file_(gzopen(path.c_str(), kGzipMode)) {
    if (!file_) Fail(path_, std::strerror(errno));
    gzbuffer(file_, kGzipBuffer);
  }
  ~GzipSink() override {
    if (file_) gzclose(file_);
  }
  GzipSink(const GzipSink&) = delete;
  GzipSink& operator=(const GzipSink&) = delete;

  void Write(const char* data, std::size_t size) override {
    if (size > 0 && gzwrite(file_, data, static_cast<unsigned>(size)) <= 0) Fail(path_, "packing failed");
  }
  void Close() override {
    gzFile file = file_;
    file_ = nullptr;
    if (gzclose(file) != Z_OK) Fail(path_, "packing failed");
  }

 private:
  std::string path_;
  gzFile file_;
};

class ToText : public ByteSink {
 public:
  explicit ToText(std::string& text) : text_(text) {}
  void Write(const char* data, std::size_t size) override { text_.append(data, size); }
  void Close() override {}

 private:
  std::string& text_;
};

bool EndsInGz(const std::string& path) {
  return path.size() > 3 && path.compare(path.size() - 3, 3, ".gz") == 0;
}

}  // namespace

std::unique_ptr<ByteSink> OpenSink(const std::string& path) {
  if (EndsInGz(path)) return std::make_unique<GzipSink>(path);
  return std::make_unique<PlainSink>(path);
}

std::unique_ptr<ByteSink> TextSink(std::string& text) { return std::make_unique<ToText>(text); }

}  // namespace orsolva_host
