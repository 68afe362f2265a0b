// The process object behind a handle: takes batches of epochs in, runs the measures over them, keeps the run.
#ifndef ORSOLVA_QC_PROCESS_H
#define ORSOLVA_QC_PROCESS_H

#include <cstdint>

#include "measures/driver.h"
#include "navigation/ephemerides/ephemeris.h"
#include "orsolva/detail.h"
#include "orsolva/records.h"
#include "qc/base/config.h"
#include "qc/base/epoch_time.h"
#include "qc/elevations.h"
#include "qc/expected_epochs.h"
#include "qc/observations.h"
#include "results/complete_snr.h"
#include "results/result_sources.h"

namespace orsolva {

/// What is found out about a batch while it is taken in.
struct BatchSummary {
  double Interval = 0.0;  ///< s, 0 when none could be detected
  Time_gbt FirstTime{};   ///< earliest epoch; zero = unset
  Time_gbt LastTime{};
  std::uint32_t EpochCount = 0;  ///< epochs accepted
};

class PostProcessGnssQc {
 public:
  PostProcessGnssQc();
  virtual ~PostProcessGnssQc() = default;
  PostProcessGnssQc(const PostProcessGnssQc&) = delete;
  PostProcessGnssQc& operator=(const PostProcessGnssQc&) = delete;

  double Position[3] = {0.0, 0.0, 0.0};  ///< ECEF, m; 0 until configured or computed
  double Interval = 1.0;                 ///< s, in use
  std::uint32_t EpochCount = 0;          ///< accepted in the run
  std::uint32_t CombinationMask = 31;    ///< systems to combine
  /// Its EnablePosition doubles as the position-known flag; its SystemMask filters what is taken in.
  QcConfig Config;
  gnssqctoolkit::Ephemeris Eph;
  QcGNSSObsData ObsData;
  /// By satellite number - 1, read as a signed byte: usable above 0. 0 = excluded by the configuration,
  /// 255 = all broadcast records unhealthy.
  std::uint8_t SatUsable[gnssqctoolkit::kMaxSatellites];
  IonSlipAndMultipath IonMp;
  CompleteSnr Snr;
  QcEleList EleList;
  TimeList Epochs;          ///< epochs accepted in the run
  Time_gbt FirstTime{};     ///< earliest epoch of the run; zero = unset
  Time_gbt LastTime{};      ///< latest epoch of the run; zero = unset
  Time_gbt LastAccepted{};  ///< last epoch accepted; zero = unset

  /// Takes a configuration over and marks the satellites it excludes; marks of earlier calls stay.
  void Configure(const QcConfig& config);
  /// Sets the systems to combine from the host's five flags; the configuration is complete then and is
  /// traced.
  void SetCombination(const std::uint8_t* flags);
  /// Adds a navigation set to the stores. @return false when it holds no record at all
  bool LoadNavigationSet(const NavBodyData_QC_gbt& nav);

  /// Takes one batch through the whole chain.
  /// @return GNSSQC_OK, GNSSQC_NO_DATA or GNSSQC_NO_POSITION
  GNSSQC_STATE TakeBatch(const ObsBodyData_QC_gbt& obs);

  /// Sorts the epochs of a batch into ObsData.
  /// @return false when no interval can be detected (the epochs are stored nevertheless) or no epoch has a
  ///         usable time
  bool Ingest(const ObsBodyData_QC_gbt& obs, BatchCodes& codes, BatchSummary& summary);

  /// The result of the run so far; changes nothing.
  bool WholePeriodResult(result_qct& record) const;
  /// Rounds the interval of the run to a millisecond, as the whole-period result shows it.
  // Kept for compatibility: asking for that result does so, and what comes after is measured with it.
  void RoundInterval();
  /// The result per signal code of the run so far; changes nothing.
  void EachCodeResult(total_code_qc_result& record) const;

  /// Sets the detail observer of the batches that follow; null removes it. The caller keeps
  /// ownership.
  void SetDetailObserver(QcDetailObserver* observer) { observer_ = observer; }

  /// What the result side reads of the run.
  ResultSources Sources() const;
  /// Whether a satellite (number 1 to 208) was in an epoch that was measured.
  bool Observed(int number) const { return observed_[number - 1]; }
  /// Whether it ever had an elevation in one.
  bool HadElevation(int number) const { return expected_.Holds(number); }

  /// Drops the epochs of the current batch, here and in the measures.
  void ResetBatch();
  /// Frees the run's data.
  void Release();

 private:
  bool FindInterval(const ObsBodyData_QC_gbt& obs, BatchSummary& summary);
  bool TooEarly(const Time_gbt& t) const;
  void WidenRun(const BatchSummary& summary);
  void RunMeasures();
  void InitialiseMeasures();
  void MeasureSatellite(int number);
  void MeasureEpoch(int number, std::size_t i);
  void ReportEpoch(int number, const QcEpochData& epoch, const ElevationFlags& flags);

  ExpectedEpochs expected_;
  bool observed_[gnssqctoolkit::kMaxSatellites] = {};
  QcDetailObserver* observer_ = nullptr;
};

}  // namespace orsolva

#endif  // ORSOLVA_QC_PROCESS_H
