#include "host/terminal/appearance.h"

#include <algorithm>
#include <cstdlib>

#include "host/platform/platform.h"

namespace orsolva_host {

bool UseColours(const std::string& when) {
  if (when != "auto") return when == "always";
  const char* no_color = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return IsTerminal(Stream::kOutput) && (no_color == nullptr || *no_color == '\0') &&
         (terminal == nullptr || std::string(terminal) != "dumb");
}

std::size_t TextWidth(std::size_t asked) {
  constexpr std::size_t kMaxWidth = 80;
  if (asked > 0) return asked;
  const std::size_t columns = TerminalWidth(Stream::kOutput);
  return columns > 0 ? std::min(kMaxWidth, columns) : kMaxWidth;
}

}  // namespace orsolva_host
