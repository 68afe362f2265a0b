#include "host/judging/run_error.h"

#include <fmt/format.h>

#include <new>
#include <system_error>

namespace orsolva_host {

std::string ErrorText(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
    return "there is not enough memory. Judge fewer files at the same time (--jobs 1), or shorter ones.";
  }
  if (dynamic_cast<const std::system_error*>(&error) != nullptr) {
    return std::string("the system refused what the run needs: ") + error.what() + ".";
  }
  return error.what();
}

std::string NoticeText(const std::string& file, long line, const std::string& text, long count) {
  const std::string place = line > 0 ? fmt::format("{}:{}", file, line) : file;
  return fmt::format("{}: {}", place, text) + (count > 1 ? fmt::format(" ({} times)", count) : "");
}

}  // namespace orsolva_host
