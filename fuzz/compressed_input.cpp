// Any bytes as gzip data, unpacked in pieces whose size the first byte chooses.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/line_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kMostUnpacked = 1U << 22;  // enough to tell; keeps a run short

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  orsolva_host::Diagnostics notices;
  auto source = orsolva_host::GunzipBytes(orsolva_host::TextBytes(std::string(data + 1, data + size)),
                                          "fuzzed", notices);
  std::size_t unpacked = 0;
  if (data[0] == 0) {
    orsolva_host::LineReader lines(std::move(source));
    std::string_view line;
    while (unpacked < kMostUnpacked && lines.Next(line)) {
      orsolva_fuzz::Require(line.size() <= orsolva_host::LineReader::kLongestLine, "lines are bounded");
      unpacked += line.size() + 1;
    }
    return 0;
  }
  std::vector<char> piece(std::size_t{data[0]} * 64);
  while (unpacked < kMostUnpacked) {
    const std::size_t count = source->Read(piece.data(), piece.size());
    orsolva_fuzz::Require(count <= piece.size(), "no more than asked for");
    if (count == 0) break;
    unpacked += count;
  }
  // deflate packs at most 1032 to 1.
  orsolva_fuzz::Require(unpacked <= size * 1100, "no more than deflate can hold");
  return 0;
}
