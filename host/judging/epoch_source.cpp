#include "host/judging/epoch_source.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "host/rinex/byte_source.h"
#include "host/rinex/observation_reader.h"

namespace orsolva_host {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A regular file, of which the bytes that are read are counted.
class CountedFile : public ByteSource {
 public:
  /// @param monitor  may be null
  CountedFile(std::string path, std::FILE* file, RunMonitor* monitor)
      : path_(std::move(path)), file_(file), monitor_(monitor) {}

  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::fread(out, 1, size, file_.get());
    if (count == 0 && std::ferror(file_.get()) != 0) {
      throw FileError(path_, 0, std::strerror(errno), "readable data", "Check the path and the disk.");
    }
    if (monitor_ != nullptr) monitor_->bytes.fetch_add(count, std::memory_order_relaxed);
    return count;
  }

 private:
  std::string path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  RunMonitor* monitor_;
};

std::unique_ptr<ByteSource> OpenRegular(const std::string& path, const JudgingSettings& settings,
                                        Diagnostics& diagnostics, RunMonitor* monitor) {
  std::error_code ignored;
  std::FILE* file =
      std::filesystem::is_regular_file(path, ignored) ? std::fopen(path.c_str(), "rb") : nullptr;
  // What cannot be opened gets its message from the plain way, and what may block is not read ahead.
  if (file == nullptr) return OpenBytes(path, diagnostics, settings.limits);
  const bool counted = monitor != nullptr && monitor->count_bytes;
  return DecompressedBytes(std::make_unique<CountedFile>(path, file, counted ? monitor : nullptr), path,
                           diagnostics, settings.limits, settings.analysis_on_own_thread);
}

class RinexSource : public EpochSource {
 public:
  RinexSource(const std::string& path, const JudgingSettings& settings, Diagnostics& diagnostics,
              RunMonitor* monitor)
      : path_(path),
        reader_(OpenRegular(path, settings, diagnostics, monitor), path, diagnostics,
                {settings.snr_from_strength, settings.limits}) {}

  const std::string& Name() const override { return path_; }
  const ObservationHeader& Header() const override { return reader_.Header(); }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override { return reader_.Next(epoch, full); }
  const std::optional<FileError>& Failure() const override { return reader_.Failure(); }
  std::vector<DescriptionChange> Changes() const override { return reader_.Changes(); }

 private:
  std::string path_;
  ObservationReader reader_;
};

}  // namespace

std::unique_ptr<EpochSource> OpenObservations(const std::string& path, const JudgingSettings& settings,
                                              Diagnostics& diagnostics, RunMonitor* monitor) {
  return std::make_unique<RinexSource>(path, settings, diagnostics, monitor);
}

}  // namespace orsolva_host
