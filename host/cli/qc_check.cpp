#include "host/cli/qc_check.h"

#include <fmt/format.h>
#include <unistd.h>

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

#include "host/cli/detail_outputs.h"
#include "host/cli/exit_codes.h"
#include "host/cli/interrupt.h"
#include "host/cli/job_pool.h"
#include "host/cli/output_plan.h"
#include "host/cli/progress_bar.h"
#include "host/cli/qc_inputs.h"
#include "host/cli/qc_run.h"
#include "host/report/network.h"
#include "host/report/profile.h"
#include "host/output/byte_sink.h"

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
  const bool wanted = isatty(STDOUT_FILENO) == 1 && (no_color == nullptr || *no_color == '\0') &&
                      (terminal == nullptr || std::string(terminal) != "dumb");
  TextStyle style;
  style.colour = request.color == "always" || (request.color == "auto" && wanted);
  const std::size_t columns = TerminalWidth(STDOUT_FILENO);
  if (columns > 0) style.width = std::min(kTextWidth, columns);
  if (request.width > 0) style.width = request.width;
  return style;
}

class Check {
 public:
  Check(const QcRequest& request, QcInputs inputs)
      : request_(request),
        inputs_(std::move(inputs)),
        many_(inputs_.observations.size() > 1),
        stems_(OutputStems(inputs_.observations)),
        style_(StyleOf(request)),
        results_(inputs_.observations.size()),
        bar_(!request.quiet) {
    if (!request.profile.empty()) profile_ = LoadProfile(request.profile);
    OpenStreams();
    if (!request_.output.empty()) std::filesystem::create_directories(request_.output);
  }

  int Do();

 private:
  void OpenStreams();
  QcSettings SettingsOf(std::size_t file) const;
  void Judge(std::size_t file);
  void WriteFolder(std::size_t file, const Report& report) const;
  void Await(JobPool& pool, std::size_t file);
  void ShowProgress(JobPool& pool);
  void Tell(std::size_t file);
  void Take(std::size_t file);
  void Finish();
  int ExitCodeOf() const;

  const QcRequest& request_;
  QcInputs inputs_;
  bool many_;
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
  settings.navigation_files = inputs_.navigation;
  const std::string base = request_.output + "/" + stems_[file];
  if (!request_.output.empty() && Lists(request_.formats, "detail"))
    settings.detail_file = base + ".detail.csv";
  if (!request_.output.empty() && Lists(request_.formats, "html")) settings.html_file = base + ".html";
  return settings;
}

void Check::WriteFolder(std::size_t file, const Report& report) const {
  if (request_.output.empty()) return;
  for (const auto& [name, format] : kFormats) {
    if (!Lists(request_.formats, name)) continue;
    WriteWholeFile(request_.output + "/" + stems_[file] + EndingOf(format),
                   WriteAs(format, report, TextStyle()));
  }
}

/// Called from any thread; must not throw.
void Check::Judge(std::size_t file) {
  FileResult& result = results_[file];
  Diagnostics diagnostics;
  try {
    const QcSettings settings = SettingsOf(file);
    DetailOutputs outputs(settings.detail_file, settings.html_file);
    Report report = RunQc(settings, diagnostics, outputs.Sink(), &monitor_);
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
    result.error = WithUnrepaired(error.what(), diagnostics);
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
  while (!pool.Wait(file, kLook)) {
    if (InterruptExitCode() != 0) {
      monitor_.stop.store(true);
      pool.Stop();
      return;
    }
    if (bar_.Visible()) ShowProgress(pool);
  }
}

/// The lines on standard error about a finished file.
void Check::Tell(std::size_t file) {
  const FileResult& result = results_[file];
  if (!result.error.empty()) std::fprintf(stderr, "orsolva: %s\n", result.error.c_str());
  if (request_.quiet) return;
  if (many_ || request_.verbose) {
    const char* state = result.report ? "judged" : "failed";
    const std::string grade =
        result.report && result.report->verdict ? ", " + result.report->verdict->grade : "";
    std::fprintf(stderr, "[%zu/%zu] %s: %s%s\n", file + 1, inputs_.observations.size(),
                 inputs_.observations[file].c_str(), state, grade.c_str());
  }
  if (!request_.verbose || !result.report) return;
  for (const std::string& navigation : result.report->run.navigation_files) {
    std::fprintf(stderr, "  navigation: %s\n", navigation.c_str());
  }
  for (const ReportNotice& n : result.report->notices) {
    std::fprintf(stderr, "  notice: %s:%ld: %s (%ld)\n", n.file.c_str(), n.line, n.text.c_str(), n.count);
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
    failed_ = failed_ || !result.error.empty();
    if (result.report->verdict) verdict_failed_ = verdict_failed_ || !result.report->verdict->passed;
  } else {
    for (const auto& stream : streams_) stream->AddFailure(inputs_.observations[file], result.error);
    rows_.push_back(FailedRow(inputs_.observations[file], result.error));
    failed_ = true;
  }
  result.report.reset();
}

void Check::Finish() {
  bar_.Clear();
  for (const auto& stream : streams_) stream->Finish();
  SortWorstFirst(rows_);
  if (!request_.network.empty()) {
    const bool csv = std::filesystem::path(request_.network).extension() == ".csv";
    const std::string text = csv ? NetworkCsv(rows_) : NetworkText(rows_, TextStyle());
    request_.network == "-" ? WriteOut(text) : WriteWholeFile(request_.network, text);
  }
  if (!many_) return;
  if (!request_.output.empty()) {
    WriteWholeFile(request_.output + "/network.txt", NetworkText(rows_, TextStyle()));
    WriteWholeFile(request_.output + "/network.csv", NetworkCsv(rows_));
  }
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
  NoteInterrupts();
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
  }
  bar_.Clear();
  if (InterruptExitCode() != 0) return ExitCodeOf();
  Finish();
  return ExitCodeOf();
}

}  // namespace

std::string ComplaintAbout(const QcRequest& request, const QcInputs& inputs) {
  const auto from_input = std::count(inputs.observations.begin(), inputs.observations.end(), "-") +
                          std::count(inputs.navigation.begin(), inputs.navigation.end(), "-");
  if (from_input > 1) {
    return "standard input can be read once only: give - for the observations or for one navigation file, "
           "and "
           "name the other files";
  }
  int on_output = 0;
  for (const std::string* path : {&request.text, &request.json, &request.csv, &request.sum}) {
    on_output += *path == "-" ? 1 : 0;
  }
  if (on_output > 1)
    return "only one of --text, --json, --csv and --sum can go to standard output; give the others files";
  if (inputs.observations.size() > 1 &&
      !(request.settings.detail_file.empty() && request.settings.html_file.empty())) {
    return "--detail and --html take one observation file; for many use --output FOLDER --formats "
           "html,detail";
  }
  return {};
}

int CheckFiles(const QcRequest& request) {
  QcInputs inputs = InputsOf(request.paths, request.navigation);
  if (inputs.observations.empty()) {
    throw RunError(
        "no observation file among the arguments, only navigation files: name what is to be judged.");
  }
  const std::string complaint = ComplaintAbout(request, inputs);
  if (!complaint.empty()) {
    std::fprintf(stderr, "orsolva: %s\n", complaint.c_str());
    return kWrongUsage;
  }
  return Check(request, std::move(inputs)).Do();
}

}  // namespace orsolva_host
