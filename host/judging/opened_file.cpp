#include "host/judging/opened_file.h"

#include <cstddef>
#include <string_view>

#include "host/formats/sp3_reader.h"
#include "host/judging/stream_detection.h"
#include "host/rinex/input_files.h"

namespace orsolva_host {
namespace {

ContentKind KindOfBeginning(std::string_view text) {
  const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
  if (IsSp3Line(line)) return ContentKind::kPreciseOrbits;
  return KindOfFirstLine(line) == FileKind::kNavigation ? ContentKind::kNavigation
                                                        : ContentKind::kObservations;
}

}  // namespace

OpenedFile OpenAnyFile(const std::string& path, Diagnostics& diagnostics, const InputLimits& limits) {
  constexpr std::size_t kFirstLine = 256;  // longer than any of the formats has
  OpenedFile file;
  file.bytes = OpenBytes(path, diagnostics, limits);
  file.kind = KindOfBeginning(Peek(file.bytes, kFirstLine));
  if (file.kind != ContentKind::kObservations) return file;
  if (const auto detected = DetectStream(file.bytes)) {
    file.kind = ContentKind::kStream;
    file.stream = detected->format;
  }
  return file;
}

}  // namespace orsolva_host
