// Records what goes to the trace sink of this thread while it lives.
#ifndef ORSOLVA_TESTS_UNIT_MEASURES_RECORDING_TRACE_H
#define ORSOLVA_TESTS_UNIT_MEASURES_RECORDING_TRACE_H

#include <string>
#include <utility>
#include <vector>

#include "toolkit/trace.h"

namespace orsolva_test {

class RecordingTrace : public gnssqctoolkit::TraceSink {
 public:
  RecordingTrace() : before_(gnssqctoolkit::CurrentTraceSink()) { gnssqctoolkit::CurrentTraceSink() = this; }
  RecordingTrace(const RecordingTrace&) = delete;
  RecordingTrace& operator=(const RecordingTrace&) = delete;
  ~RecordingTrace() override { gnssqctoolkit::CurrentTraceSink() = before_; }

  void Write(int level, const std::string& text) override { Lines.emplace_back(level, text); }

  std::vector<std::pair<int, std::string>> Lines;

 private:
  gnssqctoolkit::TraceSink* before_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_UNIT_MEASURES_RECORDING_TRACE_H
