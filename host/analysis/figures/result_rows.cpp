#include "host/analysis/figures/result_rows.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "host/analysis/figures/system_order.h"

namespace orsolva_host::analysis {
namespace {

/// The first row that is not less than the wanted one, which is inserted unless it is that row.
template <typename Row, typename KeyOf>
Row& FindOrInsert(std::vector<Row>& rows, const Row& wanted, KeyOf key_of) {
  const auto place = std::lower_bound(rows.begin(), rows.end(), wanted,
                                      [&](const Row& a, const Row& b) { return key_of(a) < key_of(b); });
  if (place != rows.end() && key_of(*place) == key_of(wanted)) return *place;
  return *rows.insert(place, wanted);
}

SignalFigures& SignalRow(std::vector<SignalFigures>& rows, char system, SatelliteId id, SignalCode code) {
  SignalFigures wanted;
  wanted.system = system;
  wanted.satellite = id;
  wanted.code = code;
  return FindOrInsert(rows, wanted, [](const SignalFigures& row) {
    return std::make_tuple(SystemPlace(row.system), row.system, row.satellite.number, row.code.band,
                           row.code.attribute);
  });
}

}  // namespace

SystemFigures& SystemRow(AnalysisResult& result, char letter) {
  SystemFigures wanted;
  wanted.letter = letter;
  return FindOrInsert(result.systems, wanted, [](const SystemFigures& row) {
    return std::make_pair(SystemPlace(row.letter), row.letter);
  });
}

SatelliteFigures& SatelliteRow(AnalysisResult& result, SatelliteId id) {
  SatelliteFigures wanted;
  wanted.id = id;
  return FindOrInsert(result.satellites, wanted, [](const SatelliteFigures& row) {
    return std::make_tuple(SystemPlace(row.id.system), row.id.system, row.id.number);
  });
}

SignalFigures& SystemSignalRow(AnalysisResult& result, char system, SignalCode code) {
  return SignalRow(result.signals, system, {' ', 0}, code);
}

SignalFigures& SatelliteSignalRow(AnalysisResult& result, SatelliteId id, SignalCode code) {
  return SignalRow(result.satellite_signals, id.system, id, code);
}

}  // namespace orsolva_host::analysis
