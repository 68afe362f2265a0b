#include "measures/epoch_store.h"

#include <algorithm>
#include <cmath>

namespace orsolva {
namespace {

// Observations are stored in the order of their satellites, so First keeps the order of storing among equals.
bool Earlier(const StoredSatellite& a, const StoredSatellite& b) {
  if (a.Time.time != b.Time.time) return a.Time.time < b.Time.time;
  return a.Time.sec != b.Time.sec ? a.Time.sec < b.Time.sec : a.First < b.First;
}

bool LowerNumber(const StoredSatellite& a, const StoredSatellite& b) {
  return a.Number != b.Number ? a.Number < b.Number : a.First < b.First;
}

constexpr std::size_t kKeptBytes = std::size_t{1} << 20;  // of a list, however small batches become
constexpr std::size_t kFarTooLarge = 3;                   // times what a batch needs

// Exactly what is needed for a batch that is larger than those before; batches of slowly growing sizes must
// not move the list each time.
template <class T>
void MakeRoom(std::vector<T>& list, std::size_t more) {
  const std::size_t needed = list.size() + more;
  if (needed <= list.capacity()) return;
  list.reserve(std::max(needed, list.capacity() + list.capacity() / 2));
}

// Frees the room of a batch that was far larger than the one to come.
template <class T>
void ShrinkTo(std::vector<T>& list, std::size_t needed) {
  const std::size_t room = list.capacity();
  if (room * sizeof(T) > kKeptBytes && room > kFarTooLarge * needed) std::vector<T>().swap(list);
}

}  // namespace

// Keeps the observations from `first` to the end ascending by code; of a code given twice the first stays.
void EpochStore::Insert(const CodeObservation& observation, std::size_t first) {
  std::size_t at = observations_.size();
  while (at > first && observations_[at - 1].Code > observation.Code) --at;
  if (at > first && observations_[at - 1].Code == observation.Code) return;
  if (at == observations_.size()) {
    observations_.push_back(observation);
    return;
  }
  observations_.insert(observations_.begin() + static_cast<std::ptrdiff_t>(at), observation);
}

void EpochStore::Reserve(std::size_t satellites, std::size_t observations) {
  if (satellites_.empty()) {
    ShrinkTo(satellites_, satellites);
    ShrinkTo(observations_, observations);
    ShrinkTo(merged_, satellites);
  }
  MakeRoom(satellites_, satellites);
  MakeRoom(observations_, observations);
}

void EpochStore::Add(int number, const QcEpochData& epoch, bool counting) {
  if (!std::isfinite(epoch.Time.sec)) return;
  StoredSatellite satellite{epoch.Time, observations_.size(), 0, number, counting};
  for (const QcSlotSignals& slot : epoch.Slots) {
    const int count = std::min<int>(slot.Count, kSignalsPerSlot);
    for (int i = 0; i < count; ++i) {
      const Signal_QC_gbt& signal = slot.Signals[i];
      Insert({signal.code, signal.phase, signal.pseudorange}, satellite.First);
    }
  }
  satellite.Count = static_cast<std::uint32_t>(observations_.size() - satellite.First);
  if (satellite.Count > 0) satellites_.push_back(satellite);
}

// What is stored satellite by satellite consists of a few ascending runs, one per satellite: neighbours are
// merged until one is left.
void EpochStore::SortByTime() {
  runs_.assign(1, 0);
  for (std::size_t i = 1; i < satellites_.size(); ++i) {
    if (Earlier(satellites_[i], satellites_[i - 1])) runs_.push_back(i);
  }
  runs_.push_back(satellites_.size());
  while (runs_.size() > 2) MergeNeighbours();
}

void EpochStore::MergeNeighbours() {
  merged_.resize(satellites_.size());
  const auto at = [](auto& list, std::size_t i) { return list.begin() + static_cast<std::ptrdiff_t>(i); };
  std::size_t kept = 1;
  for (std::size_t k = 0; k + 1 < runs_.size(); k += 2) {
    const std::size_t first = runs_[k], middle = runs_[k + 1];
    const std::size_t last = k + 2 < runs_.size() ? runs_[k + 2] : middle;
    std::merge(at(satellites_, first), at(satellites_, middle), at(satellites_, middle),
               at(satellites_, last), at(merged_, first), Earlier);
    runs_[kept++] = last;
  }
  runs_.resize(kept);
  satellites_.swap(merged_);
}

void EpochStore::Arrange() {
  SortByTime();
  epochs_.clear();
  for (std::size_t i = 0; i < satellites_.size(); ++i) {
    if (epochs_.empty() || !TimeEqual(satellites_[i].Time, epochs_.back().Time)) {
      epochs_.push_back({satellites_[i].Time, i, i});
    }
    epochs_.back().Last = i + 1;
  }
  MergeRepeated();
}

// Joins the entries of one satellite in one epoch and closes the room they leave.
void EpochStore::MergeRepeated() {
  std::size_t kept = 0;
  for (EpochRange& epoch : epochs_) {
    const auto begin = satellites_.begin() + static_cast<std::ptrdiff_t>(epoch.First);
    const auto end = satellites_.begin() + static_cast<std::ptrdiff_t>(epoch.Last);
    if (!std::is_sorted(begin, end, LowerNumber)) std::sort(begin, end, LowerNumber);
    const std::size_t first = kept;
    for (std::size_t i = epoch.First; i < epoch.Last; ++i) {
      const StoredSatellite satellite = satellites_[i];
      if (kept > first && satellites_[kept - 1].Number == satellite.Number) {
        MergeInto(satellites_[kept - 1], satellite);
      } else {
        satellites_[kept++] = satellite;
      }
    }
    epoch.First = first;
    epoch.Last = kept;
  }
  satellites_.resize(kept);
}

void EpochStore::MergeInto(StoredSatellite& into, const StoredSatellite& again) {
  const std::size_t first = observations_.size();
  for (const StoredSatellite& from : {into, again}) {
    for (std::size_t i = from.First; i < from.First + from.Count; ++i) {
      const CodeObservation observation = observations_[i];
      Insert(observation, first);
    }
  }
  into.First = first;
  into.Count = static_cast<std::uint32_t>(observations_.size() - first);
}

void EpochStore::Clear() {
  satellites_.clear();
  observations_.clear();
  epochs_.clear();
}

}  // namespace orsolva
