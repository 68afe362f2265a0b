// Small fixed cases whose instructions are counted by callgrind: bench/check_instructions.py runs them.
//
// usage: instruction_case NAME
#include <cstdio>
#include <string>

#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace {

using orsolva_test::Process;
using orsolva_test::Results;
using orsolva_test::SimulatedSky;

orsolva_test::SkyOptions Options(double interval, int epochs) {
  orsolva_test::SkyOptions options;
  options.Interval = interval;
  options.Epochs = epochs;
  options.MissingShare = 0.02;
  return options;
}

/// What is counted starts and ends with this function; its name is known to the script.
/// @param batch  epochs a call
extern "C" __attribute__((noinline)) void CountedRun(const SimulatedSky& sky, const config_qct& config,
                                                     int batch) {
  Process process;
  process.Initialise(sky.Navigation, config);
  const int count = static_cast<int>(sky.Epochs.size());
  for (int at = 0; at < count; at += batch) {
    process.Feed(sky.Epochs.data() + at, count - at < batch ? count - at : batch);
  }
  const Results results(process);
  std::printf("%u epochs\n", static_cast<unsigned>(results.Whole->sys[0].observed_epochs));
}

}  // namespace

int main(int count, char** arguments) {
  const std::string name = count > 1 ? arguments[1] : "";
  const bool thirty = name == "hour-30s";
  const bool position = name == "computed-position";
  const bool live = name == "live-1s";
  if (!thirty && !position && !live && name != "empty") {
    std::fprintf(stderr, "usage: instruction_case hour-30s | computed-position | live-1s | empty\n");
    return 2;
  }
  const SimulatedSky sky(Options(live ? 1.0 : 30.0, name == "empty" ? 1 : 120));
  config_qct config = sky.Config();
  if (position) config.enable_position = 0;
  CountedRun(sky, config, live ? 1 : 120);
  return 0;
}
