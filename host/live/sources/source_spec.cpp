#include "host/live/sources/source_spec.h"

#include <fmt/format.h>

#include <charconv>
#include <filesystem>
#include <string_view>

#include "host/live/sources/serial_line.h"

namespace orsolva_host::live {
namespace {

constexpr std::uint16_t kCasterPort = 2101;  // registered for NTRIP
constexpr unsigned kDefaultBaud = 115200;

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (text.substr(0, prefix.size()) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

template <typename Number>
bool ParseWhole(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stopped == end;
}

/// "host", "host:port" or "[::1]:port".
std::string ParseHost(std::string_view text, SourceSpec& spec) {
  std::size_t colon = text.rfind(':');
  const std::size_t bracket = text.rfind(']');
  if (bracket != std::string_view::npos && colon != std::string_view::npos && colon < bracket)
    colon = std::string_view::npos;
  std::string_view host = text.substr(0, colon);
  if (colon != std::string_view::npos && (!ParseWhole(text.substr(colon + 1), spec.port) || spec.port == 0))
    return "the port is no number from 1 to 65535";
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
  spec.host = host;
  return host.empty() ? "the host is missing" : "";
}

void TakeUser(std::string_view& text, SourceSpec& spec) {
  const std::size_t at = text.substr(0, text.find('/')).rfind('@');
  if (at == std::string_view::npos) return;
  const std::string_view login = text.substr(0, at);
  const std::size_t colon = login.find(':');
  spec.user = PercentDecoded(std::string(login.substr(0, colon)));
  if (colon != std::string_view::npos) spec.password = PercentDecoded(std::string(login.substr(colon + 1)));
  text.remove_prefix(at + 1);
}

std::string ParseCaster(std::string_view text, SourceSpec& spec) {
  spec.kind = SourceKind::kNtrip;
  spec.port = kCasterPort;
  TakeUser(text, spec);
  const std::size_t slash = text.find('/');
  const std::string wrong = ParseHost(text.substr(0, slash), spec);
  if (!wrong.empty()) return wrong;
  if (slash != std::string_view::npos) spec.mount = text.substr(slash + 1);
  spec.mount = spec.mount.substr(0, spec.mount.find('?'));
  return spec.mount.empty() ? "the mount point is missing: ntrip://host:2101/MOUNT" : "";
}

/// Empty for a folder, as in "data/".
std::string FileName(const std::string& path) { return std::filesystem::path(path).filename().string(); }

std::string ParseSerial(std::string_view text, SourceSpec& spec) {
  spec.kind = SourceKind::kSerial;
  spec.baud = kDefaultBaud;
  const std::size_t colon = text.rfind(':');
  spec.path = text.substr(0, colon);
  if (colon != std::string_view::npos && !ParseWhole(text.substr(colon + 1), spec.baud))
    return "the speed is no whole number";
  if (!IsLineSpeed(spec.baud))
    return fmt::format("a speed of {} is not known, expected one of {}", spec.baud, LineSpeeds());
  return FileName(spec.path).empty() ? "the device is missing: serial:/dev/ttyUSB0:115200" : "";
}

std::string HostText(const SourceSpec& spec) {
  const bool six = spec.host.find(':') != std::string::npos;
  return (six ? "[" + spec.host + "]" : spec.host) + ":" + std::to_string(spec.port);
}

}  // namespace

std::string PercentDecoded(const std::string& text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    const char* const digits = text.data() + i + 1;
    const bool coded = text[i] == '%' && i + 2 < text.size() &&
                       std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
    decoded += coded ? static_cast<char>(value) : text[i];
    if (coded) i += 2;
  }
  return decoded;
}

std::string ParseSource(const std::string& text, SourceSpec& spec) {
  spec = {};
  std::string_view rest = text;
  if (TakePrefix(rest, "ntrip://")) return ParseCaster(rest, spec);
  if (TakePrefix(rest, "ntrips://")) {
    spec.tls = true;
    return ParseCaster(rest, spec);
  }
  if (TakePrefix(rest, "tcp://")) {
    spec.kind = SourceKind::kTcp;
    const std::string wrong = ParseHost(rest.substr(0, rest.find('/')), spec);
    if (!wrong.empty()) return wrong;
    return spec.port == 0 ? "the port is missing: tcp://host:port" : "";
  }
  if (TakePrefix(rest, "serial:")) return ParseSerial(rest, spec);
  if (rest.find("://") != std::string_view::npos)
    return "of sources there are ntrip://, ntrips://, tcp://, serial:, files and -";
  spec.kind = text == "-" ? SourceKind::kStandardInput : SourceKind::kFile;
  spec.path = text;
  if (text.empty()) return "the source is empty";
  return FileName(spec.path).empty() ? "the source is a folder" : "";
}

std::string SourceSpec::Shown() const {
  switch (kind) {
    case SourceKind::kNtrip:
      return std::string(tls ? "ntrips://" : "ntrip://") + HostText(*this) + "/" + mount;
    case SourceKind::kTcp:
      return "tcp://" + HostText(*this);
    case SourceKind::kSerial:
      return "serial:" + path + ":" + std::to_string(baud);
    case SourceKind::kStandardInput:
      return "standard input";
    case SourceKind::kFile:
      break;
  }
  return path;
}

std::string SourceSpec::StationName() const {
  if (kind == SourceKind::kNtrip) return mount;
  if (kind == SourceKind::kTcp) return host;
  if (kind == SourceKind::kStandardInput) return "stdin";
  const std::string name = FileName(path);
  return name.substr(0, name.find('.', 1));  // a file may begin with a dot
}

void ChooseLogin(const Login& own, const Login& common, SourceSpec& spec) {
  Login chosen;
  for (const Login& login : {own, Login{spec.user, spec.password}, common}) {
    const bool fits = login.user.empty() || chosen.user.empty() || login.user == chosen.user;
    if (!fits) continue;
    if (chosen.user.empty()) chosen.user = login.user;
    if (chosen.password.empty()) chosen.password = login.password;
  }
  spec.user = chosen.user;
  spec.password = chosen.password;
}

void ShareLogin(const SourceSpec& first, SourceSpec& second) {
  if (second.kind != SourceKind::kNtrip || !second.user.empty()) return;
  const bool same = first.host == second.host && first.port == second.port && (second.tls || !first.tls);
  if (first.kind == SourceKind::kNtrip && !same) return;
  second.user = first.user;
  second.password = first.password;
}

}  // namespace orsolva_host::live
