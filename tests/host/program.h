// Runs the built program as a user or a script does.
#ifndef ORSOLVA_TESTS_HOST_PROGRAM_H
#define ORSOLVA_TESTS_HOST_PROGRAM_H

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/host/folder.h"
#include "tests/host/shared_data.h"

namespace orsolva_test {

struct Answer {
  int code = -1;
  std::string out;
  std::string err;
};

/// @param input  file that standard input is read from
inline Answer Orsolva(const std::string& arguments, const std::string& input = "/dev/null") {
  const std::string base = TemporaryName("command");
  const std::string command =
      std::string(ORSOLVA_PROGRAM) + " " + arguments + " >" + base + ".out 2>" + base + ".err <" + input;
  const int status = std::system(command.c_str());
  Answer answer{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(base + ".out"),
                ReadText(base + ".err")};
  std::remove((base + ".out").c_str());
  std::remove((base + ".err").c_str());
  return answer;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_PROGRAM_H
