#include "host/rinex/text_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
  throw FileError(path, 0, what + ": " + std::strerror(errno), "", "Check the name and the permissions.");
}

}  // namespace

std::string TextOfFile(const std::string& path, std::size_t max_bytes) {
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) Fail(path, "cannot be opened");
  std::string text;
  char piece[1U << 16];
  while (const std::size_t count = std::fread(piece, 1, sizeof piece, file.get())) {
    text.append(piece, count);
    if (text.size() > max_bytes) {
      throw FileError(path, 0, fmt::format("more than {} bytes", max_bytes), "fewer",
                      "Check that it is the right file.");
    }
  }
  if (std::ferror(file.get()) != 0) Fail(path, "cannot be read");
  return text;
}

}  // namespace orsolva_host
