// The trace sink: where worded diagnostics go.
//
// By default there is none, a trace call is then one test of a pointer and its arguments are not formatted.
// A test (or a developer) sets a sink for the current thread and gets every text.
#ifndef ORSOLVA_TOOLKIT_TRACE_H
#define ORSOLVA_TOOLKIT_TRACE_H

#include <cstdio>
#include <string>

namespace gnssqctoolkit {

/// Receives formatted diagnostics.
class TraceSink {
 public:
  virtual ~TraceSink() = default;
  /// @param level  severity as given by the caller (2 = warning)
  /// @param text   the formatted text
  virtual void Write(int level, const std::string& text) = 0;
};

/// The sink of this thread, null by default. The caller keeps ownership.
TraceSink*& CurrentTraceSink();

/// True when there is a sink; guards the preparation of costly arguments.
inline bool TraceEnabled() { return CurrentTraceSink() != nullptr; }

/// Formats printf-style and hands the text to the sink of this thread; does nothing without one.
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
void Trace(int level, const char* format, ...);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_TRACE_H
