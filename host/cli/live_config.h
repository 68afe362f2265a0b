// Stations of `orsolva live` from a TOML file, and secrets from files and the environment.
#ifndef ORSOLVA_CLI_LIVE_CONFIG_H
#define ORSOLVA_CLI_LIVE_CONFIG_H

#include <string>

#include "host/live/live_service.h"

namespace orsolva_host::live {

/// A variable of the environment; empty when it is not there.
std::string EnvironmentText(const std::string& name);
/// The first line of a file. @throws RunError
std::string SecretFromFile(const std::string& path);

/// Adds the stations of a file, each with the defaults where it says nothing else:
///
///   listen = "127.0.0.1:9464"   events = "FILE"   on_alarm = "COMMAND"    of the service
///   [[station]]  source = "ntrip://host:2101/MOUNT" and name, nav, user, password_file, password_env,
///                certificates, position = [x, y, z], elevation, profile, and limits = { ... }
///
/// What the service has already, from the command line, stays. Unknown keys are refused.
/// @throws ConfigError with file and line
void AddStations(const std::string& path, const StationSettings& defaults, ServiceSettings& service);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_CLI_LIVE_CONFIG_H
