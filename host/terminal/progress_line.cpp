#include "host/terminal/progress_line.h"

#include <fmt/format.h>

#include <algorithm>

namespace orsolva_host {
namespace {

std::string Clock(double seconds) {
  constexpr double kLongest_s = 359999;
  const auto whole = static_cast<long>(std::clamp(seconds, 0.0, kLongest_s));
  if (whole >= 3600) return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

std::string ProgressLine(const ProgressState& s) {
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
  return line;
}

}  // namespace orsolva_host
