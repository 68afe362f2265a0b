#include "host/live/serving/listen_address.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace orsolva_host::live {
namespace {

constexpr int kLargestPort = 65535;

std::optional<int> ParsePort(std::string_view text) {
  int port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port < 0 || port > kLargestPort) {
    return std::nullopt;
  }
  return port;
}

/// Without the brackets of an IPv6 address; empty when it is none of a host.
std::string HostOf(std::string_view text) {
  if (text.size() > 2 && text.front() == '[' && text.back() == ']') {
    text = text.substr(1, text.size() - 2);
  } else if (text.find_first_of(":[]") != std::string_view::npos) {
    return {};
  }
  return std::string(text);
}

}  // namespace

std::optional<ListenAddress> ParseListenAddress(const std::string& text) {
  ListenAddress address;
  const std::size_t colon = text.rfind(':');
  if (colon != std::string::npos) {
    address.host = HostOf(std::string_view(text).substr(0, colon));
    if (address.host.empty()) return std::nullopt;
  }
  const std::optional<int> port =
      ParsePort(std::string_view(text).substr(colon == std::string::npos ? 0 : colon + 1));
  if (!port) return std::nullopt;
  address.port = *port;
  return address;
}

bool IsLoopback(const ListenAddress& address) {
  return address.host == "localhost" || address.host == "::1" || address.host.rfind("127.", 0) == 0;
}

std::string UrlOf(const ListenAddress& address) {
  const bool v6 = address.host.find(':') != std::string::npos;
  return "http://" + (v6 ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port) +
         "/";
}

}  // namespace orsolva_host::live
