// A trace sink that records every message, installed for its own lifetime.
#ifndef ORSOLVA_TESTS_SUPPORT_TRACE_RECORDER_H
#define ORSOLVA_TESTS_SUPPORT_TRACE_RECORDER_H

#include <string>
#include <vector>

#include "toolkit/trace.h"

namespace orsolva_test {

class TraceRecorder : public gnssqctoolkit::TraceSink {
 public:
  TraceRecorder() : before_(gnssqctoolkit::CurrentTraceSink()) { gnssqctoolkit::CurrentTraceSink() = this; }
  ~TraceRecorder() override { gnssqctoolkit::CurrentTraceSink() = before_; }
  TraceRecorder(const TraceRecorder&) = delete;
  TraceRecorder& operator=(const TraceRecorder&) = delete;

  void Write(int level, const std::string& text) override {
    Levels.push_back(level);
    Texts.push_back(text);
  }
  bool Holds(const std::string& text) const {
    for (const std::string& one : Texts) {
      if (one == text) return true;
    }
    return false;
  }

  std::vector<int> Levels;
  std::vector<std::string> Texts;

 private:
  gnssqctoolkit::TraceSink* before_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_TRACE_RECORDER_H
