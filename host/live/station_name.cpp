#include "host/live/station_name.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

namespace orsolva_host::live {
namespace {

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

bool IsPlain(char c) {
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return letter || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.' || !IsAscii(c);
}

bool IsUtf8(const std::string& text) {
  try {
    nlohmann::json(text).dump();
    return true;
  } catch (const nlohmann::json::exception&) {
    return false;
  }
}

}  // namespace

std::string WrongWithName(const std::string& name) {
  if (name.empty()) return "the name is empty";
  if (name.size() > kLongestName)
    return fmt::format("the name has {} bytes, expected at most {}", name.size(), kLongestName);
  if (!IsUtf8(name) || std::any_of(name.begin(), name.end(), IsControl))
    return "the name has a control character or is no UTF-8";
  return {};
}

std::string NameFrom(const std::string& found) {
  std::string name = found.substr(0, kLongestName);
  const bool utf8 = IsUtf8(name);
  std::replace_if(
      name.begin(), name.end(), [utf8](char c) { return IsControl(c) || (!utf8 && !IsAscii(c)); }, '_');
  return name;
}

std::string FileNameOf(const std::string& station) {
  std::string name;
  for (const char c : station) {
    const bool hides = c == '.' && name.empty();
    name += IsPlain(c) && !hides ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
  }
  return name;
}

}  // namespace orsolva_host::live
