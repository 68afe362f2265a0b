#include "host/cli/python_interpreter.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/platform/platform.h"

namespace orsolva_host {

std::string PythonInterpreter() {
  namespace fs = std::filesystem;
  const char* named = std::getenv("ORSOLVA_PYTHON");
  if (named != nullptr && *named != '\0') return named;
  std::error_code ignored;
  for (const std::string& folder : ProgramFolders()) {
    for (const char* name : {"python3", "python3.exe", "python.exe"}) {
      const fs::path candidate = fs::path(folder) / name;
      if (fs::exists(candidate, ignored)) return candidate.string();
    }
  }
  return "python3";
}

}  // namespace orsolva_host
