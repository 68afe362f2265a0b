#include "interface/print.h"

#include <cstdarg>
#include <cstdio>

namespace orsolva {

void SetLogFile(const char*) {}
void SetLogSwitch(int) {}
void WriteLog() {}
void CloseLog() {}

void Print(const char* format, ...) {
  WriteLog();
  std::va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
}

}  // namespace orsolva
