// Scenarios that come with the program.
#ifndef ORSOLVA_SIMULATOR_PRESETS_H
#define ORSOLVA_SIMULATOR_PRESETS_H

#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host {

struct Preset {
  const char* name;
  const char* about;
  const char* json;  ///< as in a scenario file
};

const std::vector<Preset>& Presets();
/// @return nullptr when there is none of that name
const Preset* FindPreset(std::string_view name);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_PRESETS_H
