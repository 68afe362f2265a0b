// A guard before TOML is parsed.
#ifndef ORSOLVA_REPORT_TOML_KEYS_H
#define ORSOLVA_REPORT_TOML_KEYS_H

#include <cstddef>
#include <string_view>

namespace orsolva_host {

constexpr std::size_t kMaxKeyParts = 100;

/// The first line (from 1) that may hold a key of more than kMaxKeyParts parts (a.b.c has three); 0 without
/// one. Every part becomes a table inside the one before, and tables are given back by recursion: a text with
/// a hundred thousand parts would use up the stack.
std::size_t LineOfDeepKey(std::string_view text);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_TOML_KEYS_H
