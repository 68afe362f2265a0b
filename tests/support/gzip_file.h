// Reads gzip files whole.
#ifndef ORSOLVA_TESTS_SUPPORT_GZIP_FILE_H
#define ORSOLVA_TESTS_SUPPORT_GZIP_FILE_H

#include <zlib.h>

#include <filesystem>
#include <stdexcept>
#include <vector>

namespace orsolva_test {

/// The whole content of a gzip (or plain) file.
inline std::vector<unsigned char> Unpack(const std::filesystem::path& path) {
  gzFile file = gzopen(path.string().c_str(), "rb");
  if (file == nullptr) throw std::runtime_error("cannot open " + path.string());
  std::vector<unsigned char> all, part(1 << 20);
  for (int n; (n = gzread(file, part.data(), static_cast<unsigned>(part.size()))) > 0;) {
    all.insert(all.end(), part.begin(), part.begin() + n);
  }
  gzclose(file);
  return all;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_GZIP_FILE_H
