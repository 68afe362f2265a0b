// gzip data (RFC 1952).
#include <zlib.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "host/rinex/byte_source.h"

namespace orsolva_host {
namespace {

class GzipBytes : public ByteSource {
 public:
  GzipBytes(std::unique_ptr<ByteSource> compressed, std::string name, Diagnostics& diagnostics)
      : compressed_(std::move(compressed)),
        name_(std::move(name)),
        diagnostics_(diagnostics),
        input_(kInputSize) {
    constexpr int kGzipWindow = 15 + 16;
    if (inflateInit2(&stream_, kGzipWindow) != Z_OK) throw std::bad_alloc();
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
    const std::size_t count = compressed_->Read(input_.data(), input_.size());
    stream_.next_in = reinterpret_cast<Bytef*>(input_.data());
    stream_.avail_in = static_cast<uInt>(count);
    return count > 0;
  }

  void Step() {
    if (stream_.avail_in == 0 && !Refill()) return Break("truncated compressed data");
    const int state = inflate(&stream_, Z_NO_FLUSH);
    if (state == Z_STREAM_END) return NextMember();
    if (state != Z_OK && state != Z_BUF_ERROR) Break("damaged compressed data");
  }

  void NextMember() {
    if (stream_.avail_in == 0 && !Refill()) {
      ended_ = true;
    } else if (stream_.next_in[0] == 0x1f) {
      inflateReset(&stream_);
    } else {
      End("bytes after the end of the compressed data are ignored");
    }
  }

  void Break(const char* what) {
    ended_ = true;
    diagnostics_.AddIncomplete(name_, 0, what);
  }

  void End(const char* why) {
    ended_ = true;
    diagnostics_.Add(name_, 0, why, false);
  }

  std::unique_ptr<ByteSource> compressed_;
  std::string name_;
  Diagnostics& diagnostics_;
  std::vector<char> input_;
  z_stream stream_ = {};
  bool ended_ = false;
};

}  // namespace

std::unique_ptr<ByteSource> GunzipBytes(std::unique_ptr<ByteSource> compressed, std::string name,
                                        Diagnostics& diagnostics) {
  return std::make_unique<GzipBytes>(std::move(compressed), std::move(name), diagnostics);
}

}  // namespace orsolva_host
