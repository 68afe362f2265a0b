// The observations of a batch, taken in satellite by satellite and read back epoch by epoch.
#ifndef ORSOLVA_MEASURES_EPOCH_STORE_H
#define ORSOLVA_MEASURES_EPOCH_STORE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "measures/pair_signals.h"
#include "qc/base/epoch_data.h"
#include "qc/base/epoch_time.h"

namespace orsolva {

/// One satellite at one epoch; its observations are in the store, ascending by code, each code once.
struct StoredSatellite {
  Time_gbt Time{};
  std::size_t First = 0;
  std::uint32_t Count = 0;
  std::int32_t Number = 0;
  bool Counting = false;
};

/// The satellites of one epoch: a range of Satellites().
struct EpochRange {
  Time_gbt Time{};
  std::size_t First = 0;
  std::size_t Last = 0;  ///< one past the end
};

/// Memory is kept between batches.
class EpochStore {
 public:
  virtual ~EpochStore() = default;

  /// Makes room for so many more satellites and observations, so that lists of a large batch are not moved
  /// again and again while they grow. More than that may be added.
  void Reserve(std::size_t satellites, std::size_t observations);

  /// Copies the observations of a satellite at an epoch. Times that are not finite and epochs without
  /// observations are left out.
  void Add(int number, const QcEpochData& epoch, bool counting);

  /// Sorts what is stored into epochs, ascending in time, each with its satellites in ascending order. Times
  /// that are equal by TimeEqual are one epoch; a satellite listed twice in an epoch becomes one entry.
  void Arrange();

  /// As of the last Arrange().
  const std::vector<EpochRange>& Epochs() const { return epochs_; }
  const std::vector<StoredSatellite>& Satellites() const { return satellites_; }
  const CodeObservation* Observations(const StoredSatellite& satellite) const {
    return observations_.data() + satellite.First;
  }

  void Clear();

 private:
  void Insert(const CodeObservation& observation, std::size_t first);
  void MergeInto(StoredSatellite& into, const StoredSatellite& again);
  void MergeRepeated();
  void SortByTime();
  void MergeNeighbours();

  std::vector<StoredSatellite> satellites_;
  std::vector<CodeObservation> observations_;
  std::vector<EpochRange> epochs_;
  std::vector<StoredSatellite> merged_;  // of SortByTime, kept for the next batch
  std::vector<std::size_t> runs_;        // starts of the ascending runs, then the end of the last
};

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_EPOCH_STORE_H
