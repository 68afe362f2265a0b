// The Windows headers come first and are confined to this file: their macros cannot be undone.
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/platform/become_program.h"
#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

HANDLE HandleOf(Stream stream) {
  return GetStdHandle(stream == Stream::kOutput ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

/// The folder a path begins with, and the separator; empty when it is a bare name.
std::string FolderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\:");
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

}  // namespace

bool IsTerminal(Stream stream) {
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

std::size_t TerminalWidth(Stream stream) {
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  if (GetConsoleScreenBufferInfo(HandleOf(stream), &info) == 0) return 0;
  const int columns = info.srWindow.Right - info.srWindow.Left + 1;
  return columns > 0 ? static_cast<std::size_t>(columns) : 0;
}

std::vector<std::string> FilesMatching(const std::string& pattern) {
  std::vector<std::string> files;
  WIN32_FIND_DATAA entry = {};
  const HANDLE search = FindFirstFileA(pattern.c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return files;
  const std::string folder = FolderOf(pattern);
  do {
    const std::string name = entry.cFileName;
    if (name != "." && name != "..") files.push_back(folder + name);
  } while (FindNextFileA(search, &entry) != 0);
  FindClose(search);
  std::sort(files.begin(), files.end());
  return files;
}

std::string SettingsFolder() {
  const char* folder = std::getenv("APPDATA");
  return folder != nullptr ? folder : "";
}

std::vector<std::string> ProgramFolders() {
  char path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  const std::string program(path, length < MAX_PATH ? length : 0);
  const std::size_t slash = program.find_last_of('\\');
  if (slash == std::string::npos) return {};
  return {program.substr(0, slash)};
}

int RunProgram(const std::vector<std::string>& words, const std::string& input) {
  std::string line = "\"";
  for (const std::string& word : words) line += '"' + word + "\" ";
  line += '"';
  std::FILE* pipe = _popen(line.c_str(), "wb");
  if (pipe == nullptr) return 127;
  std::fwrite(input.data(), 1, input.size(), pipe);
  return _pclose(pipe);
}

int BecomeProgram(const std::vector<std::string>& words) {
  std::string line = "\"";
  for (const std::string& word : words) line += '"' + word + "\" ";
  return std::system((line + '"').c_str());
}

void PrepareStreams() {
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  for (const Stream stream : {Stream::kOutput, Stream::kError}) {
    DWORD mode = 0;
    if (GetConsoleMode(HandleOf(stream), &mode) == 0) continue;
    SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    SetConsoleOutputCP(CP_UTF8);
  }
}

// Such writes fail on Windows anyway.
void IgnoreSignalsOfWriting() {}

bool IsOutputClosed() { return false; }

int EndAsByClosedPipe() { return 1; }

std::string SyncToDisk(const std::string& path) {
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  const bool synced = file != INVALID_HANDLE_VALUE && FlushFileBuffers(file) != 0;
  const std::string wrong = synced ? "" : "error " + std::to_string(GetLastError());
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  return wrong;
}

void KeepFreedMemory() {}

void ReturnFreedMemory() {}

void PreferHugePages(void*, std::size_t) {}

}  // namespace orsolva_host
