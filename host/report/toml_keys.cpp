#include "host/report/toml_keys.h"

#include <algorithm>

namespace orsolva_host {

std::size_t LineOfDeepKey(std::string_view text) {
  std::size_t number = 0;
  while (!text.empty()) {
    ++number;
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t first = line.find_first_not_of(" \t");
    const bool comment = first != std::string_view::npos && line[first] == '#';
    if (!comment && std::count(line.begin(), line.end(), '.') >= static_cast<long>(kMaxKeyParts)) {
      return number;
    }
  }
  return 0;
}

}  // namespace orsolva_host
