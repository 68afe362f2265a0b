// Takes the events of an analysis as they are decided, by one thread at a time, which need not be that of the
// run's caller; none follows once the run has ended.
#ifndef ORSOLVA_REPORT_EVENT_SINK_H
#define ORSOLVA_REPORT_EVENT_SINK_H

#include "host/analysis/slips/event.h"

namespace orsolva_host {

class EventSink {
 public:
  virtual ~EventSink() = default;
  virtual void Add(const analysis::Event& event) = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_EVENT_SINK_H
