#include <fcntl.h>
#include <glob.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "host/platform/become_program.h"
#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

int DescriptorOf(Stream stream) { return stream == Stream::kOutput ? STDOUT_FILENO : STDERR_FILENO; }

}  // namespace

bool IsTerminal(Stream stream) { return isatty(DescriptorOf(stream)) == 1; }

std::size_t TerminalWidth(Stream stream) {
  winsize size = {};
  if (!IsTerminal(stream) || ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) != 0) return 0;
  return size.ws_col;
}

std::vector<std::string> FilesMatching(const std::string& pattern) {
  glob_t found = {};
  std::vector<std::string> files;
  if (glob(pattern.c_str(), 0, nullptr, &found) == 0)
    files.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
  globfree(&found);
  return files;
}

std::string SettingsFolder() {
  const char* folder = std::getenv("XDG_CONFIG_HOME");
  if (folder != nullptr && *folder != '\0') return folder;
  const char* home = std::getenv("HOME");
  return home != nullptr && *home != '\0' ? std::string(home) + "/.config" : std::string();
}

std::vector<std::string> ProgramFolders() {
  std::vector<std::string> folders;
  std::error_code error;
  const auto add = [&](const std::filesystem::path& program) {
    if (!error && program.has_parent_path()) folders.push_back(program.parent_path().string());
  };
  add(std::filesystem::read_symlink("/proc/self/exe", error));
  std::string name;
  std::getline(std::ifstream("/proc/self/cmdline"), name, '\0');
  if (name.find('/') != std::string::npos) add(std::filesystem::canonical(name, error));
  return folders;
}

int RunProgram(const std::vector<std::string>& words, const std::string& input) {
  std::string line = "exec";
  for (const std::string& word : words) {
    line += " '";
    for (const char c : word) line += c == '\'' ? std::string("'\\''") : std::string(1, c);
    line += '\'';
  }
  std::FILE* pipe = popen(line.c_str(), "w");
  if (pipe == nullptr) return 127;
  // A program that ends before it has read everything says why by its exit code.
  std::fwrite(input.data(), 1, input.size(), pipe);
  const int status = pclose(pipe);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 127;
}

int BecomeProgram(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments.front(), arguments.data());
  constexpr int kNotFound = 127;
  return kNotFound;
}

void PrepareStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    // The lowest free descriptor is this stream's. It is opened in the mode in which it is not used.
    if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream) return;
  }
}

void IgnoreSignalsOfWriting() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool IsOutputClosed() {
  pollfd output = {STDOUT_FILENO, 0, 0};
  return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

int EndAsByClosedPipe() {
  std::signal(SIGPIPE, SIG_DFL);
  std::raise(SIGPIPE);
  constexpr int kOfShells = 128;
  return kOfShells + SIGPIPE;
}

std::string SyncToDisk(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool synced = file >= 0 && fsync(file) == 0;
  const std::string wrong = synced ? "" : std::system_category().message(errno);
  if (file >= 0) close(file);
  return wrong;
}

void KeepFreedMemory() {
#ifdef __GLIBC__
  constexpr int kLargestFromHeap = 32 << 20;  // the largest value the C library accepts
  constexpr int kKept = 1 << 30;
  mallopt(M_MMAP_THRESHOLD, kLargestFromHeap);
  mallopt(M_TRIM_THRESHOLD, kKept);
#endif
}

void ReturnFreedMemory() {
#ifdef __GLIBC__
  constexpr int kOfOwnPages = 128 << 10;
  constexpr int kKept = 512 << 10;
  constexpr int kArenas = 2;
  mallopt(M_MMAP_THRESHOLD, kOfOwnPages);
  mallopt(M_TRIM_THRESHOLD, kKept);
  mallopt(M_ARENA_MAX, kArenas);
#endif
}

void PreferHugePages(void* memory, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  // If refused, only page faults are lost.
  static_cast<void>(madvise(memory, bytes, MADV_HUGEPAGE));
#else
  static_cast<void>(memory), static_cast<void>(bytes);
#endif
}

}  // namespace orsolva_host
