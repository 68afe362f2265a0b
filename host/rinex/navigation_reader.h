// Reads broadcast navigation files into the library's records.
#ifndef ORSOLVA_RINEX_NAVIGATION_READER_H
#define ORSOLVA_RINEX_NAVIGATION_READER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/observation/broadcast_records.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/line_reader.h"
#include "host/rinex/navigation_lines.h"
#include "host/rinex/navigation_records.h"
#include "host/rinex/navigation_set.h"

namespace orsolva_host {

struct NavigationOptions {
  InputLimits limits;
};

/// Collects the records of RINEX 2, 3 and 4 navigation files, mixed or of one system, compressed or not.
///
/// Reference times are seconds since 1970-01-01 in the calendar of the file: GPS, Galileo and QZSS time, BDS
/// time, and UTC for GLONASS. Weeks and seconds of week are those of the file, except that a GPS, QZSS or
/// Galileo week that has rolled over (less by a multiple of 1,024) is corrected. Of RINEX 4 the EPH records
/// LNAV, FDMA, INAV, FNAV, D1 and D2 are used; all others are counted and ignored. Duplicate records are used
/// once.
class NavigationReader {
 public:
  explicit NavigationReader(Diagnostics& diagnostics, const NavigationOptions& options = {})
      : diagnostics_(diagnostics), options_(options) {}

  /// Adds the records of a file. @throws FileError
  void Read(const std::string& path);
  void Read(std::unique_ptr<ByteSource> source, const std::string& name);

  /// RINEX version of the last file read.
  double Version() const { return version_; }
  /// Files read, in order.
  const std::vector<std::string>& Files() const { return files_; }

  /// Everything read so far, with Galileo I/NAV preferred over F/NAV.
  NavigationSet Take() const;

  /// The same records as plain data, including those of systems and satellites that the library does not
  /// know.
  const BroadcastRecords& Broadcast() const { return broadcast_; }
  BroadcastRecords TakeBroadcast() { return std::move(broadcast_); }

 private:
  struct SameSatellite {
    std::size_t operator()(const NavigationRecord& record) const;
  };
  struct SameValues {
    bool operator()(const NavigationRecord& a, const NavigationRecord& b) const;
  };

  void ReadHeader(LineReader& lines);
  void CheckVersion(std::string_view line, long number);
  void ChooseSystem(std::string_view line);
  void ReadRecords(LineReader& lines);
  void TakeHeaderLine(std::string_view line, long number);
  bool TakeMessageLine(std::string_view line, long number);
  bool BeginRecord(std::string_view line, long number);
  bool IsForeign(long number);
  void AddLine(std::string_view line, long number);
  void FinishRecord();
  void FinishLastRecord();
  bool Convert();
  bool AddGalileo();
  void RepairWeek();
  double Number(std::string_view field, long number);
  void CheckCount() const;
  void Notice(long line, const std::string& text, bool recovered) {
    diagnostics_.Add(name_, line, text, recovered);
  }

  Diagnostics& diagnostics_;
  NavigationOptions options_;
  std::vector<std::string> files_;
  std::string name_;
  double version_ = 0;
  char system_ = 'G';  ///< of the records of RINEX 2, which have no letter
  NavigationRecord record_;
  NavigationColumns columns_;
  bool open_ = false;     ///< a record is being read
  bool bad_ = false;      ///< the current record has a value that is not a number
  bool cut_ = false;      ///< its last line ends within a value, and with it the file
  bool skipped_ = false;  ///< the current record is not used
  bool foreign_ = false;  ///< the record at hand is of a satellite that the library does not know
  std::string message_;   ///< RINEX 4 message type, such as "INAV"
  NavigationSet set_;     ///< without Galileo
  BroadcastRecords broadcast_;
  std::vector<GalileoRecord> galileo_;
  std::unordered_set<NavigationRecord, SameSatellite, SameValues> seen_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_NAVIGATION_READER_H
