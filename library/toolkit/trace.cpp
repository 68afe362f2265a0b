#include "toolkit/trace.h"

#include <cstdarg>

namespace gnssqctoolkit {

TraceSink*& CurrentTraceSink() {
  thread_local TraceSink* sink = nullptr;
  return sink;
}

void Trace(int level, const char* format, ...) {
  TraceSink* sink = CurrentTraceSink();
  if (sink == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list counted;
  va_copy(counted, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, counted);
  va_end(counted);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  va_end(arguments);
  sink->Write(level, text);
}

}  // namespace gnssqctoolkit
