// The events of an analysis as a table: CSV, or one JSON object per line. docs/user/events.md describes the
// columns.
#ifndef ORSOLVA_REPORT_EVENT_TABLE_H
#define ORSOLVA_REPORT_EVENT_TABLE_H

#include <functional>
#include <string>
#include <string_view>

#include "host/report/event_sink.h"
#include "host/report/report.h"
#include "host/report/table_form.h"

namespace orsolva_host {

/// The first line of the table as CSV, with its line feed.
extern const char* const kEventCsvHeading;

/// One event as a line. Absent values are empty in CSV and null in JSON.
std::string EventLine(const analysis::Event& event, TableForm form);

/// The events of a report as one JSON object, "events" in their order and "further" how many are left out.
std::string EventsJson(const AnalysisReport& report);

class EventTable : public EventSink {
 public:
  /// @param write  takes pieces of the table in order
  EventTable(TableForm form, std::function<void(std::string_view)> write);

  void Add(const analysis::Event& event) override { write_(EventLine(event, form_)); }

 private:
  TableForm form_;
  std::function<void(std::string_view)> write_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_EVENT_TABLE_H
