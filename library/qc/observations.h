// The observations of the current batch, sorted by satellite and frequency slot.
#ifndef ORSOLVA_QC_OBSERVATIONS_H
#define ORSOLVA_QC_OBSERVATIONS_H

#include <cstdint>
#include <vector>

#include "orsolva/records.h"
#include "qc/base/config.h"
#include "qc/base/epoch_data.h"
#include "toolkit/lists.h"
#include "toolkit/satellite.h"

namespace orsolva {

/// Entries of the input arrays that are read, whatever their counts claim.
inline constexpr std::uint32_t kSatellitesPerEpoch = 80;
inline constexpr std::uint32_t kSignalsPerSatellite = 8;
/// Epochs of a batch in which signal codes are looked for: indices 0 to 2001.
inline constexpr std::int32_t kCodeCollectionEpochs = 2002;
/// Codes kept per system.
inline constexpr int kCodesPerSystem = 8;

/// Entries of an epoch and of a satellite that may be read.
std::uint32_t SatellitesIn(const ObsEpoch_QC_gbt& epoch);
std::uint32_t SignalsIn(const Satellite_gbt& satellite);

/// The time can be used: its fraction is a number.
bool UsableTime(const Time_gbt& t);

/// Signal codes present in a batch, per system in the order GPS, GLONASS, BDS, Galileo, QZSS.
class BatchCodes {
 public:
  virtual ~BatchCodes() = default;

  struct Table {
    int Count = 0;
    std::uint8_t Codes[kCodesPerSystem] = {};  ///< in order of first appearance
    std::uint32_t Hits[kCodesPerSystem] = {};  ///< occurrences taken in
  };
  Table Systems[5];

  /// Looks at the first 2,002 epochs. A ninth code of a system is ignored.
  void Collect(const ObsBodyData_QC_gbt& obs);
  /// Counts an occurrence of a code listed in its system's table.
  void Hit(int system_slot, std::uint8_t code);
};

/// One satellite at one epoch, without the empty entries of QcEpochData.
struct StoredEpoch {
  Time_gbt Time{};
  std::uint32_t Sequence = 0;     ///< number of the accepted epoch, the same for all satellites of it
  std::uint32_t FirstSignal = 0;  ///< index of its first signal
  std::uint8_t Counts[kBandSlots] = {};
};

/// Signals of the input sorted into frequency slots, by reference.
struct SlottedSignals {
  std::uint8_t Counts[kBandSlots] = {};
  const Signal_QC_gbt* Entries[kBandSlots][kSignalsPerSlot];
};

/// The batch's epochs of one satellite in time order.
class QcSatData {
 public:
  virtual ~QcSatData() = default;

  gnssqctoolkit::SatelliteId Satellite;
  std::vector<StoredEpoch> Epochs;
  std::vector<Signal_QC_gbt> Signals;  ///< of all epochs, ordered by epoch and frequency slot

  /// Appends an epoch; values of its signals that are not finite become 0 (missing).
  void Append(const Time_gbt& time, std::uint32_t sequence, const SlottedSignals& signals);
  /// Epoch i as the measures take it.
  void Load(std::size_t i, QcEpochData& epoch) const;
  /// Forgets the epochs. Memory of ordinary size is kept for the next batch.
  void Reset();
  /// Forgets the epochs and frees the memory.
  void Release();
};

class QcGNSSObsData {
 public:
  QcGNSSObsData();
  virtual ~QcGNSSObsData() = default;

  QcSatData Sats[gnssqctoolkit::kMaxSatellites];  ///< by satellite number - 1
  Time_gbt BatchFirst{};
  Time_gbt BatchLast{};
  gnssqctoolkit::IList CodeLists[kCodeListSlots];  ///< codes chosen for the run

  /// Frequency slot 0 to 5 of a signal, -1 for one that is dropped.
  int FrequencySlot(std::uint8_t system, std::uint8_t code) const;

  /// Stores the satellites of an accepted epoch.
  /// @param system_mask  systems taken in
  /// @param codes        counts the occurrences; null = not counted
  void StoreEpoch(const ObsEpoch_QC_gbt& epoch, std::uint32_t sequence, std::uint32_t system_mask,
                  BatchCodes* codes);

  /// True when all five code lists are empty.
  bool CodeListsEmpty() const;
  /// Fills the lists that are still empty with the codes that occurred.
  void FillCodeLists(const BatchCodes& codes);

  /// Numbers of the satellites that have epochs, ascending.
  const std::vector<int>& PresentSatellites();
  /// Empties the batch; costs what the batch holds.
  void ResetBatch();
  /// Frees everything, code lists included.
  void Release();

 private:
  void StoreSatellite(const Satellite_gbt& satellite, const Time_gbt& time, std::uint32_t sequence,
                      std::uint32_t system_mask, BatchCodes* codes);

  std::int8_t slots_[5][256];  // frequency slot by system slot and code
  std::vector<int> present_;
  bool present_sorted_ = true;
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_OBSERVATIONS_H
