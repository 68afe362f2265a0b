// Navigation files written by hand, and what the reader makes of them.
#ifndef ORSOLVA_TESTS_HOST_NAVIGATION_TEXT_H
#define ORSOLVA_TESTS_HOST_NAVIGATION_TEXT_H

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "host/rinex/navigation_reader.h"
#include "tests/host/shared_data.h"

namespace orsolva_test::navigation {

inline std::string Header(const std::string& version = "3.05") {
  return HeaderLine("     " + version + "           N: GNSS NAV DATA    M: MIXED", "RINEX VERSION / TYPE") +
         HeaderLine("", "END OF HEADER");
}

inline std::string Value(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%19.12E", value);
  return text;
}

/// A record whose value number i is i, but those named.
inline std::string Record(const std::string& first, int lines,
                          std::initializer_list<std::pair<int, double>> named = {}) {
  const auto value = [&](int i) {
    for (const auto& [place, given] : named) {
      if (place == i) return Value(given);
    }
    return Value(i);
  };
  std::string text = first + value(0) + value(1) + value(2) + "\n";
  for (int line = 0; line < lines; ++line) {
    text += "    ";
    for (int i = 0; i < 4; ++i) text += value(3 + 4 * line + i);
    text += "\n";
  }
  return text;
}

struct ReadFile {
  orsolva_host::Diagnostics notices;
  orsolva_host::NavigationSet set;

  explicit ReadFile(const std::string& text) {
    orsolva_host::NavigationReader reader(notices);
    reader.Read(orsolva_host::TextBytes(text), "test.nav");
    set = reader.Take();
  }
  bool Said(const std::string& part) const {
    for (const orsolva_host::Notice& n : notices.Notices()) {
      if (n.text.find(part) != std::string::npos) return true;
    }
    return false;
  }
};

/// The header of RINEX 2: one system a file, two-digit years, columns one further left.
inline std::string Header2(const std::string& type, char system = ' ', const std::string& version = "2.11") {
  std::string line = "     " + version + "           " + type;
  line.resize(40, ' ');
  return HeaderLine(line + system, "RINEX VERSION / TYPE") + HeaderLine("", "END OF HEADER");
}

/// The same record with three blanks before its further lines.
inline std::string Record2(const std::string& first, int lines,
                           std::initializer_list<std::pair<int, double>> named = {}) {
  std::string text = Record(first, lines, named);
  for (std::size_t at = 0; (at = text.find("\n    ", at)) != std::string::npos; ++at) text.erase(at + 1, 1);
  return text;
}

}  // namespace orsolva_test::navigation

#endif  // ORSOLVA_TESTS_HOST_NAVIGATION_TEXT_H
