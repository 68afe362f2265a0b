#include "host/terminal/progress_bar.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

std::string Clock(double seconds) {
  constexpr double kLongest_s = 359999;
  const auto whole = static_cast<long>(std::clamp(seconds, 0.0, kLongest_s));
  if (whole >= 3600) return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

std::string ProgressLine(const ProgressState& s, std::size_t width) {
  constexpr int kCells = 20;
  std::string line;
  double part = 0;
  if (s.bytes_of > 0) {
    part = std::min(1.0, static_cast<double>(s.bytes) / static_cast<double>(s.bytes_of));
    const int full = static_cast<int>(part * kCells);
    line = "[" + std::string(full, '#') + std::string(kCells - full, '-') +
           fmt::format("] {:3.0f} %  ", part * 100);
  }
  if (s.files > 1) line += fmt::format("{}/{} files  ", s.files_done, s.files);
  line += fmt::format("{} epochs", s.epochs);
  if (s.seconds > 0.1) line += fmt::format("  {:.0f} epochs/s", static_cast<double>(s.epochs) / s.seconds);
  if (part > 0.01 && s.seconds > 0.1) line += "  " + Clock(s.seconds * (1 - part) / part) + " left";
  return line.substr(0, width);
}

ProgressBar::ProgressBar(bool wanted) : visible_(wanted && IsTerminal(Stream::kError)) {}

void ProgressBar::Show(const ProgressState& state) {
  if (!visible_) return;
  const std::size_t width = TerminalWidth(Stream::kError);
  const std::string line = ProgressLine(state, width > 1 ? width - 1 : 79);
  std::fprintf(stderr, "\r\033[K%s", line.c_str());
  std::fflush(stderr);
  shown_ = true;
}

void ProgressBar::Clear() {
  if (shown_) std::fputs("\r\033[K", stderr);
  shown_ = false;
}

}  // namespace orsolva_host
