#include "python/src/report_binding.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/unique_ptr.h>
#include <nanobind/stl/vector.h>

#include <string>
#include <utility>
#include <vector>

#include "host/judging/joined_files.h"
#include "host/report/csv_writer.h"
#include "host/report/figures.h"
#include "host/report/html_writer.h"
#include "host/report/json_writer.h"
#include "host/report/sum_writer.h"
#include "host/report/text_writer.h"
#include "python/src/errors.h"
#include "python/src/event_tables.h"
#include "python/src/judging_calls.h"
#include "python/src/many_files.h"
#include "python/src/navigation_binding.h"
#include "python/src/report_records.h"
#include "python/src/report_tables.h"
#include "python/src/settings.h"
#include "python/src/table_binding.h"
#include "python/src/waiting.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

using ReportPtr = std::shared_ptr<FinishedReport>;

/// The report as the command has it with or without --sats.
Report WithSatellites(const Report& report, bool satellites) {
  Report copy = report;
  copy.show_satellites = copy.show_satellite_signals = satellites;
  return copy;
}

std::string Json(const FinishedReport& finished, bool satellites) {
  const nb::gil_scoped_release release;
  return WriteJson(WithSatellites(finished.report, satellites));
}

std::string Text(const FinishedReport& finished, std::size_t width, bool satellites) {
  constexpr std::size_t kNarrowest = 40;
  if (width < kNarrowest) throw ArgumentError("width: expected at least 40 columns");
  const nb::gil_scoped_release release;
  return WriteText(WithSatellites(finished.report, satellites), {width, false});
}

std::string Html(FinishedReport& finished) {
  if (!finished.page) {
    throw RunError("the report was made with page=False, so that it has no data for its page.");
  }
  const nb::gil_scoped_release release;
  const std::lock_guard<std::mutex> lock(finished.page_mutex);
  return WriteHtml(finished.report, *finished.page, finished.page_series);
}

std::shared_ptr<Table> TableOf(const FinishedReport& finished, const std::string& name) {
  const nb::gil_scoped_release release;
  if (name == "arcs") {
    return finished.page ? std::make_shared<Table>(ArcTable(*finished.page)) : nullptr;
  }
  if (name == "events" && finished.all_events) {
    return std::make_shared<Table>(EventTable(*finished.all_events));
  }
  for (const ReportTable& row : ReportTables()) {
    if (name == row.name) return std::make_shared<Table>(row.make(finished.report));
  }
  throw ArgumentError("a report has no table '" + name + "'");
}

/// The files in the order of their beginnings.
JoinedFiles SpanOf(const std::vector<std::string>& files) {
  if (files.size() == 1) return files;
  const std::vector<JoinedFiles> spans = SpansOf(files, JoinRule::kAll);
  if (spans.size() == 1) return spans.front();
  throw ArgumentError("observations: found " + std::to_string(spans.size()) +
                      " stations or intervals, expected consecutive files of one; qc_many judges many");
}

ReportPtr Qc(const std::vector<std::string>& files, const Navigation& navigation, const nb::dict& arguments,
             const nb::dict& kept, const nb::object& progress) {
  const JudgingSettings settings = SettingsFrom(arguments);
  const Keep keep = KeepFrom(kept);
  ReportPtr report;
  RunMonitor monitor;
  RunInterruptibly([&] { report = JudgedFiles(SpanOf(files), settings, *navigation.shared, keep, monitor); },
                   monitor, progress);
  return report;
}

std::string Explain(const std::string& name) {
  if (std::string text = ExplanationOf(name); !text.empty()) return text;
  std::string near;
  for (const std::string& key : FiguresLike(name)) near += (near.empty() ? "; did you mean " : ", ") + key;
  throw ArgumentError("'" + name + "' is not a figure" + near);
}

std::vector<std::string> FigureKeys() {
  std::vector<std::string> keys;
  for (const Figure& figure : FigureTexts()) keys.push_back(figure.key);
  return keys;
}

}  // namespace

void BindReports(nb::module_& module) {
  BindManyFiles(module);
  nb::class_<FinishedReport>(module, "ReportData", "A report; orsolva.Report is the way to it.")
      .def("json", Json, nb::arg("satellites"))
      .def("text", Text, nb::arg("width"), nb::arg("satellites"))
      .def("csv", [](const FinishedReport& finished) { return CsvHeading() + WriteCsvRows(finished.report); })
      .def("sum_lines", [](const FinishedReport& finished) { return WriteSum(finished.report); })
      .def("html", Html)
      .def("table", TableOf, nb::arg("name"))
      .def("detail", [](const FinishedReport& finished) { return finished.detail; })
      .def("series", [](const FinishedReport& finished) { return finished.series; })
      .def("stream", [](const FinishedReport& finished) { return StreamRecord(finished.report.run.stream); })
      .def("comparison", [](const FinishedReport& finished) { return ComparisonRecord(finished.report); })
      .def("run", [](const FinishedReport& finished) { return RunRecord(finished.report); })
      .def("headline", [](const FinishedReport& finished) { return HeadlineRecord(finished.report); })
      .def("analysis", [](const FinishedReport& finished) { return AnalysisRecord(finished.report); })
      .def("library_headline",
           [](const FinishedReport& finished) { return LibraryHeadlineRecord(finished.report); })
      .def("library_run", [](const FinishedReport& finished) { return LibraryRunRecord(finished.report); })
      .def("library_total",
           [](const FinishedReport& finished) { return LibraryTotalRecord(finished.report); })
      .def("verdict", [](const FinishedReport& finished) { return VerdictRecord(finished.report); })
      .def("profile", [](const FinishedReport& finished) { return ProfileRecord(finished.report); })
      .def("findings", [](const FinishedReport& finished) { return FindingRecords(finished.report); })
      .def("read_error", [](const FinishedReport& finished) { return finished.report.read_error; })
      .def("lost_data", [](const FinishedReport& finished) {
        std::vector<std::string> texts;
        for (const ReportNotice& notice : finished.report.notices) {
          if (!notice.recovered)
            texts.push_back(NoticeText(notice.file, notice.line, notice.text, notice.count));
        }
        return texts;
      });
  module.def("qc", Qc, nb::arg("files"), nb::arg("navigation"), nb::arg("arguments"), nb::arg("kept"),
             nb::arg("progress").none());
  module.def("explain", Explain, nb::arg("figure"));
  module.def("figure_keys", FigureKeys);
  module.def("figure_members", FigureMembers,
             "(part, key, type, unit, title) of every figure of a report's records and tables");
}

}  // namespace orsolva_python
