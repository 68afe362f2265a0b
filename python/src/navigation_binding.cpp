#include "python/src/navigation_binding.h"

#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <cmath>
#include <cstdint>
#include <optional>

#include "python/src/columns.h"
#include "python/src/errors.h"
#include "python/src/table_binding.h"
#include "python/src/waiting.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

using ReadPtr = std::shared_ptr<const ReadNavigation>;

std::int64_t Nanoseconds(double seconds) { return std::llround(seconds * 1e9); }

/// A column of a record's numbers.
template <typename Record>
struct NumberColumn {
  const char* name;
  double (*get)(const Record&);
};

template <typename Record>
void AddNumbers(const std::vector<NumberColumn<Record>>& columns, const std::vector<const Record*>& records,
                Table& table) {
  for (const NumberColumn<Record>& column : columns) {
    Column& numbers = table.Add(column.name, ColumnKind::kReal);
    for (const Record* record : records) numbers.AddReal(column.get(*record));
  }
}

template <typename Record>
std::vector<const Record*> OfSystems(const std::vector<Record>& records, const std::string& systems) {
  std::vector<const Record*> found;
  for (const Record& record : records) {
    if (systems.find(record.satellite.system) != std::string::npos) found.push_back(&record);
  }
  return found;
}

template <typename Record>
void AddLead(const std::vector<const Record*>& records, Table& table) {
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& times = table.Add("reference_time", ColumnKind::kTime);
  Column& unhealthy = table.Add("unhealthy", ColumnKind::kYesNo);
  for (const Record* record : records) {
    satellites.AddText(NameOf(record->satellite));
    times.AddTime(Nanoseconds(record->toe_s));
    unhealthy.AddYesNo(record->unhealthy);
  }
}

#define ORSOLVA_NUMBER(name, member)                       \
  {                                                        \
    name, [](const auto& r) -> double { return r.member; } \
  }

Table KeplerTable(const BroadcastRecords& records, const std::string& systems) {
  using Record = KeplerRecord;
  const std::vector<const Record*> rows = OfSystems(records.kepler, systems);
  Table table;
  AddLead(rows, table);
  Column& clock = table.Add("clock_time", ColumnKind::kTime);
  Column& second = table.Add("second_message", ColumnKind::kYesNo);
  for (const Record* row : rows) {
    clock.AddTime(Nanoseconds(row->toc_s));
    second.AddYesNo(row->second_message);
  }
  const std::vector<NumberColumn<Record>> numbers = {
      ORSOLVA_NUMBER("af0_s", af0),
      ORSOLVA_NUMBER("af1_s_per_s", af1),
      ORSOLVA_NUMBER("af2_s_per_s2", af2),
      ORSOLVA_NUMBER("sqrt_a_sqrt_m", sqrt_a),
      ORSOLVA_NUMBER("eccentricity", eccentricity),
      ORSOLVA_NUMBER("m0_rad", m0),
      ORSOLVA_NUMBER("delta_n_rad_per_s", delta_n),
      ORSOLVA_NUMBER("omega0_rad", omega0),
      ORSOLVA_NUMBER("omega_dot_rad_per_s", omega_dot),
      ORSOLVA_NUMBER("i0_rad", i0),
      ORSOLVA_NUMBER("idot_rad_per_s", idot),
      ORSOLVA_NUMBER("omega_rad", omega),
      ORSOLVA_NUMBER("cuc_rad", cuc),
      ORSOLVA_NUMBER("cus_rad", cus),
      ORSOLVA_NUMBER("cic_rad", cic),
      ORSOLVA_NUMBER("cis_rad", cis),
      ORSOLVA_NUMBER("crc_m", crc),
      ORSOLVA_NUMBER("crs_m", crs),
      ORSOLVA_NUMBER("toe_of_week_s", toe_of_week_s),
      ORSOLVA_NUMBER("group_delay_s", group_delay_s),
  };
  AddNumbers(numbers, rows, table);
  return table;
}

Table StateVectorTable(const BroadcastRecords& records, const std::string& systems) {
  using Record = StateVectorRecord;
  const std::vector<const Record*> rows = OfSystems(records.state_vectors, systems);
  Table table;
  AddLead(rows, table);
  Column& channels = table.Add("channel", ColumnKind::kWhole);
  for (const Record* row : rows)
    channels.AddWhole(row->channel ? std::optional<double>(*row->channel) : std::nullopt);
  const std::vector<NumberColumn<Record>> numbers = {
      ORSOLVA_NUMBER("clock_bias_s", clock_bias_s),
      ORSOLVA_NUMBER("clock_rate_s_per_s", clock_rate),
      ORSOLVA_NUMBER("x_m", position_m[0]),
      ORSOLVA_NUMBER("y_m", position_m[1]),
      ORSOLVA_NUMBER("z_m", position_m[2]),
      ORSOLVA_NUMBER("vx_m_per_s", velocity_m_s[0]),
      ORSOLVA_NUMBER("vy_m_per_s", velocity_m_s[1]),
      ORSOLVA_NUMBER("vz_m_per_s", velocity_m_s[2]),
      ORSOLVA_NUMBER("ax_m_per_s2", acceleration_m_s2[0]),
      ORSOLVA_NUMBER("ay_m_per_s2", acceleration_m_s2[1]),
      ORSOLVA_NUMBER("az_m_per_s2", acceleration_m_s2[2]),
  };
  AddNumbers(numbers, rows, table);
  return table;
}

#undef ORSOLVA_NUMBER

Table PreciseTable(const ReadNavigation& read) {
  Table table;
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& times = table.Add("time", ColumnKind::kTime);
  Column* const xyz[] = {&table.Add("x_m", ColumnKind::kReal), &table.Add("y_m", ColumnKind::kReal),
                         &table.Add("z_m", ColumnKind::kReal)};
  Column& clocks = table.Add("clock_s", ColumnKind::kReal);
  Column& flags = table.Add("flags", ColumnKind::kFlags);
  if (!read.precise) return table;
  for (const auto& [satellite, points] : read.precise->satellites) {
    for (const PrecisePoint& point : points) {
      satellites.AddText(NameOf(satellite));
      times.AddTime(point.time_ns);
      for (std::size_t i = 0; i < 3; ++i) xyz[i]->AddReal(point.position_m[i]);
      clocks.AddReal(point.clock_s);
      flags.AddFlags(point.flags);
    }
  }
  return table;
}

ReadPtr ReadOf(const Navigation& navigation) {
  ReadPtr read;
  RunMonitor monitor;
  RunInterruptibly([&] { read = navigation.shared->Get(); }, monitor, nb::none());
  if (read->failure) throw FileError(*read->failure);
  return read;
}

Navigation MakeNavigation(const std::vector<std::string>& paths, std::uint64_t max_size) {
  InputLimits limits;
  if (max_size > 0) limits.max_decompressed_bytes = max_size;
  return {paths, std::make_shared<SharedNavigation>(paths, limits)};
}

}  // namespace

ReadPtr RecordsOf(const Navigation& navigation) {
  ReadPtr read = ReadOf(navigation);
  if (read->precise)
    throw ArgumentError("nav: precise orbits cannot be added, give them to Checker(nav=...)");
  return read;
}

void BindNavigation(nb::module_& module) {
  nb::class_<Navigation>(module, "NavigationData", "Navigation files; orsolva.Navigation is the way to them.")
      .def_static("of_files", MakeNavigation, nb::arg("paths"), nb::arg("max_size"))
      .def_static(
          "none",
          [] {
            auto read = std::make_shared<ReadNavigation>();
            read->has_record_files = true;
            return Navigation{{}, std::make_shared<SharedNavigation>(std::move(read))};
          },
          "No records, and none are looked for.")
      .def(
          "read", [](const Navigation& navigation) { ReadOf(navigation); },
          "Reads the files, unless that has been done.")
      .def("files", [](const Navigation& navigation) { return ReadOf(navigation)->files; })
      .def("paths", [](const Navigation& navigation) { return navigation.paths; })
      .def(
          "kepler",
          [](const Navigation& navigation, const std::string& systems) {
            return std::make_shared<Table>(KeplerTable(ReadOf(navigation)->broadcast, systems));
          },
          nb::arg("systems"))
      .def(
          "state_vectors",
          [](const Navigation& navigation, const std::string& systems) {
            return std::make_shared<Table>(StateVectorTable(ReadOf(navigation)->broadcast, systems));
          },
          nb::arg("systems"))
      .def("precise_orbits", [](const Navigation& navigation) {
        return std::make_shared<Table>(PreciseTable(*ReadOf(navigation)));
      });
}

}  // namespace orsolva_python
