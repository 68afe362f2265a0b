// Reading observation files without checking them: epochs and bytes per second of each format.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/observation_reader.h"
#include "tests/support/shared_folder.h"

namespace orsolva_bench {
namespace {

std::string Contents(const std::filesystem::path& path, orsolva_host::Diagnostics& diagnostics) {
  const auto source = orsolva_host::OpenBytes(path.string(), diagnostics);
  std::string text;
  char block[65536];
  for (std::size_t n = source->Read(block, sizeof block); n > 0; n = source->Read(block, sizeof block)) {
    text.append(block, n);
  }
  return text;
}

/// Every epoch of a file of the shared folder, its decompressed bytes in memory.
void ReadText(benchmark::State& state, const char* name) {
  const std::filesystem::path path = orsolva_test::SharedFolder() / "data" / name;
  if (!std::filesystem::exists(path)) {
    state.SkipWithError("the shared folder lacks the file");
    return;
  }
  orsolva_host::Diagnostics diagnostics;
  const std::string text = Contents(path, diagnostics);
  std::int64_t epochs = 0;
  for (auto _ : state) {
    orsolva_host::ObservationReader reader(orsolva_host::TextBytes(text), name, diagnostics);
    ObsEpoch_QC_gbt epoch;
    while (reader.Next(epoch)) ++epochs;
  }
  state.SetItemsProcessed(epochs);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
}

BENCHMARK_CAPTURE(ReadText, plain, "SEPT078M.21O")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadText, crinex, "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz")
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orsolva_bench
