#include "host/rinex/diagnostics.h"

#include <algorithm>
#include <utility>

namespace orsolva_host {

void Diagnostics::Add(const std::string& file, long line, const std::string& text, bool recovered) {
  AddKind(file, line, text, recovered);
}

void Diagnostics::AddIncomplete(const std::string& file, long line, const std::string& what) {
  Add(file, line, what, false);
  if (!incomplete_) incomplete_.emplace(file, line, what, "", "Download the file again.");
}

std::size_t Diagnostics::AddKind(const std::string& file, long line, const std::string& text,
                                 bool recovered) {
  std::string key = file;
  key.append(1, '\n').append(text);
  const auto [known, is_new] = index_.try_emplace(std::move(key), notices_.size());
  if (is_new && notices_.size() >= kMaxKinds) {
    index_.erase(known);
    Again(kMaxKinds);
    return kMaxKinds;
  }
  const std::size_t kind = known->second;
  if (is_new) notices_.push_back({file, line, text, 0, recovered});
  Again(kind);
  return kind;
}

void Diagnostics::Again(std::size_t kind, long cases) {
  total_ += cases;
  if (kind < notices_.size()) {
    notices_[kind].count += cases;
  } else {
    uncounted_ += cases;
  }
}

void Diagnostics::Append(const Diagnostics& other) {
  for (const Notice& n : other.notices_) Again(AddKind(n.file, n.line, n.text, n.recovered), n.count - 1);
  Again(kMaxKinds, other.uncounted_);
  if (!incomplete_) incomplete_ = other.incomplete_;
}

void Diagnostics::Join(const Diagnostics& other) {
  for (const Notice& n : other.notices_) {
    const auto known = std::find_if(notices_.begin(), notices_.end(),
                                    [&n](const Notice& notice) { return notice.text == n.text; });
    if (known != notices_.end()) {
      Again(static_cast<std::size_t>(known - notices_.begin()), n.count);
    } else {
      Again(AddKind(n.file, n.line, n.text, n.recovered), n.count - 1);
    }
  }
  Again(kMaxKinds, other.uncounted_);
  if (!incomplete_) incomplete_ = other.incomplete_;
}

namespace {

std::string Message(const std::string& file, long line, const std::string& found, const std::string& expected,
                    const std::string& advice) {
  std::string text = file;
  if (line > 0) text += ":" + std::to_string(line);
  text += expected.empty() ? ": " + found + "." : ": found " + found + ", expected " + expected + ".";
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

std::string Printable(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') c = '?';
  }
  return out;
}

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text.substr(0, 40)) out += (c >= ' ' && c <= '~') ? c : '?';
  if (text.size() > 40) out += "...";
  return out + "\"";
}

}  // namespace orsolva_host
