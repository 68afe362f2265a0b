#include "host/live/sources/source_table.h"

namespace orsolva_host::live {
namespace {

constexpr std::size_t kMountField = 1, kNmeaField = 11;

/// A field of a record, counted from 0, without quotation marks; empty where there is none.
std::string FieldOf(std::string_view record, std::size_t wanted) {
  std::string field;
  bool quoted = false;
  std::size_t number = 0;
  for (const char c : record) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ';' && !quoted) {
      if (number++ == wanted) break;
    } else if (number == wanted) {
      field += c;
    }
  }
  return field;
}

}  // namespace

void SourceTableSearch::TakeLine() {
  if (line_.rfind("ENDSOURCETABLE", 0) == 0) over_ = true;
  if (line_.rfind("STR;", 0) != 0 || FieldOf(line_, kMountField) != mount_) return;
  const std::string nmea = FieldOf(line_, kNmeaField);
  if (nmea == "0" || nmea == "1") wants_position_ = nmea == "1";
  over_ = true;
}

bool SourceTableSearch::Take(std::string_view bytes) {
  for (const char c : bytes) {
    if (over_ || taken_ == kMaxTable) return false;
    ++taken_;
    if (c == '\n') {
      if (line_.size() <= kMaxLine) TakeLine();
      line_.clear();
    } else if (c != '\r' && line_.size() <= kMaxLine) {
      line_ += c;
    }
  }
  return !over_ && taken_ < kMaxTable;
}

}  // namespace orsolva_host::live
