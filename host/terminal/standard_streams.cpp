#include "host/terminal/standard_streams.h"

#include <cstdio>
#include <iostream>

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

}  // namespace orsolva_host
