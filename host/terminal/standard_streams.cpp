#include "host/terminal/standard_streams.h"

#include <cstdio>
#include <iostream>
#include <new>
#include <system_error>

namespace orsolva_host {

bool FlushStandardOutput() {
  std::cout.flush();
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.good();
}

void PrintError(const std::string& text) {
  std::string printed = "orsolva: " + text;
  for (char& c : printed) {
    if ((static_cast<unsigned char>(c) < ' ' && c != '\n') || c == '\x7f') c = '?';
  }
  std::fprintf(stderr, "%s\n", printed.c_str());
}

std::string TextOf(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
    return "there is not enough memory. Judge fewer files at the same time (--jobs 1), or shorter ones.";
  }
  if (dynamic_cast<const std::system_error*>(&error) != nullptr) {
    return std::string("the system refused what the run needs: ") + error.what() + ".";
  }
  return error.what();
}

}  // namespace orsolva_host
