// Hands files to a fuzz target one after another, for compilers without libFuzzer and for found cases.
//
// usage: replay_<target> FILE_OR_FOLDER...   (folders are read without their subfolders)
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(const fs::path& path) {
  std::vector<fs::path> files;
  if (!fs::is_directory(path)) return {path};
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool Replay(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
    return false;
  }
  // A buffer of exactly the size, so that a read beyond it is seen.
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  std::printf("%s\n", path.string().c_str());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  int replayed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const fs::path& file : FilesOf(argv[i])) {
      if (!Replay(file)) return 1;
      ++replayed;
    }
  }
  std::printf("%d inputs\n", replayed);
  return replayed > 0 ? 0 : 1;
}
