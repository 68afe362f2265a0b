// Compressed data that libarchive reads: compress, bzip2, xz, zstd, and zip archives.
#include <archive.h>
#include <archive_entry.h>

#include <exception>
#include <utility>
#include <vector>

#include "host/rinex/byte_source.h"

namespace orsolva_host {
namespace {

class Archive : public ByteSource {
 public:
  Archive(std::unique_ptr<ByteSource> compressed, Compression compression, std::string name,
          Diagnostics& diagnostics)
      : compressed_(std::move(compressed)),
        name_(std::move(name)),
        diagnostics_(diagnostics),
        archive_(archive_read_new()),
        input_(kInputSize) {
    if (compression == Compression::kZip) {
      archive_read_support_format_zip_streamable(archive_.get());
    } else {
      archive_read_support_format_raw(archive_.get());
      archive_read_support_filter_compress(archive_.get());
      archive_read_support_filter_bzip2(archive_.get());
      archive_read_support_filter_xz(archive_.get());
      archive_read_support_filter_zstd(archive_.get());
    }
    Open();
  }

  std::size_t Read(char* out, std::size_t size) override {
    if (ended_) return 0;
    const la_ssize_t count = archive_read_data(archive_.get(), out, size);
    CheckSource();
    if (count < 0) {
      End("damaged or truncated compressed data");
      return 0;
    }
    if (count == 0) {
      ended_ = true;
      if (NextFile()) diagnostics_.Add(name_, 0, "archive of several files; only the first is read", false);
    }
    return static_cast<std::size_t>(count);
  }

 private:
  static constexpr std::size_t kInputSize = 1U << 16;

  struct Free {
    void operator()(archive* a) const { archive_read_free(a); }
  };

  // An exception must not pass through the C library; it is held until the library has returned.
  static la_ssize_t Refill(archive* /*unused*/, void* self_pointer, const void** data) {
    auto* const self = static_cast<Archive*>(self_pointer);
    *data = self->input_.data();
    try {
      return static_cast<la_ssize_t>(self->compressed_->Read(self->input_.data(), self->input_.size()));
    } catch (...) {
      self->failure_ = std::current_exception();
      return -1;
    }
  }

  void CheckSource() {
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  }

  void Open() {
    const bool open = archive_read_open(archive_.get(), this, nullptr, Refill, nullptr) == ARCHIVE_OK;
    CheckSource();
    if (!open) return End("damaged or truncated compressed data");
    if (!NextFile() && !ended_) End("an archive without files");
  }

  /// Advances to the next regular file.
  bool NextFile() {
    for (;;) {
      archive_entry* entry = nullptr;
      const int state = archive_read_next_header(archive_.get(), &entry);
      CheckSource();
      if (state == ARCHIVE_EOF) return false;
      if (state != ARCHIVE_OK && state != ARCHIVE_WARN) {
        if (!ended_) End("damaged or truncated compressed data");
        return false;
      }
      // The raw format has no file type.
      const auto type = archive_entry_filetype(entry);
      if (type == AE_IFREG || type == 0) return true;
    }
  }

  void End(const char* what) {
    ended_ = true;
    diagnostics_.AddIncomplete(name_, 0, what);
  }

  std::unique_ptr<ByteSource> compressed_;
  std::string name_;
  Diagnostics& diagnostics_;
  std::unique_ptr<archive, Free> archive_;
  std::vector<char> input_;
  std::exception_ptr failure_;
  bool ended_ = false;
};

}  // namespace

std::unique_ptr<ByteSource> ArchiveBytes(std::unique_ptr<ByteSource> compressed, Compression compression,
                                         std::string name, Diagnostics& diagnostics) {
  return std::make_unique<Archive>(std::move(compressed), compression, std::move(name), diagnostics);
}

}  // namespace orsolva_host
