#include "host/cli/qc_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/cli/exit_codes.h"
#include "host/cli/qc_complaint.h"
#include "host/judging/detail_outputs.h"
#include "host/judging/job_pool.h"
#include "host/judging/output_plan.h"
#include "host/judging/qc_inputs.h"
#include "host/judging/qc_run.h"
#include "host/output/byte_sink.h"
#include "host/output/whole_file.h"
#include "host/platform/platform.h"
#include "host/report/network.h"
#include "host/report/network_html.h"
#include "host/report/profile.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/progress_bar.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kTextWidth = 80;
constexpr std::pair<const char*, Format> kFormats[] = {
    {"text", Format::kText}, {"json", Format::kJson}, {"csv", Format::kCsv}, {"sum", Format::kSum}};

bool Lists(const std::string& formats, const char* name) {
  return ("," + formats + ",").find(std::string(",") + name + ",") != std::string::npos;
}

/// What came of one file.
struct FileResult {
  std::optional<Report> report;
  std::string error;  ///< with the notices that explain it, line by line
  bool write_failed = false;
  bool stopped = false;
};

std::string WithUnrepaired(const std::string& what, const Diagnostics& diagnostics) {
  std::string text = what;
  for (const Notice& n : diagnostics.Notices()) {
    if (!n.recovered) text += fmt::format("\n  {}:{}: {} ({})", n.file, n.line, n.text, n.count);
  }
  return text;
}

TextStyle StyleOf(const QcRequest& request) {
  const char* no_color = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool wanted = IsTerminal(Stream::kOutput) && (no_color == nullptr || *no_color == '\0') &&
                      (terminal == nullptr || std::string(terminal) != "dumb");
  TextStyle style;
  style.colour = request.color == "always" || (request.color == "auto" && wanted);
  const std::size_t columns = TerminalWidth(Stream::kOutput);
  if (columns > 0) style.width = std::min(kTextWidth, columns);
  if (request.width > 0) style.width = request.width;
  return style;
}

class Check {
 public:
  Check(const QcRequest& request, QcInputs inputs)
      : request_(request),
        inputs_(std::move(inputs)),
        navigation_(inputs_.navigation, request.settings.limits),
        many_(inputs_.observations.size() > 1),
        pages_in_folder_(!request.output.empty() &&
                         (Lists(request.formats, "html") || (many_ && !request.html.empty()))),
        stems_(OutputStems(inputs_.observations)),
        style_(StyleOf(request)),
        results_(inputs_.observations.size()),
        bar_(!request.quiet) {
    if (!request.profile.empty()) profile_ = LoadProfile(request.profile);
    if (!request_.output.empty()) MakeFolder(request_.output);
    OpenStreams();
  }

  int Do();

 private:
  void OpenStreams();
  QcSettings SettingsOf(std::size_t file) const;
  std::vector<std::string> TablesOf(std::size_t file) const;
  std::vector<std::string> PagesOf(std::size_t file) const;
  std::string InFolder(std::size_t file, const char* ending) const {
    return request_.output + "/" + stems_[file] + ending;
  }
  void Judge(std::size_t file);
  void WriteFolder(std::size_t file, const Report& report) const;
  void Await(JobPool& pool, std::size_t file);
  void ShowProgress(JobPool& pool);
  void LeaveIfStuck(JobPool& pool);
  void Tell(std::size_t file);
  void Take(std::size_t file);
  std::string Index(const std::string& path) const;
  std::string NetworkAs(const std::string& path) const;
  void WriteNetwork() const;
  void Finish();
  int ExitCodeOf() const;

  const QcRequest& request_;
  QcInputs inputs_;
  SharedNavigation navigation_;
  bool many_;
  bool pages_in_folder_;  ///< every file gets a page there
  std::vector<std::string> stems_;
  TextStyle style_;
  std::optional<Profile> profile_;
  std::vector<std::unique_ptr<ReportStream>> streams_;
  std::vector<FileResult> results_;
  std::vector<NetworkRow> rows_;
  RunMonitor monitor_;
  ProgressBar bar_;
  std::uint64_t bytes_of_ = 0;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  bool failed_ = false;
  bool verdict_failed_ = false;
};

void Check::OpenStreams() {
  const auto open = [this](Format format, const std::string& path) {
    if (!path.empty()) streams_.push_back(std::make_unique<ReportStream>(format, path, many_, style_));
  };
  open(Format::kText, request_.text);
  open(Format::kJson, request_.json);
  open(Format::kCsv, request_.csv);
  open(Format::kSum, request_.sum);
  const bool default_text = streams_.empty() && request_.output.empty() && !request_.quiet;
  if (default_text) open(Format::kText, "-");
}

QcSettings Check::SettingsOf(std::size_t file) const {
  QcSettings settings = request_.settings;
  settings.observation_file = inputs_.observations[file];
  return settings;
}

std::vector<std::string> Check::TablesOf(std::size_t file) const {
  std::vector<std::string> tables;
  const bool in_folder = !request_.output.empty() && Lists(request_.formats, "detail");
  if (in_folder) tables.push_back(InFolder(file, ".detail.csv"));
  if (!request_.detail.empty()) tables.push_back(request_.detail);
  return tables;
}

/// Of many files --html is the index of their pages.
std::vector<std::string> Check::PagesOf(std::size_t file) const {
  std::vector<std::string> pages;
  if (pages_in_folder_) pages.push_back(InFolder(file, ".html"));
  if (!many_ && !request_.html.empty()) pages.push_back(request_.html);
  return pages;
}

void Check::WriteFolder(std::size_t file, const Report& report) const {
  if (request_.output.empty()) return;
  for (const auto& [name, format] : kFormats) {
    if (!Lists(request_.formats, name)) continue;
    WriteWholeFile(InFolder(file, EndingOf(format)), WriteAs(format, report, TextStyle()));
  }
}

/// Called from any thread.
void Check::Judge(std::size_t file) {
  FileResult& result = results_[file];
  Diagnostics diagnostics;
  try {
    DetailOutputs outputs(TablesOf(file), PagesOf(file));
    Report report = RunQc(SettingsOf(file), navigation_, diagnostics, outputs.Sink(), &monitor_);
    if (profile_) report.verdict = orsolva_host::Judge(report, *profile_);
    outputs.Finish(report);
    WriteFolder(file, report);
    if (!report.read_error.empty())
      result.error = report.read_error + " The report covers what stands before.";
    result.report = std::move(report);
  } catch (const Stopped&) {
    result.stopped = true;
  } catch (const WriteError& error) {
    result.error = error.what();
    result.write_failed = true;
  } catch (const std::exception& error) {
    result.error = WithUnrepaired(TextOf(error), diagnostics);
  }
}

void Check::ShowProgress(JobPool& pool) {
  ProgressState state;
  state.files = inputs_.observations.size();
  state.files_done = pool.Done();
  state.epochs = monitor_.epochs.load();
  state.bytes = monitor_.bytes.load();
  state.bytes_of = bytes_of_;
  state.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
  bar_.Show(state);
}

/// Waits for a file's end, and shows how far the run is meanwhile.
void Check::Await(JobPool& pool, std::size_t file) {
  constexpr std::chrono::milliseconds kLook(100);
  try {
    while (!pool.Wait(file, kLook)) {
      if (InterruptExitCode() != 0) {
        monitor_.stop.store(true);
        pool.Stop();
        return;
      }
      if (bar_.Visible()) ShowProgress(pool);
    }
  } catch (const std::exception& error) {
    // Judge() itself failed, as it may without memory.
    results_[file].report.reset();
    results_[file].error = TextOf(error);
  }
}

/// After an interrupt a run may wait for input that never comes, such as a pipe nobody writes to. Then the
/// program ends without it.
void Check::LeaveIfStuck(JobPool& pool) {
  constexpr std::chrono::milliseconds kPatience(2000);
  if (InterruptExitCode() == 0 || pool.WaitForEnd(kPatience)) return;
  bar_.Clear();
  RemoveUnfinishedFiles();
  std::_Exit(InterruptExitCode());
}

/// The lines on standard error about a finished file.
void Check::Tell(std::size_t file) {
  const FileResult& result = results_[file];
  if (!result.error.empty()) PrintError(result.error);
  if (request_.quiet) return;
  if (many_ || request_.verbose) {
    const char* state = result.report ? "judged" : "failed";
    const std::string grade =
        result.report && result.report->verdict ? ", " + result.report->verdict->grade : "";
    std::fprintf(stderr, "[%zu/%zu] %s: %s%s\n", file + 1, inputs_.observations.size(),
                 Printable(inputs_.observations[file]).c_str(), state, Printable(grade).c_str());
  }
  if (!request_.verbose || !result.report) return;
  for (const std::string& navigation : result.report->run.navigation_files) {
    std::fprintf(stderr, "  navigation: %s\n", Printable(navigation).c_str());
  }
  for (const ReportNotice& n : result.report->notices) {
    std::fprintf(stderr, "  notice: %s:%ld: %s (%ld)\n", Printable(n.file).c_str(), n.line, n.text.c_str(),
                 n.count);
  }
}

/// Writes a finished file's report and keeps only its row.
void Check::Take(std::size_t file) {
  FileResult& result = results_[file];
  if (result.stopped) return;
  bar_.Clear();
  Tell(file);
  if (result.report) {
    for (const auto& stream : streams_) stream->Add(*result.report);
    rows_.push_back(RowOf(*result.report));
    rows_.back().error = result.error;
    if (const std::vector<std::string> pages = PagesOf(file); !pages.empty())
      rows_.back().page = pages.front();
    failed_ = failed_ || !result.error.empty();
    if (result.report->verdict) verdict_failed_ = verdict_failed_ || !result.report->verdict->passed;
  } else {
    for (const auto& stream : streams_) stream->AddFailure(inputs_.observations[file], result.error);
    rows_.push_back(FailedRow(inputs_.observations[file], result.error));
    failed_ = true;
  }
  result.report.reset();
}

std::string Check::Index(const std::string& path) const {
  return NetworkHtml(rows_, {LibraryVersion(), profile_ ? profile_->title : std::string()}, path);
}

/// The table in the format of a file's ending.
std::string Check::NetworkAs(const std::string& path) const {
  const std::string ending = std::filesystem::path(path).extension().string();
  if (ending == ".html") return Index(path);
  return ending == ".csv" ? NetworkCsv(rows_) : NetworkText(rows_, TextStyle());
}

void Check::WriteNetwork() const {
  const std::string& asked = request_.network;
  if (!asked.empty()) asked == "-" ? WriteOut(NetworkAs(asked)) : WriteWholeFile(asked, NetworkAs(asked));
  if (!many_ || request_.output.empty()) return;
  for (const char* name : {"/network.txt", "/network.csv"}) {
    WriteWholeFile(request_.output + name, NetworkAs(name));
  }
  if (!pages_in_folder_) return;
  const std::string& named = request_.html;
  const std::string index = named.empty() ? request_.output + "/index.html" : named;
  WriteWholeFile(index, Index(index));
}

void Check::Finish() {
  bar_.Clear();
  for (const auto& stream : streams_) stream->Finish();
  SortWorstFirst(rows_);
  WriteNetwork();
  if (!many_) return;
  const bool other_on_output = std::any_of(streams_.begin(), streams_.end(), [](const auto& stream) {
    return stream->IsStandardOutput() && stream->Kind() != Format::kText;
  });
  if (request_.quiet || other_on_output || request_.network == "-") return;
  WriteOut((streams_.empty() ? "" : "\n") + NetworkText(rows_, style_));
}

int Check::ExitCodeOf() const {
  if (InterruptExitCode() != 0) return InterruptExitCode();
  if (failed_) return kRunFailed;
  return verdict_failed_ ? kVerdictFailed : kGood;
}

int Check::Do() {
  if (bar_.Visible()) {
    monitor_.count_bytes = true;
    for (const std::string& file : inputs_.observations) {
      std::error_code ignored;
      const auto size = std::filesystem::file_size(file, ignored);
      if (!ignored) bytes_of_ += size;
    }
  }
  {
    const std::size_t count = inputs_.observations.size();
    JobPool pool(count, ThreadsFor(request_.jobs, count), [this](std::size_t file) { Judge(file); });
    try {
      for (std::size_t file = 0; file < count && InterruptExitCode() == 0; ++file) {
        Await(pool, file);
        if (InterruptExitCode() == 0) Take(file);
      }
    } catch (...) {
      // Nobody takes the reports any more.
      monitor_.stop.store(true);
      throw;
    }
    LeaveIfStuck(pool);
  }
  bar_.Clear();
  if (InterruptExitCode() != 0) return ExitCodeOf();
  Finish();
  return ExitCodeOf();
}

}  // namespace

int CheckFiles(const QcRequest& request) {
  QcInputs inputs = InputsOf(request.paths, request.navigation);
  if (inputs.observations.empty()) {
    throw RunError(
        "no observation file among the arguments, only navigation files: name what is to be judged.");
  }
  const std::string complaint = ComplaintAbout(request, inputs);
  if (!complaint.empty()) {
    PrintError(complaint);
    return kWrongUsage;
  }
  NoteInterrupts();
  return Check(request, std::move(inputs)).Do();
}

}  // namespace orsolva_host
