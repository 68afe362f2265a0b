// Any bytes as what a caster's source table says, and as a source as users write it. The first byte chooses
// the size of the pieces in which the table comes; the text up to the first line break is the source and,
// without what lies before its last slash, the mount point that is searched for.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "host/live/sources/source_spec.h"
#include "host/live/sources/source_table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orsolva_host::live;
using orsolva_fuzz::Require;

std::optional<bool> Searched(std::string_view table, const std::string& mount, std::size_t piece) {
  SourceTableSearch search(mount);
  for (std::size_t at = 0; at < table.size(); at += piece) {
    if (!search.Take(table.substr(at, piece))) break;
  }
  return search.WantsPosition();
}

void CheckSource(const std::string& text) {
  SourceSpec spec;
  if (!ParseSource(text, spec).empty()) return;
  const bool network = spec.kind == SourceKind::kNtrip || spec.kind == SourceKind::kTcp;
  Require(!network || (!spec.host.empty() && spec.port != 0), "a source of the network has host and port");
  SourceSpec again;
  const std::string shown = spec.Shown();
  if (spec.kind != SourceKind::kNtrip) return;
  Require(ParseSource(shown, again).empty(), "what is shown of a source is a source");
  Require(again.user.empty() && again.password.empty(), "no secret is shown");
  Require(again.mount == spec.mount && again.host == spec.host && again.port == spec.port,
          "what is shown names the same stream");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string source(rest.substr(0, rest.find('\n')));
  CheckSource(source);
  const std::string mount = source.substr(source.rfind('/') + 1);
  const std::string_view table = rest.substr(std::min(rest.size(), source.size() + 1));
  Require(Searched(table, mount, data[0] % 64 + 1U) == Searched(table, mount, table.size() + 1),
          "how a table is cut changes nothing");
  return 0;
}
