#include "host/output/byte_sink.h"

#include <zlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orsolva_host {
namespace {

/// Fast compression: a day at 1 Hz is a gigabyte uncompressed.
constexpr char kGzipMode[] = "wb1";
constexpr unsigned kGzipBuffer = 1 << 18;

[[noreturn]] void Fail(const std::string& path, const char* reason) {
  throw WriteError(path + ": could not be written (" + reason +
                   "). Check the folder and the room on the disk.");
}

class PlainSink : public ByteSink {
 public:
  PlainSink(const std::string& path, std::string name)
      : name_(std::move(name)), file_(std::fopen(path.c_str(), "wb")) {
    if (!file_) Fail(name_, std::strerror(errno));
  }
  ~PlainSink() override {
    if (file_) std::fclose(file_);
  }
  PlainSink(const PlainSink&) = delete;
  PlainSink& operator=(const PlainSink&) = delete;

  void Write(const char* data, std::size_t size) override {
    if (std::fwrite(data, 1, size, file_) != size) Fail(name_, std::strerror(errno));
  }
  void Close() override {
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0) Fail(name_, std::strerror(errno));
  }

 private:
  std::string name_;
  std::FILE* file_;
};

class GzipSink : public ByteSink {
 public:
  GzipSink(const std::string& path, std::string name)
      : name_(std::move(name)), file_(gzopen(path.c_str(), kGzipMode)) {
    if (!file_) Fail(name_, std::strerror(errno));
    gzbuffer(file_, kGzipBuffer);
  }
  ~GzipSink() override {
    if (file_) gzclose(file_);
  }
  GzipSink(const GzipSink&) = delete;
  GzipSink& operator=(const GzipSink&) = delete;

  void Write(const char* data, std::size_t size) override {
    if (size == 0 || gzwrite(file_, data, static_cast<unsigned>(size)) > 0) return;
    int state = Z_OK;
    gzerror(file_, &state);
    Fail(name_, ReasonOf(state));
  }
  void Close() override {
    gzFile file = file_;
    file_ = nullptr;
    const int state = gzclose(file);
    if (state != Z_OK) Fail(name_, ReasonOf(state));
  }

 private:
  static const char* ReasonOf(int state) {
    return state == Z_ERRNO ? std::strerror(errno) : "compression failed";
  }

  std::string name_;
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

std::unique_ptr<ByteSink> OpenSink(const std::string& path, const std::string& name) {
  const std::string& shown = name.empty() ? path : name;
  if (EndsInGz(path)) return std::make_unique<GzipSink>(path, shown);
  return std::make_unique<PlainSink>(path, shown);
}

void MakeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error) return;
  throw WriteError(folder + ": the folder could not be made (" + error.message() +
                   "). Check the name and the permissions.");
}

std::unique_ptr<ByteSink> TextSink(std::string& text) { return std::make_unique<ToText>(text); }

}  // namespace orsolva_host
