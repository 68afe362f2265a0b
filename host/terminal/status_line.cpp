#include "host/terminal/status_line.h"

#include <cstdio>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

constexpr char kWipe[] = "\r\033[K";

}  // namespace

StatusLine::StatusLine(bool wanted) : visible_(wanted && IsTerminal(Stream::kError)) {}

void StatusLine::Show(const std::string& text) {
  if (!visible_) return;
  constexpr std::size_t kUsualWidth = 80;
  const std::size_t width = TerminalWidth(Stream::kError);
  // A full line would wrap.
  const std::string shown = text.substr(0, (width > 1 ? width : kUsualWidth) - 1);
  std::fprintf(stderr, "%s%s", kWipe, shown.c_str());
  std::fflush(stderr);
  shown_ = true;
}

void StatusLine::Clear() {
  if (shown_) std::fputs(kWipe, stderr);
  shown_ = false;
}

}  // namespace orsolva_host
