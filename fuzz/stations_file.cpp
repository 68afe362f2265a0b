// Any bytes as the file of stations of `orsolva live`.
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/require.h"
#include "host/cli/config_file.h"
#include "host/cli/live_config.h"
#include "host/judging/run_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace fs = std::filesystem;
  using namespace orsolva_host;
  static const std::string path =
      (fs::temp_directory_path() / ("orsolva-stations-" + std::to_string(getpid()))).string();
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (text.find("password_file") != std::string::npos) return 0;  // it could name any file of this machine
  std::ofstream(path, std::ios::binary) << text;
  try {
    live::ServiceSettings service;
    live::AddStations(path, {}, service);
    for (const live::StationSettings& station : service.stations)
      orsolva_fuzz::Require(!station.source.empty(), "every station has a source");
    const std::string wrong = live::Complete(service);
    for (const live::StationSettings& station : service.stations)
      orsolva_fuzz::Require(!wrong.empty() || !station.name.empty(), "every station has a name");
  } catch (const ConfigError& error) {
    orsolva_fuzz::Require(std::string(error.what()).rfind(path + ":", 0) == 0,
                          "an error begins with file and line");
  }
  return 0;
}
