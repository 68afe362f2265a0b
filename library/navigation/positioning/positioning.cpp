#include "navigation/positioning/positioning.h"

#include <algorithm>

namespace gnssqctoolkit {
namespace {

// Mean of the middle two of an even number.
double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

// An epoch that has no solution from the last one is tried once more without it: a wrong solution would hide
// satellites below its horizon from every later epoch.
bool SolveFrom(SPP& spp, const PositioningEpoch& epoch, SPPResult& last) {
  SPPResult result = last;
  if (!spp.Position(epoch, result)) {
    if (last.Status == 0) return false;
    result = SPPResult();
    if (!spp.Position(epoch, result)) return false;
  }
  last = result;
  return true;
}

}  // namespace

std::vector<int> SpreadEpochs(int count) {
  std::vector<int> indices;
  const int chosen = std::min(count, kMaxPositioningEpochs);
  for (int i = 0; i < chosen; ++i) {
    const bool all = count <= kMaxPositioningEpochs;
    const std::int64_t index = all ? i : std::int64_t{i} * (count - 1) / (kMaxPositioningEpochs - 1);
    indices.push_back(static_cast<int>(index));
  }
  return indices;
}

bool PositionFromEpochs(const std::vector<PositioningEpoch>& epochs, const Ephemeris& ephemeris,
                        const SPPOption& option, double position[3]) {
  SPP spp(ephemeris, option);
  SPPResult last;
  std::vector<double> components[3];
  for (const PositioningEpoch& epoch : epochs) {
    if (!SolveFrom(spp, epoch, last)) continue;
    for (int i = 0; i < 3; ++i) components[i].push_back(last.Rr[i]);
  }
  if (components[0].empty()) return false;
  for (int i = 0; i < 3; ++i) position[i] = Median(components[i]);
  return true;
}

}  // namespace gnssqctoolkit
