#include "toolkit/obs_storage.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace gnssqctoolkit {
namespace {

constexpr int kFirstSignals = 5;
constexpr int kSignalStep = 3;
constexpr int kSatelliteStep = 32;

/// The reported capacity after one growth; 0 when it would leave the range.
int NextCapacity(int capacity, int first, int step) {
  if (capacity <= 0) return first;
  return capacity > std::numeric_limits<int>::max() - step ? 0 : capacity + step;
}

}  // namespace

SatelliteObsStorage& SatelliteObsStorage::operator=(const SatelliteObsStorage& other) {
  Assign(other);
  return *this;
}

SatelliteObsStorage& SatelliteObsStorage::operator=(SatelliteObsStorage&& other) noexcept {
  Swap(other);
  return *this;
}

void SatelliteObsStorage::Swap(SatelliteObsStorage& other) noexcept {
  std::swap(Satellite, other.Satellite);
  buffer_.Swap(other.buffer_);
  std::swap(count_, other.count_);
  std::swap(capacity_, other.capacity_);
}

int SatelliteObsStorage::Reserve(int signals) {
  if (signals <= capacity_) return 1;
  if (!buffer_.Reserve(signals, count_)) return 0;
  std::fill(buffer_.Data() + count_, buffer_.Data() + signals, Signal_QC_gbt{});
  capacity_ = signals;
  return 1;
}

int SatelliteObsStorage::Append(const Signal_QC_gbt& signal) {
  const Signal_QC_gbt copy = signal;  // the record may lie in this very array
  if (count_ >= capacity_) {
    const int capacity = NextCapacity(capacity_, kFirstSignals, kSignalStep);
    if (capacity == 0 || Reserve(capacity) == 0) return 0;
  }
  buffer_.Data()[count_++] = copy;
  return 1;
}

void SatelliteObsStorage::Clear() {
  std::fill_n(buffer_.Data(), capacity_, Signal_QC_gbt{});
  count_ = 0;
}

void SatelliteObsStorage::Release() {
  buffer_.Release();
  count_ = 0;
  capacity_ = 0;
}

int SatelliteObsStorage::Assign(const SatelliteObsStorage& other) {
  if (this == &other) return 1;
  Clear();
  if (Reserve(other.count_) == 0) return 0;
  std::copy_n(other.buffer_.Data(), other.count_, buffer_.Data());
  count_ = other.count_;
  Satellite = other.Satellite;
  return 1;
}

EpochObsStorage& EpochObsStorage::operator=(const EpochObsStorage& other) {
  Assign(other);
  return *this;
}

int EpochObsStorage::Append(const SatelliteObsStorage& satellite) {
  SatelliteObsStorage copy;
  if (copy.Assign(satellite) == 0) return 0;
  if (count_ >= capacity_) {
    const int capacity = NextCapacity(capacity_, kSatelliteStep, kSatelliteStep);
    if (capacity == 0 || !buffer_.Reserve(capacity, count_)) return 0;
    capacity_ = capacity;
  }
  buffer_.Data()[count_++] = std::move(copy);
  return 1;
}

void EpochObsStorage::Clear() {
  for (int i = 0; i < capacity_; ++i) {
    buffer_.Data()[i].Clear();
    buffer_.Data()[i].Satellite = SatelliteId{};
  }
  count_ = 0;
}

void EpochObsStorage::Release() {
  buffer_.Release();
  count_ = 0;
  capacity_ = 0;
}

int EpochObsStorage::Assign(const EpochObsStorage& other) {
  if (this == &other) return 1;
  Clear();
  Time = other.Time;
  for (int i = 0; i < other.count_; ++i) {
    if (Append(other.buffer_.Data()[i]) == 0) return 0;
  }
  return 1;
}

}  // namespace gnssqctoolkit
