// Prints digests of every event and figure of a few analyses, for comparing builds: same input, same bits.
#include <cstdio>

#include "tests/support/analysis_sky.h"
#include "tests/support/value_digest.h"

namespace {

using orsolva_host::analysis::StationAnalysis;
using orsolva_test::AnalysisSky;
using orsolva_test::DigestOf;

struct Case {
  const char* name;
  double interval_s;
  bool with_records;
};

void Print(const Case& chosen) {
  orsolva_test::SkyOptions options;
  options.Interval = chosen.interval_s;
  options.Epochs = 360;
  options.MissingShare = 0.02;
  options.LowestElevation = 0.2;
  AnalysisSky sky{orsolva_test::SimulatedSky(options)};
  orsolva_test::AddTroubles(sky, 3);
  StationAnalysis analysis(sky.Options, chosen.with_records ? sky.Records : orsolva_host::BroadcastRecords());
  for (const orsolva_host::ObservationEpoch& epoch : sky.Epochs) analysis.Add(epoch);
  analysis.Finish();
  const auto events = analysis.TakeEvents();
  std::printf("%-22s input %016llx  %3zu events %016llx  figures %016llx\n", chosen.name,
              static_cast<unsigned long long>(DigestOf(sky.Epochs)), events.size(),
              static_cast<unsigned long long>(DigestOf(events)),
              static_cast<unsigned long long>(DigestOf(analysis.Result())));
}

}  // namespace

int main() {
  for (const Case& chosen : {Case{"30 s", 30, true}, Case{"30 s, no navigation", 30, false},
                             Case{"1 s", 1, true}, Case{"1 s, no navigation", 1, false}}) {
    Print(chosen);
  }
  return 0;
}
