#include "host/live/alarm_command.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string_view>
#include <thread>
#include <vector>

extern char** environ;

namespace orsolva_host::live {
namespace {

constexpr std::chrono::milliseconds kLook{20};

/// The environment of this program without what may hold a secret of it, and with the event.
std::vector<std::string> EnvironmentOf(const LiveEvent& event, const std::set<std::string>& hidden) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    const bool is_hidden = hidden.count(std::string(text.substr(0, text.find('=')))) != 0;
    if (!is_hidden && text.substr(0, 8) != "ORSOLVA_") variables.emplace_back(text);
  }
  const auto add = [&variables](const char* name, std::string value) {
    // A zero byte would end the value early.
    value.erase(std::remove(value.begin(), value.end(), '\0'), value.end());
    variables.push_back(std::string("ORSOLVA_") + name + "=" + value);
  };
  add("STATION", event.station);
  add("ALARM", event.kind);
  add("SUBJECT", event.subject);
  add("STATE", NameOf(event.state));
  add("SEVERITY", NameOf(event.severity));
  add("SEEN", event.seen);
  add("ADVICE", event.advice);
  add("EVENT", event.json);
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// In a process group of its own, so that the interrupt of a terminal does not reach it and its children end
/// with it.
bool Spawn(const std::string& command, std::vector<std::string> variables, pid_t& child) {
  std::vector<std::string> words = {"/bin/sh", "-c", command};
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  posix_spawnattr_setpgroup(&attributes, 0);
  const int failed =
      posix_spawn(&child, "/bin/sh", &files, &attributes, Pointers(words).data(), Pointers(variables).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return failed == 0;
}

}  // namespace

int RunAlarmCommand(const std::string& command, const LiveEvent& event, std::chrono::milliseconds longest,
                    const std::set<std::string>& hidden) {
  pid_t child = 0;
  if (!Spawn(command, EnvironmentOf(event, hidden), child)) return -1;
  const auto until = std::chrono::steady_clock::now() + longest;
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= until) {
      kill(-child, SIGKILL);
      waitpid(child, &status, 0);
      return -1;
    }
    std::this_thread::sleep_for(kLook);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace orsolva_host::live
