#include "host/rinex/diagnostics.h"

#include <utility>

namespace orsolva_host {

void Diagnostics::Add(const std::string& file, long line, const std::string& text, bool recovered) {
  ++total_;
  const std::string key = file + '\n' + text;
  const auto known = index_.find(key);
  if (known != index_.end()) {
    ++notices_[known->second].count;
    return;
  }
  if (notices_.size() >= kMaxKinds) {
    ++uncounted_;
    return;
  }
  index_.emplace(key, notices_.size());
  notices_.push_back({file, line, text, 1, recovered});
}

namespace {

std::string Message(const std::string& file, long line, const std::string& found, const std::string& expected,
                    const std::string& advice) {
  std::string text = file;
  if (line > 0) text += ":" + std::to_string(line);
  text += ": found " + found + ", expected " + expected + ".";
  if (!advice.empty()) text += " " + advice;
  return text;
}

}  // namespace

FileError::FileError(std::string file, long line, std::string found, std::string expected, std::string advice)
    : std::runtime_error(Message(file, line, found, expected, advice)),
      file_(std::move(file)),
      line_(line),
      found_(std::move(found)),
      expected_(std::move(expected)),
      advice_(std::move(advice)) {}

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text.substr(0, 40)) out += (c >= ' ' && c <= '~') ? c : '?';
  if (text.size() > 40) out += "...";
  return out + "\"";
}

}  // namespace orsolva_host
