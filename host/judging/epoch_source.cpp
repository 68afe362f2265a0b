#include "host/judging/epoch_source.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "host/judging/stream_detection.h"
#include "host/judging/stream_source.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/observation_reader.h"
#include "host/rinex/station_statements.h"

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
  RinexSource(std::unique_ptr<ByteSource> source, const std::string& path, const JudgingSettings& settings,
              Diagnostics& diagnostics)
      : path_(path),
        reader_(std::move(source), path, diagnostics, {settings.snr_from_strength, settings.limits}) {}

  const std::string& Name() const override { return path_; }
  const ObservationHeader& Header() const override { return reader_.Header(); }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override {
    do {
      if (!reader_.Next(epoch, full)) return false;
    } while (reader_.HasWrongTime());
    return true;
  }
  const std::optional<FileError>& Failure() const override { return reader_.Failure(); }
  std::vector<DescriptionChange> Changes() const override { return reader_.Changes(); }

 private:
  std::string path_;
  ObservationReader reader_;
};

/// An unnamed file that goes away with the program.
std::shared_ptr<std::FILE> TemporaryFile(const std::string& path) {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) {
    throw FileError(path, 0, std::string("a temporary file cannot be made: ") + std::strerror(errno), "",
                    "Save the stream as a file first.");
  }
  return {file, CloseFile()};
}

std::shared_ptr<std::FILE> CopyOf(ByteSource& source, const std::string& path) {
  std::shared_ptr<std::FILE> file = TemporaryFile(path);
  std::vector<char> buffer(1 << 16);
  while (const std::size_t count = source.Read(buffer.data(), buffer.size())) {
    if (std::fwrite(buffer.data(), 1, count, file.get()) == count) continue;
    throw FileError(path, 0, std::string("a temporary file cannot be written: ") + std::strerror(errno), "",
                    "Save the stream as a file first.");
  }
  return file;
}

class TemporaryBytes : public ByteSource {
 public:
  explicit TemporaryBytes(std::shared_ptr<std::FILE> file) : file_(std::move(file)) {
    std::rewind(file_.get());
  }
  std::size_t Read(char* out, std::size_t size) override { return std::fread(out, 1, size, file_.get()); }

 private:
  std::shared_ptr<std::FILE> file_;
};

/// A date that the user gave, for streams that have none.
std::optional<std::int64_t> TimeAskedFor(const EpochSelection& selection) {
  for (const auto& limit : {selection.start, selection.end}) {
    if (limit && !limit->of_first_day) return limit->time_ns;
  }
  return std::nullopt;
}

std::unique_ptr<EpochSource> OpenFile(const std::string& path, const JudgingSettings& settings,
                                      Diagnostics& diagnostics, RunMonitor* monitor) {
  const std::optional<DetectedStream> stream = DetectStream(path);
  if (!stream) {
    return std::make_unique<RinexSource>(OpenRegular(path, settings, diagnostics, monitor), path, settings,
                                         diagnostics);
  }
  // The notices of the first readings are thrown away, and their bytes are not counted.
  const auto open = [path, settings, monitor, &diagnostics](Diagnostics& notices) {
    return OpenRegular(path, settings, notices, &notices == &diagnostics ? monitor : nullptr);
  };
  return std::make_unique<StreamSource>(stream->format, path, open, TimeAskedFor(settings.selection),
                                        diagnostics);
}

}  // namespace

StationDescription EpochSource::Described() const { return DescriptionOf(Header(), Name()); }

std::unique_ptr<EpochSource> OpenObservations(const std::string& path, const JudgingSettings& settings,
                                              Diagnostics& diagnostics, RunMonitor* monitor) {
  std::error_code ignored;
  if (path != "-" && std::filesystem::is_regular_file(path, ignored)) {
    return OpenFile(path, settings, diagnostics, monitor);
  }
  std::unique_ptr<ByteSource> source = OpenBytes(path, diagnostics, settings.limits);
  const std::optional<DetectedStream> stream = DetectStream(source);
  if (!stream) {
    return std::make_unique<RinexSource>(std::move(source), path, settings, diagnostics);
  }
  const auto copy = CopyOf(*source, path);
  const auto open = [copy](Diagnostics& /*notices*/) { return std::make_unique<TemporaryBytes>(copy); };
  return std::make_unique<StreamSource>(stream->format, path, open, TimeAskedFor(settings.selection),
                                        diagnostics);
}

}  // namespace orsolva_host
