// The measures of a run: code pairs, multipath, ionosphere and slips of every satellite, and the pass over
// the stored epochs that feeds them.
#ifndef ORSOLVA_MEASURES_DRIVER_H
#define ORSOLVA_MEASURES_DRIVER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "measures/channel_combinations.h"
#include "measures/ionosphere.h"
#include "measures/multipath.h"
#include "navigation/ephemerides/ephemeris.h"
#include "orsolva/detail.h"
#include "orsolva/records.h"
#include "qc/base/config.h"
#include "qc/base/epoch_data.h"

namespace orsolva {

class IonSlipAndMultipath {
 public:
  IonSlipAndMultipath();
  virtual ~IonSlipAndMultipath();

  /// Builds the pairs of every system from the observed codes, sets the averaging window and copies the
  /// GLONASS channels. Called once per run.
  /// @param code_lists        kCodeListSlots lists
  /// @param glonass_channels  32 values, -999 = unknown
  /// @return the bands in use, by configuration slot
  std::array<BandsInUse, kSystemSlots> Initialise(const QcConfig& config,
                                                  const gnssqctoolkit::IList* code_lists,
                                                  const std::int32_t* glonass_channels, double interval);
  bool Initialised() const { return initialised_; }
  int WindowLength() const { return window_length_; }

  /// Makes room for the next batch: epochs of satellites, and their signals in all.
  void Reserve(std::size_t satellite_epochs, std::size_t signals);

  /// Stores one epoch of one satellite for the next pass.
  /// @param number    satellite number 1 to 208; any other is ignored
  /// @param counting  the satellite is above the elevation cut-off
  void AddSatelliteEpoch(int number, const QcEpochData& epoch, bool counting);

  /// The pass over the stored epochs in time order; they are dropped after it.
  ///
  /// A lone first epoch of the run is kept for the next pass.
  /// @param interval  s, step of the common-mode sum
  /// @param observer  may be null
  /// @return false when the run holds fewer than two epochs
  bool ProcessAllEpochs(const double station_position[3], const gnssqctoolkit::Ephemeris& ephemeris,
                        double interval, QcDetailObserver* observer);

  /// Drops the epochs that no pass has taken, as a batch that ended in an error leaves them. A lone first
  /// epoch of the run stays.
  void ResetBatch();

  /// Multipath and slip results of a satellite (number 1 to 208).
  const SatMp& Multipath(int number) const;
  const SatIodDetect& Ionosphere(int number) const;

  /// Drops all state.
  void Release();

 private:
  struct Impl;
  bool initialised_ = false;
  int window_length_ = 50;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orsolva

#endif  // ORSOLVA_MEASURES_DRIVER_H
