// Prints a digest of every result bit of a few runs, for comparing builds: same input, same bits.
#include <cstdio>

#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace {

using orsolva_test::Process;
using orsolva_test::Results;
using orsolva_test::SimulatedSky;

/// FNV-1a, 64 bits.
std::uint64_t Digest(const void* data, std::size_t size, std::uint64_t digest) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < size; ++i) digest = (digest ^ bytes[i]) * 1099511628211ull;
  return digest;
}

}  // namespace

int main() {
  for (const double interval : {1.0, 30.0}) {
    for (const bool given : {true, false}) {
      orsolva_test::SkyOptions options;
      options.Interval = interval;
      options.Epochs = 240;
      options.MissingShare = 0.02;
      const SimulatedSky sky(options);
      config_qct config = sky.Config();
      config.enable_position = given ? 1 : 0;
      std::uint64_t input = 14695981039346656037ull;
      input = Digest(sky.Epochs.data(), sky.Epochs.size() * sizeof sky.Epochs[0], input);
      Process process;
      if (!process.Initialise(sky.Navigation, config) || process.Feed(sky.Epochs) != GNSSQC_OK) return 1;
      const Results results(process);
      std::uint64_t output = 14695981039346656037ull;
      output = Digest(results.Whole.get(), sizeof *results.Whole, output);
      output = Digest(results.Codes.get(), sizeof *results.Codes, output);
      std::printf("interval %g position %s input %016llx results %016llx\n", interval,
                  given ? "given" : "computed", static_cast<unsigned long long>(input),
                  static_cast<unsigned long long>(output));
    }
  }
  return 0;
}
