#include "orsolva/run_facts.h"

#include "measures/channel_combinations.h"
#include "qc/process.h"
#include "qc/run_facts.h"

namespace orsolva {

RunFacts FactsOf(const unsigned long long* handle) {
  if (handle == nullptr) return RunFacts();
  return CollectRunFacts(*reinterpret_cast<const PostProcessGnssQc*>(handle));
}

int AveragingWindow(double interval_s) { return MpWindowLength(interval_s); }

}  // namespace orsolva
