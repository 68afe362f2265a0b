// Any bytes as gzip data, decompressed in pieces whose size the first byte chooses.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/line_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kMaxDecompressed = 1U << 22;  // enough to see; keeps a run short

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  orsolva_host::Diagnostics notices;
  auto source = orsolva_host::GunzipBytes(orsolva_host::TextBytes(std::string(data + 1, data + size)),
                                          "fuzzed", notices);
  std::size_t decompressed = 0;
  if (data[0] == 0) {
    orsolva_host::LineReader lines(std::move(source));
    std::string_view line;
    while (decompressed < kMaxDecompressed && lines.Next(line)) {
      orsolva_fuzz::Require(line.size() <= orsolva_host::LineReader::kLongestLine, "lines are bounded");
      decompressed += line.size() + 1;
    }
    return 0;
  }
  std::vector<char> piece(std::size_t{data[0]} * 64);
  while (decompressed < kMaxDecompressed) {
    const std::size_t count = source->Read(piece.data(), piece.size());
    orsolva_fuzz::Require(count <= piece.size(), "no more than asked for");
    if (count == 0) break;
    decompressed += count;
  }
  // deflate reaches 1032 to 1 at most.
  orsolva_fuzz::Require(decompressed <= size * 1100, "no more than deflate can hold");
  return 0;
}
