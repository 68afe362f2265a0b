// The raw epochs of an observation file, whatever its format.
//
// Each format (plain, CRINEX; by version) has its own class behind one interface. The meaning of observation
// types is not known here: a satellite is a row of cells in the order of the header's types.
#ifndef ORSOLVA_RINEX_OBSERVATION_BODY_H
#define ORSOLVA_RINEX_OBSERVATION_BODY_H

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "host/rinex/diagnostics.h"
#include "host/rinex/line_reader.h"
#include "host/rinex/observation_header.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// One observation: the value and the two flags that follow it.
struct Cell {
  double value = 0;
  bool present = false;
  char loss_of_lock = ' ';
  char strength = ' ';
};

struct SatelliteRow {
  char letter = 'G';
  int number = 0;
  std::size_t first_cell = 0;
  std::size_t cells = 0;
};

/// Flag of a block of header lines among the observations without an event line before them.
constexpr int kStrayHeader = 7;

struct EpochBlock {
  long line = 0;
  Time_gbt time = {};      ///< in the calendar of the file
  bool time_given = true;  ///< an event may leave its time blank
  int flag = 0;            ///< 0 good, 1 power failure before, above 1 event
  double clock_offset_s = std::numeric_limits<double>::quiet_NaN();  ///< of the receiver; NaN: not given
  std::vector<SatelliteRow> satellites;
  std::vector<Cell> cells;
  std::vector<std::string> records;  ///< the lines of an event
  long first_record_line = 0;
};

class ObservationBody {
 public:
  virtual ~ObservationBody() = default;
  /// Reads the next epoch or event. Anything unreadable is skipped with a notice.
  /// @param types  observation types in effect for the epoch
  /// @return false at the end of the data
  virtual bool Next(const ObservationTypes& types, EpochBlock& epoch) = 0;
};

/// RINEX 3 and 4, plain.
std::unique_ptr<ObservationBody> PlainBody(LineReader& lines, std::string file, Diagnostics& diagnostics);

/// RINEX 2, plain. @param blank_letter  system of satellites without a letter
std::unique_ptr<ObservationBody> PlainBody2(LineReader& lines, std::string file, Diagnostics& diagnostics,
                                            char blank_letter);

/// RINEX 3 and 4 as CRINEX 3 (Hatanaka 2008, Bulletin of the GSI 55).
std::unique_ptr<ObservationBody> CrinexBody(LineReader& lines, std::string file, Diagnostics& diagnostics);

/// RINEX 2 as CRINEX 1. @param blank_letter  system of satellites without a letter
std::unique_ptr<ObservationBody> CrinexBody2(LineReader& lines, std::string file, Diagnostics& diagnostics,
                                             char blank_letter);

/// The body for the format in the header.
std::unique_ptr<ObservationBody> BodyOf(const ObservationHeader& header, LineReader& lines, std::string file,
                                        Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_OBSERVATION_BODY_H
