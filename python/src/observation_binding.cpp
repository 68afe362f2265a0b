#include "python/src/observation_binding.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/judging/epoch_source.h"
#include "host/judging/run_monitor.h"
#include "python/src/notice_table.h"
#include "python/src/observation_columns.h"
#include "python/src/report_records.h"
#include "python/src/table_binding.h"
#include "python/src/waiting.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

nb::object TextOrNone(const std::string& text) {
  if (text.empty()) return nb::none();
  return nb::steal(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

template <typename Value>
nb::object ValueOrNone(const std::optional<Value>& value) {
  return value ? nb::cast(*value) : nb::object(nb::none());
}

nb::dict HeaderRecord(const ObservationHeader& header) {
  nb::dict record, types, channels;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    // The one list of RINEX 2 is that of every letter.
    const bool of_system =
        header.version >= 3 || std::string_view("GREJCIS").find(letter) != std::string_view::npos;
    if (of_system && !header.TypesOf(letter).empty())
      types[nb::str(&letter, 1)] = nb::cast(header.TypesOf(letter));
  }
  for (std::size_t slot = 0; slot < header.glonass_channels.size(); ++slot) {
    if (header.glonass_channels[slot]) channels[nb::int_(slot)] = *header.glonass_channels[slot];
  }
  const auto& xyz = header.position;
  record["rinex_version"] = header.version > 0 ? nb::object(nb::float_(header.version)) : nb::none();
  record["crinex"] = header.crinex;
  record["marker"] = TextOrNone(header.marker);
  record["marker_number"] = TextOrNone(header.marker_number);
  record["receiver"] = TextOrNone(header.receiver);
  record["receiver_number"] = TextOrNone(header.receiver_number);
  record["receiver_firmware"] = TextOrNone(header.receiver_firmware);
  record["antenna"] = TextOrNone(header.antenna);
  record["antenna_number"] = TextOrNone(header.antenna_number);
  record["antenna_height_m"] = ValueOrNone(header.antenna_height_m);
  record["time_system"] = TextOrNone(header.time_system);
  record["position_ecef_m"] = xyz ? nb::object(nb::make_tuple((*xyz)[0], (*xyz)[1], (*xyz)[2])) : nb::none();
  record["interval_s"] = ValueOrNone(header.interval_s);
  record["leap_seconds"] = ValueOrNone(header.leap_seconds);
  record["glonass_channels"] = channels;
  record["types"] = types;
  return record;
}

/// A file being read. For one caller at a time; calls from several threads wait for each other.
class ObservationFile {
 public:
  ObservationFile(const std::string& path, const Selection& selection, std::uint64_t max_size)
      : selection_(selection), record_(std::make_unique<ObsEpoch_QC_gbt>()) {
    const ObservationColumns checked(selection_);
    JudgingSettings settings;
    if (max_size > 0) settings.limits.max_decompressed_bytes = max_size;
    const nb::gil_scoped_release release;
    reader_ = OpenObservations(path, settings, diagnostics_);
  }

  /// (rows, epochs) of up to so many epochs that the selection takes.
  nb::tuple Read(std::size_t most_epochs, const nb::object& progress) {
    ObservationColumns columns(selection_);
    monitor_.stop.store(false);
    RunInterruptibly([&] { Fill(most_epochs, columns); }, monitor_, progress);
    return nb::make_tuple(columns.Rows(), columns.EpochTable());
  }
  nb::object Stream() const { return StreamRecord(reader_->Stream()); }
  nb::dict Header() const { return HeaderRecord(reader_->Header()); }
  const ObservationHeader& HeaderData() const { return reader_->Header(); }
  std::shared_ptr<Table> Notices() const {
    return std::make_shared<Table>(NoticeTableOf(diagnostics_.Notices()));
  }
  /// Why reading ended early; empty when it did not.
  std::string Failure() const {
    if (reader_->Failure()) return reader_->Failure()->what();
    return diagnostics_.Incomplete() ? diagnostics_.Incomplete()->what() : std::string();
  }

 private:
  void Fill(std::size_t most_epochs, ObservationColumns& columns) {
    const std::lock_guard<std::mutex> lock(mutex_);
    while (columns.Epochs() < most_epochs && reader_->Next(*record_, epoch_)) {
      if (monitor_.stop.load(std::memory_order_relaxed)) throw Stopped();
      monitor_.epochs.fetch_add(1, std::memory_order_relaxed);
      if (selection_.Takes(epoch_.time_ns)) columns.Add(epoch_);
    }
  }

  Selection selection_;
  Diagnostics diagnostics_;
  std::unique_ptr<ObsEpoch_QC_gbt> record_;
  ObservationEpoch epoch_;
  std::unique_ptr<EpochSource> reader_;
  RunMonitor monitor_;
  std::mutex mutex_;
};

}  // namespace

void BindObservations(nb::module_& module) {
  nb::class_<Selection>(module, "Selection")
      .def(nb::init<>())
      .def_rw("systems", &Selection::systems)
      .def_rw("signals", &Selection::signals)
      .def_rw("fields", &Selection::fields)
      .def_rw("start_ns", &Selection::start_ns)
      .def_rw("end_ns", &Selection::end_ns)
      .def_rw("every_ns", &Selection::every_ns)
      .def_rw("flags", &Selection::flags);
  nb::class_<ObservationHeader>(module, "HeaderData", "A header, for orsolva.Checker.");
  nb::class_<ObservationFile>(module, "ObservationFile", "A file being read.")
      .def(nb::init<const std::string&, const Selection&, std::uint64_t>(), nb::arg("path"),
           nb::arg("selection"), nb::arg("max_size"))
      .def("read", &ObservationFile::Read, nb::arg("most_epochs"), nb::arg("progress").none())
      .def("stream", &ObservationFile::Stream)
      .def("header", &ObservationFile::Header)
      .def("header_data", [](const ObservationFile& file) { return ObservationHeader(file.HeaderData()); })
      .def("notices", &ObservationFile::Notices)
      .def("failure", &ObservationFile::Failure);
}

}  // namespace orsolva_python
