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

/// Counts the bytes that are read from disk.
class CountedFile : public ByteSource {
 public:
  CountedFile(std::string path, std::FILE* file, RunMonitor& monitor)
      : path_(std::move(path)), file_(file), monitor_(monitor) {}

  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::fread(out, 1, size, file_.get());
    if (count == 0 && std::ferror(file_.get()) != 0) {
      throw FileError(path_, 0, std::strerror(errno), "readable data", "Check the path and the disk.");
    }
    monitor_.bytes.fetch_add(count, std::memory_order_relaxed);
    return count;
  }

 private:
  std::string path_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  RunMonitor& monitor_;
};

std::unique_ptr<ByteSource> OpenCounted(const std::string& path, Diagnostics& diagnostics,
                                        const InputLimits& limits, RunMonitor* monitor) {
  std::error_code ignored;
  const bool counted =
      monitor != nullptr && monitor->count_bytes && std::filesystem::is_regular_file(path, ignored);
  std::FILE* file = counted ? std::fopen(path.c_str(), "rb") : nullptr;
  // What cannot be opened gets its message from the plain way.
  if (file == nullptr) return OpenBytes(path, diagnostics, limits);
  return DecompressedBytes(std::make_unique<CountedFile>(path, file, *monitor), path, diagnostics, limits);
}

class RinexSource : public EpochSource {
 public:
  RinexSource(const std::string& path, const JudgingSettings& settings, Diagnostics& diagnostics,
              RunMonitor* monitor)
      : path_(path),
        reader_(OpenCounted(path, diagnostics, settings.limits, monitor), path, diagnostics,
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
