#include "python/src/detail_table.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

#include "host/judging/detail_outputs.h"
#include "host/observation/observation_epoch.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/decimal.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

struct DetailColumn {
  const char* name;
  ColumnKind kind;
};

/// In the order of kDetailCsvHeader.
constexpr DetailColumn kColumns[] = {
    {"time", ColumnKind::kTime},
    {"satellite", ColumnKind::kName},
    {"signal", ColumnKind::kName},
    {"elevation_deg", ColumnKind::kReal},
    {"azimuth_deg", ColumnKind::kReal},
    {"above_cutoff", ColumnKind::kYesNo},
    {"snr_dbhz", ColumnKind::kReal},
    {"partner", ColumnKind::kName},
    {"mp_residual_m", ColumnKind::kReal},
    {"restart", ColumnKind::kName},
    {"geometry_free_step_m", ColumnKind::kReal},
    {"geometry_free_threshold_m", ColumnKind::kReal},
    {"geometry_free_slip", ColumnKind::kName},
    {"phase_excess_m", ColumnKind::kReal},
    {"phase_threshold_m", ColumnKind::kReal},
    {"phase_slip", ColumnKind::kName},
};

/// "2020-06-25 00:00:30.000"
std::optional<std::int64_t> TimeOf(std::string_view text) {
  CivilTime civil;
  const bool good =
      text.size() > 19 && ParseCivil(text.substr(0, 4), text.substr(5, 2), text.substr(8, 2),
                                     text.substr(11, 2), text.substr(14, 2), text.substr(17), civil);
  if (!good) return std::nullopt;
  const Time_gbt time = ToTime(civil);
  return time.time * kNanosecondsPerSecond + std::llround(time.sec * 1e9);
}

}  // namespace

DetailTable::DetailTable(const DetailSelection& selection)
    : csv_([this](std::string_view piece) { Take(piece); }, FilterOf(selection)) {}

std::shared_ptr<Table> DetailTable::EmptyTable() {
  auto table = std::make_shared<Table>();
  for (const DetailColumn& column : kColumns) table->Add(column.name, column.kind);
  return table;
}

std::shared_ptr<const Table> DetailTable::TakeRows() { return std::exchange(table_, EmptyTable()); }

void DetailTable::Take(std::string_view piece) {
  while (true) {
    const std::size_t end = piece.find('\n');
    if (end == std::string_view::npos) break;
    if (rest_.empty()) {
      TakeLine(piece.substr(0, end));
    } else {
      rest_ += piece.substr(0, end);
      TakeLine(rest_);
      rest_.clear();
    }
    piece.remove_prefix(end + 1);
  }
  rest_ += piece;
}

void DetailTable::TakeLine(std::string_view line) {
  if (heading_) {
    heading_ = false;
    return;
  }
  for (const auto& column : table_->columns) {
    const std::size_t comma = line.find(',');
    AddCell(*column, line.substr(0, comma));
    line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
  }
}

void DetailTable::AddCell(Column& column, std::string_view text) const {
  if (column.Kind() == ColumnKind::kTime) return column.AddTime(TimeOf(text));
  if (column.Kind() == ColumnKind::kYesNo) return column.AddYesNo(text == "1");
  if (column.Kind() == ColumnKind::kName) return column.AddTextOrNull(std::string(text));
  double value = 0;
  const bool good = ParseDecimal(text, value) == FieldState::kNumber;
  column.AddReal(good ? value : std::numeric_limits<double>::quiet_NaN());
}

}  // namespace orsolva_python
