// Keeps the figures over time that a page draws, in bounded memory: bins of five minutes, or so many of them
// together that there are at most kMaxBins.
#ifndef ORSOLVA_REPORT_SERIES_COLLECTOR_H
#define ORSOLVA_REPORT_SERIES_COLLECTOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "host/report/series_sink.h"

namespace orsolva_host {

class SeriesCollector : public SeriesSink {
 public:
  static constexpr std::size_t kMaxBins = 600;

  void Add(const analysis::SeriesRow& row) override;

  /// One JSON object: the begin of the first bin (s since 1970, GPS time), the length of a bin (s), and for
  /// every subject lists by bin, null where there is nothing: numbers with few digits are written as
  /// integers, SNR in tenths of dB-Hz, multipath in mm, availability and ROTI in thousandths, the rest as
  /// docs/internals/page.md says.
  std::string Json() const;

 private:
  /// Sums of one or more rows of a subject.
  struct Cell {
    std::uint32_t rows = 0;
    std::uint32_t observed = 0;
    std::uint32_t expected = 0;
    std::uint32_t slips = 0;
    std::uint32_t snr_values = 0;
    std::uint32_t multipath_values = 0;
    float satellites = 0;  ///< times epochs or rows, as below
    float snr_dbhz = 0;    ///< times values
    float squares_m2 = 0;
    float roti = 0;  ///< the largest; 0: none
    bool has_expected = false;

    void Add(const Cell& more);
  };
  struct Series {
    std::size_t first = 0;  ///< bin of the first cell
    std::vector<Cell> cells;
  };
  struct StationCell {
    std::uint32_t rows = 0;
    std::uint32_t slips = 0;
    std::uint32_t solutions = 0;  ///< rows with a position
    double satellites = 0;
    double pdop = 0;
    std::array<double, 3> enu_m = {};
    double clock_s = kAbsent;  ///< the first

    void Add(const StationCell& more);
  };
  using Key = std::tuple<std::size_t, std::uint8_t, std::string>;  ///< place of system, number, signal

  std::size_t PlaceOf(std::int64_t time_ns);
  void Merge();
  Cell& CellOf(const analysis::SeriesRow& row, std::size_t place);
  void AddStation(const analysis::SeriesRow& row, std::size_t place);

  std::optional<std::int64_t> first_ns_;
  std::int64_t bin_ns_ = 300 * kNanosecondsPerSecond;
  std::size_t bins_ = 0;
  std::vector<StationCell> station_;
  std::map<Key, Series> series_;
  std::map<std::size_t, char> letters_;  ///< of the systems, by their place
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_SERIES_COLLECTOR_H
