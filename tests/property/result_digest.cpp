// Prints a digest of every result bit of a few runs, for comparing builds: same input, same bits.
#include <cstdio>

#include "tests/support/digest.h"
#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace {

using orsolva_test::Digest;
using orsolva_test::Process;
using orsolva_test::Results;
using orsolva_test::SimulatedSky;

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
      const std::uint64_t input = Digest(sky.Epochs.data(), sky.Epochs.size() * sizeof sky.Epochs[0]);
      Process process;
      if (!process.Initialise(sky.Navigation, config) || process.Feed(sky.Epochs) != GNSSQC_OK) return 1;
      const Results results(process);
      std::uint64_t output = Digest(results.Whole.get(), sizeof *results.Whole);
      output = Digest(results.Codes.get(), sizeof *results.Codes, output);
      std::printf("interval %g position %s input %016llx results %016llx\n", interval,
                  given ? "given" : "computed", static_cast<unsigned long long>(input),
                  static_cast<unsigned long long>(output));
    }
  }
  return 0;
}
