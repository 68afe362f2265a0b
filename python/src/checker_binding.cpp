#include "python/src/checker_binding.h"

#include <nanobind/ndarray.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/judging/run_error.h"
#include "host/rinex/observation_header.h"
#include "python/src/arrow_import.h"
#include "python/src/detail_batches.h"
#include "python/src/errors.h"
#include "python/src/judging_calls.h"
#include "python/src/navigation_binding.h"
#include "python/src/pushed_epochs.h"
#include "python/src/pushed_source.h"
#include "python/src/settings.h"
#include "python/src/waiting.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

constexpr char kClosed[] = "the checker has given its report or was closed: make another one.";

/// A run on a thread of its own, fed by calls. Calls from several threads wait for each other.
class Checker {
 public:
  Checker(const std::string& name, const Navigation& navigation, const nb::dict& arguments,
          const ObservationHeader* header, const nb::dict& kept)
      : settings_(SettingsFrom(arguments)),
        navigation_(navigation.shared),
        keep_(KeepFrom(kept)),
        batches_(keep_.detail_selection),
        source_(name, header != nullptr ? *header : ObservationHeader()) {}
  ~Checker() {
    const nb::gil_scoped_release release;
    Stop();
  }
  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;

  /// With Python's lock, which it gives up meanwhile. Ctrl-C ends the run: part of the rows may be missing.
  void Push(const PushedRows& rows);
  /// Records for the epochs that have not begun.
  void AddNavigation(std::shared_ptr<const ReadNavigation> records);
  std::shared_ptr<FinishedReport> Result(const nb::object& progress);
  void Stop();
  /// Keeps the detail of every batch, for TakeDetail.
  void WatchDetail() {
    const nb::gil_scoped_release release;
    const std::lock_guard<std::mutex> lock(calls_);
    if (begun_) throw RunError("on_detail: set it before the first rows are pushed.");
    watches_detail_ = true;
  }
  std::vector<std::shared_ptr<const Table>> TakeDetail() { return batches_.Take(); }

 private:
  void Begin();
  void Run();
  void WaitForRoom();
  void Put(const ObservationEpoch& epoch);
  void Close();
  bool WaitForEnd(int milliseconds);

  JudgingSettings settings_;
  std::shared_ptr<SharedNavigation> navigation_;
  Keep keep_;
  bool watches_detail_ = false;
  DetailBatches batches_;
  PushedSource source_;
  PushedEpochs epochs_;
  RunMonitor monitor_;
  std::mutex calls_;
  bool begun_ = false;
  bool closed_ = false;
  std::atomic<bool> interrupted_{false};
  std::mutex mutex_;
  std::condition_variable ended_;
  bool done_ = false;
  std::shared_ptr<FinishedReport> report_;
  std::exception_ptr thrown_;
  std::thread thread_;  ///< last: it uses what is above
};

/// Starts the judging, unless that has been done; under calls_.
void Checker::Begin() {
  if (std::exchange(begun_, true)) return;
  thread_ = std::thread([this] { Run(); });
}

void Checker::Run() {
  std::shared_ptr<FinishedReport> report;
  std::exception_ptr thrown;
  try {
    report = JudgedEpochs(source_, settings_, *navigation_, source_.Notices(), keep_,
                          watches_detail_ ? &batches_ : nullptr, monitor_);
  } catch (...) {
    thrown = std::current_exception();
  }
  source_.Queue().Abandon();  // a caller that waits for room goes on
  const std::lock_guard<std::mutex> lock(mutex_);
  report_ = std::move(report);
  thrown_ = thrown;
  done_ = true;
  ended_.notify_all();
}

void Checker::Push(const PushedRows& rows) {
  std::unique_lock<std::mutex> lock(calls_, std::defer_lock);
  std::vector<ObservationEpoch> complete;
  {
    const nb::gil_scoped_release release;
    lock.lock();
    Begin();
    if (closed_) throw RunError(kClosed);
    complete = epochs_.Add(rows);
  }
  try {
    for (const ObservationEpoch& epoch : complete) {
      WaitForRoom();
      const nb::gil_scoped_release release;
      Put(epoch);
    }
  } catch (const nb::python_error&) {
    closed_ = interrupted_ = true;
    monitor_.stop.store(true);
    source_.Queue().Abandon();
    throw;
  }
}

void Checker::AddNavigation(std::shared_ptr<const ReadNavigation> records) {
  const std::lock_guard<std::mutex> lock(calls_);
  if (closed_) throw RunError(kClosed);
  source_.AddNavigation(epochs_.Begun(), std::move(records));
}

/// Looks for Ctrl-C while the judging is behind.
void Checker::WaitForRoom() {
  const auto room = [this](int milliseconds) {
    return source_.Queue().WaitForRoom(std::chrono::milliseconds(milliseconds));
  };
  WaitFor(room, monitor_, nb::none());
}

void Checker::Put(const ObservationEpoch& epoch) {
  if (source_.Queue().Put(epoch)) return;
  while (!WaitForEnd(1000)) {
  }
  if (thrown_) std::rethrow_exception(thrown_);
  throw RunError("the checker was stopped.");
}

void Checker::Close() {
  const std::lock_guard<std::mutex> lock(calls_);
  if (closed_ && !begun_) throw RunError("the checker was closed before any data: make another one.");
  if (std::exchange(closed_, true)) return;
  Begin();
  if (const std::optional<ObservationEpoch> last = epochs_.Last()) Put(*last);
  source_.Queue().Close();
}

bool Checker::WaitForEnd(int milliseconds) {
  std::unique_lock<std::mutex> lock(mutex_);
  return ended_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return done_; });
}

std::shared_ptr<FinishedReport> Checker::Result(const nb::object& progress) {
  if (interrupted_) throw RunError("the checker was interrupted: make another one.");
  WaitForRoom();
  {
    const nb::gil_scoped_release release;
    Close();
  }
  WaitFor([this](int milliseconds) { return WaitForEnd(milliseconds); }, monitor_, progress);
  if (thrown_) std::rethrow_exception(thrown_);
  return report_;
}

void Checker::Stop() {
  monitor_.stop.store(true);
  source_.Queue().Abandon();
  const std::lock_guard<std::mutex> lock(calls_);
  closed_ = true;
  if (thread_.joinable()) thread_.join();
}

using Reals = nb::ndarray<const double, nb::ndim<1>, nb::c_contig, nb::device::cpu>;
using Times = nb::ndarray<const std::int64_t, nb::ndim<1>, nb::c_contig, nb::device::cpu>;
using Flags = nb::ndarray<const std::uint8_t, nb::ndim<1>, nb::c_contig, nb::device::cpu>;
using Places = nb::ndarray<const std::int32_t, nb::ndim<1>, nb::c_contig, nb::device::cpu>;

template <typename Array>
auto Span(const std::optional<Array>& array) {
  using Value = std::remove_pointer_t<decltype(array->data())>;
  return array ? std::span<Value>(array->data(), array->size()) : std::span<Value>();
}

NamesOfRows NamesOf(const Places& places, std::vector<std::string> words) {
  return {{places.data(), places.data() + places.size()}, std::move(words)};
}

void PushArrays(Checker& checker, const Times& time, const Places& satellites,
                std::vector<std::string> satellite_words, const Places& signals,
                std::vector<std::string> signal_words, const std::optional<Reals>& pseudorange,
                const std::optional<Reals>& phase, const std::optional<Reals>& doppler,
                const std::optional<Reals>& snr, const std::optional<Flags>& loss_of_lock) {
  PushedRows rows;
  rows.time_ns = {time.data(), time.size()};
  rows.satellites = NamesOf(satellites, std::move(satellite_words));
  rows.signals = NamesOf(signals, std::move(signal_words));
  rows.pseudorange_m = Span(pseudorange);
  rows.phase_cycles = Span(phase);
  rows.doppler_hz = Span(doppler);
  rows.snr_dbhz = Span(snr);
  rows.loss_of_lock = Span(loss_of_lock);
  checker.Push(rows);
}

/// Batch by batch. @param stream  a capsule of the Arrow PyCapsule interface
void PushStream(Checker& checker, const nb::object& stream) {
  ArrowReader reader(stream);
  while (const std::optional<ArrowBatch> batch = reader.Next()) {
    PushedRows rows;
    const std::vector<std::int64_t> time = batch->Times("time");
    rows.time_ns = time;
    rows.satellites = batch->Names("satellite");
    rows.signals = batch->Names("signal");
    const std::vector<double> range = batch->Reals("pseudorange_m"), phase = batch->Reals("phase_cycles"),
                              doppler = batch->Reals("doppler_hz"), snr = batch->Reals("snr_dbhz");
    const std::vector<std::uint8_t> lock = batch->Flags("loss_of_lock");
    rows.pseudorange_m = range;
    rows.phase_cycles = phase;
    rows.doppler_hz = doppler;
    rows.snr_dbhz = snr;
    rows.loss_of_lock = lock;
    checker.Push(rows);
  }
}

}  // namespace

void BindChecker(nb::module_& module) {
  nb::class_<Checker>(module, "CheckerData", "A run fed by calls; orsolva.Checker is the way to it.")
      .def(
          "__init__",
          [](Checker* self, const std::string& name, const Navigation& navigation, const nb::dict& arguments,
             const ObservationHeader* header,
             const nb::dict& kept) { new (self) Checker(name, navigation, arguments, header, kept); },
          nb::arg("name"), nb::arg("navigation"), nb::arg("arguments"), nb::arg("header").none(),
          nb::arg("kept"))
      .def("watch_detail", &Checker::WatchDetail)
      .def("take_detail", &Checker::TakeDetail)
      .def("push", PushArrays, nb::arg("time"), nb::arg("satellites"), nb::arg("satellite_words"),
           nb::arg("signals"), nb::arg("signal_words"), nb::arg("pseudorange").none(),
           nb::arg("phase").none(), nb::arg("doppler").none(), nb::arg("snr").none(),
           nb::arg("loss_of_lock").none())
      .def("push_stream", PushStream, nb::arg("stream"))
      .def(
          "add_navigation",
          [](Checker& self, const Navigation& navigation) {
            std::shared_ptr<const ReadNavigation> records = RecordsOf(navigation);
            const nb::gil_scoped_release release;
            self.AddNavigation(std::move(records));
          },
          nb::arg("navigation"))
      .def("result", &Checker::Result, nb::arg("progress").none())
      .def("stop", &Checker::Stop, nb::call_guard<nb::gil_scoped_release>());
}

}  // namespace orsolva_python
