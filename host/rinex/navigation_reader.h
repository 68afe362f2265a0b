// Reads broadcast navigation files into the library's records.
#ifndef ORSOLVA_RINEX_NAVIGATION_READER_H
#define ORSOLVA_RINEX_NAVIGATION_READER_H

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/line_reader.h"
#include "host/rinex/navigation_records.h"
#include "host/rinex/navigation_set.h"

namespace orsolva_host {

/// Collects the records of RINEX 3 and 4 navigation files, mixed or of one system, gzip or not.
///
/// Reference times are seconds since 1970-01-01 with the calendar as it stands in the file: GPS, Galileo and
/// QZSS time, BDS time, and UTC for GLONASS. Weeks and seconds of week are the file's. Of RINEX 4 the EPH
/// records LNAV, FDMA, INAV, FNAV, D1 and D2 are taken; all others are counted and left out. A record that
/// was met before is left out.
class NavigationReader {
 public:
  explicit NavigationReader(Diagnostics& diagnostics) : diagnostics_(diagnostics) {}

  /// Adds the records of a file. @throws FileError
  void Read(const std::string& path);
  void Read(std::unique_ptr<ByteSource> source, const std::string& name);

  /// Everything read so far, with Galileo I/NAV preferred over F/NAV.
  NavigationSet Take() const;

 private:
  void ReadHeader(LineReader& lines);
  void ReadRecords(LineReader& lines);
  bool TakeMessageLine(std::string_view line, long number);
  bool BeginRecord(std::string_view line, long number);
  void AddLine(std::string_view line, long number);
  void FinishRecord();
  bool Convert();
  bool AddGalileo();
  double Number(std::string_view field, long number);
  bool IsNew();
  void Notice(long line, const std::string& text, bool recovered) {
    diagnostics_.Add(name_, line, text, recovered);
  }

  Diagnostics& diagnostics_;
  std::string name_;
  double version_ = 0;
  NavigationRecord record_;
  bool open_ = false;     ///< a record is being read
  bool bad_ = false;      ///< the record at hand holds a value that is no number
  bool skipped_ = false;  ///< the RINEX 4 record at hand is of no use
  std::string message_;   ///< RINEX 4 message type, such as "INAV"
  NavigationSet set_;     ///< without Galileo
  std::vector<GalileoRecord> galileo_;
  /// Records met, by satellite and reference time.
  std::map<std::tuple<char, int, std::int64_t>, std::vector<NavigationRecord>> met_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_NAVIGATION_READER_H
