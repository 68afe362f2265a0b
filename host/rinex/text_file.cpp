#include "host/rinex/text_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

std::string TextOfFile(const std::string& path, std::size_t max_bytes) {
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) FailToOpen(path, errno);
  std::string text;
  char piece[1U << 16];
  while (const std::size_t count = std::fread(piece, 1, sizeof piece, file.get())) {
    text.append(piece, count);
    if (text.size() > max_bytes) {
      throw FileError(path, 0, fmt::format("more than {} bytes", max_bytes), "fewer",
                      "Check that it is the right file.");
    }
  }
  if (std::ferror(file.get()) != 0) {
    throw FileError(path, 0, std::string("cannot be read: ") + std::strerror(errno), "",
                    "Check the name and the permissions.");
  }
  return text;
}

}  // namespace orsolva_host
