// Observations of one satellite at one epoch, and of one epoch.
//
// Kept for compatibility: part of the library's contract, but not used by a run, whose observations are in
// qc/observations.h.
//
// Both grow in fixed steps of reported capacity over memory that grows geometrically, and copy deeply. An
// allocation that fails leaves the store as it was and is reported, never thrown.
#ifndef ORSOLVA_TOOLKIT_OBS_STORAGE_H
#define ORSOLVA_TOOLKIT_OBS_STORAGE_H

#include "orsolva/records.h"
#include "toolkit/growth_buffer.h"
#include "toolkit/satellite.h"
#include "toolkit/time.h"

namespace gnssqctoolkit {

/// The signal observations of one satellite at one epoch. Capacity: 5, then steps of 3.
class SatelliteObsStorage {
 public:
  SatelliteObsStorage() = default;
  SatelliteObsStorage(const SatelliteObsStorage& other) { Assign(other); }
  SatelliteObsStorage(SatelliteObsStorage&& other) noexcept { Swap(other); }
  SatelliteObsStorage& operator=(const SatelliteObsStorage& other);
  SatelliteObsStorage& operator=(SatelliteObsStorage&& other) noexcept;
  virtual ~SatelliteObsStorage() = default;

  int Count() const { return count_; }
  int Capacity() const { return capacity_; }
  Signal_QC_gbt* Data() { return buffer_.Data(); }
  const Signal_QC_gbt* Data() const { return buffer_.Data(); }

  /// Copies the record whole. @return 1, or 0 with the store unchanged when there is no memory
  int Append(const Signal_QC_gbt& signal);
  /// Count 0; the array is kept and zeroed, the satellite stays.
  void Clear();
  /// Frees the array.
  void Release();
  /// Room for `signals` records in all. @return 1, or 0 with the store unchanged when there is no memory
  int Reserve(int signals);
  /// Deep copy, satellite included. @return 1, or 0 when there is no memory; the store is then empty
  int Assign(const SatelliteObsStorage& other);

  SatelliteId Satellite;

 private:
  void Swap(SatelliteObsStorage& other) noexcept;

  GrowthBuffer<Signal_QC_gbt> buffer_;
  int count_ = 0;
  int capacity_ = 0;
};

/// The satellites of one epoch. Capacity: steps of 32.
class EpochObsStorage {
 public:
  EpochObsStorage() = default;
  EpochObsStorage(const EpochObsStorage& other) { Assign(other); }
  EpochObsStorage& operator=(const EpochObsStorage& other);
  virtual ~EpochObsStorage() = default;

  int Count() const { return count_; }
  int Capacity() const { return capacity_; }
  SatelliteObsStorage* Data() { return buffer_.Data(); }
  const SatelliteObsStorage* Data() const { return buffer_.Data(); }

  /// Deep copy of the satellite's store. @return 1, or 0 with the epoch unchanged when there is no memory
  int Append(const SatelliteObsStorage& satellite);
  /// Count 0; the array is kept, its satellites are emptied. The time stays.
  void Clear();
  /// Frees the array.
  void Release();
  /// Deep copy, time included. @return 1, or 0 when there is no memory; what was copied until then stays
  int Assign(const EpochObsStorage& other);

  AbsoluteTime Time;

 private:
  GrowthBuffer<SatelliteObsStorage> buffer_;
  int count_ = 0;
  int capacity_ = 0;
};

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_OBS_STORAGE_H
