// Reports read back from JSON: the figures of the analysis and what the header said.
#ifndef ORSOLVA_REPORT_EARLIER_REPORT_H
#define ORSOLVA_REPORT_EARLIER_REPORT_H

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "host/report/report.h"

namespace orsolva_host {

/// A file that holds no report that can be read: its name and why.
class EarlierReportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct EarlierReport {
  /// Of a figure: subject ("G", empty for the run), signal ("1C" or empty), key.
  using Place = std::tuple<std::string, std::string, std::string>;

  std::string file;
  std::string observation_file;
  std::string marker, receiver, antenna;
  std::string first_epoch, last_epoch;  ///< "2020-06-25 00:00:00.000"
  std::map<Place, double> figures;      ///< those with a value; yes and no as 1 and 0
  std::vector<std::string> signals;     ///< "G 1C", in the order of the report

  std::optional<double> Find(const Place& place) const;
  bool HasSignal(std::string_view name) const;
  /// The marker in upper case; without one the station of the file name; empty when neither is known.
  std::string Station() const;
};

/// Whether the lengths of their data differ by at most a tenth.
bool SimilarSpans(const EarlierReport& a, const EarlierReport& b);

/// Whether two reports are of one station: the same marker, or the same first four characters where one is
/// the short name of the other.
bool SameStation(const EarlierReport& a, const EarlierReport& b);

/// The reports of a file of `orsolva qc --json`, of one or of several observation files; files that could not
/// be judged are passed over.
/// @throws EarlierReportError when there is none: no file, no JSON, another program's, another format
std::vector<EarlierReport> ReadReports(const std::string& file);

/// The same of a text. @param file  for messages
std::vector<EarlierReport> ParseReports(std::string_view text, const std::string& file);

/// The same figures of a report at hand.
EarlierReport AsEarlier(const Report& report);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_EARLIER_REPORT_H
