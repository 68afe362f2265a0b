// The figures of a report as rows: one row per figure and scope, from which every writer, the schema, the
// page's types and `orsolva explain` follow.
//
// To add a figure: a row in the file of its scope (next to the rule that computes it), the member of report.h
// that the row points to (none when the row computes its value from others), and its section in figures.toml.
// Then ORSOLVA_UPDATE=1 build/bin/host_readers --gtest_filter='GeneratedFiles.*' rewrites what is made from
// them.
#ifndef ORSOLVA_REPORT_FIGURE_ROWS_H
#define ORSOLVA_REPORT_FIGURE_ROWS_H

#include <optional>
#include <type_traits>

#include "host/report/report.h"

namespace orsolva_host {

/// What a figure measures: gives its unit, its JSON type and how it is shown.
enum class FigureKind {
  kEpochs,
  kValues,
  kRecords,
  kSatellites,
  kEvents,
  kObservations,  ///< per restart: a count, or a ratio of counts
  kRatio,         ///< 0 to 1; people read percent
  kMetres,
  kDbHz,
  kCycles,
  kHours,
  kSeconds,
  kDegrees,
  kSteps,
  kMillimetres,
  kMinutes,
  kHertz,
  kTecuPerMinute,
  kNumber,       ///< without a unit, and no ratio
  kClockOffset,  ///< seconds of either sign
  kClockRate,
  kYesNo,  ///< 1 or 0; true or false in JSON
};

/// The unit of CSV and texts: "epochs", "m", "1" for a ratio.
const char* UnitOf(FigureKind kind);

/// Whether the figure is a whole number that counts something.
bool IsCount(FigureKind kind);

/// How a figure is shown in a table of the text report.
struct TextColumn {
  const char* heading = nullptr;  ///< null: in no table
  int width = 0;                  ///< columns with the blank before it
  int decimals = 0;
};

constexpr int kNotInSum = -1;

/// One figure of an owner (a system, a signal, the run ...).
template <typename Owner>
struct FigureRow {
  const char* key;
  FigureKind kind;
  std::optional<double> (*get)(const Owner&);  ///< absent without data
  TextColumn text = {};
  int sum_decimals = kNotInSum;  ///< of its field in the lines for grep
  FigureSource source = FigureSource::kLibrary;
};

template <typename Member>
struct MemberOf;
template <typename Owner_, typename Value>
struct MemberOf<Value Owner_::*> {
  using Owner = Owner_;
};

/// Reads a member: a number, or an optional one. What is not finite is absent.
template <auto member>
std::optional<double> Get(const typename MemberOf<decltype(member)>::Owner& owner) {
  const auto& value = owner.*member;
  if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>) {
    return Finite(static_cast<double>(value));
  } else {
    return value ? Finite(static_cast<double>(*value)) : std::nullopt;
  }
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURE_ROWS_H
