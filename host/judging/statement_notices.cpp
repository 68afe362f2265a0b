#include "host/judging/statement_notices.h"

#include <fmt/format.h>

namespace orsolva_host {
namespace {

struct Wording {
  const char* id;
  const char* stated;
  const char* found;
};

constexpr Wording kWordings[] = {
    {"marker", "the marker of the header is", "the station is"},
    {"file_name_interval", "the file name says an interval of", "the data have"},
    {"file_name_start", "the file name says a beginning at", "the first epoch is"},
    {"file_name_period", "the file name says data", "they reach"},
    {"first_epoch", "the header says a first epoch at", "it is"},
    {"last_epoch", "the header says a last epoch at", "it is"},
};

}  // namespace

void AddStatementNotices(const std::string& file, const std::vector<analysis::Contradiction>& contradictions,
                         Diagnostics& diagnostics) {
  for (const analysis::Contradiction& c : contradictions) {
    for (const Wording& wording : kWordings) {
      if (c.id != wording.id) continue;
      diagnostics.Add(file, 0,
                      fmt::format("{} {}, {} {}", wording.stated, Printable(c.stated), wording.found,
                                  Printable(c.found)));
    }
  }
}

}  // namespace orsolva_host
