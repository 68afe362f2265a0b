// The detail table: one CSV row per epoch, satellite and signal (one per partner where a signal has several).
//
// Rows go out epoch by epoch while the run goes on: what is held is the satellites of one batch and the pairs
// of one epoch, whatever the length of the file.
#ifndef ORSOLVA_REPORT_DETAIL_CSV_H
#define ORSOLVA_REPORT_DETAIL_CSV_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/report/detail_sink.h"

namespace orsolva_host {

/// The first line of the table, without its line feed.
extern const char* const kDetailCsvHeader;

/// Whether a signal of a satellite has rows, by system letter, number and code ("1C").
using DetailFilter = std::function<bool(char letter, int number, std::string_view signal)>;

class DetailCsv : public DetailSink {
 public:
  /// @param write  takes pieces of the table in order; what it throws comes out of EndBatch or Finish
  /// @param filter  empty: everything has rows
  explicit DetailCsv(std::function<void(std::string_view)> write, DetailFilter filter = {});

  void Begin(const Time_gbt& first, double interval_s) override;
  void EndBatch() override;
  void Finish(const total_code_qc_result& codes) override;
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail& detail) override;
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override;

 private:
  struct SignalValue {
    std::uint32_t code;
    float snr_dbhz;
  };
  struct SatelliteEpoch {
    Time_gbt time;
    int number;
    orsolva::DetailSatellite satellite;
    double elevation_rad;
    double azimuth_rad;
    bool above_cutoff;
    std::size_t first_signal;
    int signal_count;
  };

  void Arrange();
  void WriteEpochsBefore(const Time_gbt& time);
  void WriteEpoch();
  void WriteSatellite(const SatelliteEpoch& epoch, std::size_t first_pair, std::size_t end_pair);
  bool IsWanted(const SatelliteEpoch& epoch, const SignalValue& signal) const;
  void WriteLead(const SatelliteEpoch& epoch, const SignalValue& signal);
  void WritePair(const orsolva::PairEpochDetail& pair);
  void Pass();
  void Complain();

  std::function<void(std::string_view)> write_;
  DetailFilter filter_;
  std::vector<SatelliteEpoch> epochs_;  // of the batch; in time order once arranged
  std::vector<SignalValue> signals_;
  std::vector<orsolva::PairEpochDetail> pairs_;  // of the epoch at next_
  std::size_t next_ = 0;
  bool arranged_ = false;
  std::string time_text_;
  std::string text_;
  std::exception_ptr failure_;  // of the writing, which happens inside the library's calls
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DETAIL_CSV_H
