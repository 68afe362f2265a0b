// What the source table of an NTRIP caster says of one mount point.
//
// Fields of a record STR are separated by semicolons; the second is the mount point, the twelfth says whether
// the client has to send its position as NMEA sentences: 0 no, 1 yes (BKG, "Networked Transport of RTCM via
// Internet Protocol", version 1.0, section "Source-table"). A field in quotation marks may hold semicolons.
#ifndef ORSOLVA_LIVE_SOURCES_SOURCE_TABLE_H
#define ORSOLVA_LIVE_SOURCES_SOURCE_TABLE_H

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orsolva_host::live {

/// Searches a table as it comes, in pieces of any size. It keeps one line of the table at most.
class SourceTableSearch {
 public:
  explicit SourceTableSearch(std::string mount) : mount_(std::move(mount)) {}

  /// @return whether more of the table is wanted
  bool Take(std::string_view bytes);
  /// Whether a client has to send GGA; absent when the table does not say.
  std::optional<bool> WantsPosition() const { return wants_position_; }

 private:
  static constexpr std::size_t kMaxTable = std::size_t{4} << 20;
  static constexpr std::size_t kMaxLine = std::size_t{8} << 10;  ///< a longer one is no record

  void TakeLine();

  std::string mount_;
  std::string line_;
  std::size_t taken_ = 0;
  std::optional<bool> wants_position_;
  bool over_ = false;
};

/// What is known of a mount point, kept from connection to connection.
struct MountWishes {
  std::optional<bool> position;  ///< whether a client has to send GGA; absent when no table says so
  std::optional<std::chrono::steady_clock::time_point> asked;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_SOURCE_TABLE_H
