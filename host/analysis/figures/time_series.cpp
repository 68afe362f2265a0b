#include "host/analysis/figures/time_series.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>

#include "host/analysis/figures/step_outcome.h"
#include "host/analysis/figures/system_order.h"
#include "host/analysis/geometry/constants.h"
#include "host/analysis/slips/detector_constants.h"

namespace orsolva_host::analysis {
namespace {

double RootMeanSquare(double squares, Count values) {
  return values > 0 ? std::sqrt(squares / static_cast<double>(values)) : kAbsent;
}

SeriesRow RowOf(std::int64_t bin, SeriesSubject subject, SatelliteId satellite, SignalCode code) {
  SeriesRow row;
  row.time_ns = bin * TimeSeries::kBin_ns;
  row.subject = subject;
  row.satellite = satellite;
  row.code = code;
  return row;
}

bool IsBefore(SignalCode a, SignalCode b) {
  return std::tie(a.band, a.attribute) < std::tie(b.band, b.attribute);
}

/// Places of a list in the order of a relation.
template <typename Less>
std::vector<std::size_t> Sorted(std::size_t count, Less less) {
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), less);
  return order;
}

}  // namespace

TimeSeries::Bin& TimeSeries::BinAt(std::int64_t time_ns) {
  const std::int64_t number = time_ns / kBin_ns;
  if (bins_.empty() || bins_.back().number < number) {
    bins_.emplace_back();
    bins_.back().number = number;
    began_bin_ = true;
  }
  return bins_.back();
}

/// A bin that is not given out yet, with a place for every signal of the roster.
TimeSeries::Bin* TimeSeries::FindBin(std::int64_t time_ns, const SignalRoster& roster) {
  const std::int64_t number = time_ns / kBin_ns;
  const auto bin =
      std::find_if(bins_.rbegin(), bins_.rend(), [&](const Bin& b) { return b.number == number; });
  if (bin == bins_.rend()) return nullptr;
  bin->satellites.resize(roster.Satellites().size());
  bin->signals.resize(roster.Signals().size());
  return &*bin;
}

void TimeSeries::AddSolution(std::int64_t time_ns, double clock_m, const Position::Solution& solution) {
  if (std::isnan(clock_m)) return;
  Bin& bin = BinAt(time_ns);
  if (std::isnan(bin.clock_m)) bin.clock_m = clock_m;
  bin.pdop.Add(solution.pdop);
  for (std::size_t k = 0; k < bin.enu_m.size(); ++k) bin.enu_m[k].Add(solution.enu_m[k]);
}

void TimeSeries::AddEpoch(const ObservationEpoch& epoch, const SignalRoster& roster, const Sky& sky) {
  const std::int64_t before = newest_.empty() ? -1 : newest_.back() / kBin_ns;
  Bin& bin = BinAt(epoch.time_ns);
  began_bin_ = bin.number != before;
  newest_.push_back(epoch.time_ns);
  if (newest_.size() > kLead + 1) newest_.pop_front();
  bin.satellites.resize(roster.Satellites().size());
  bin.signals.resize(roster.Signals().size());
  begins_.resize(roster.Signals().size(), -1);
  const std::uint64_t satellites_before = bin.satellite_epochs;
  AddExpected(sky, bin);
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) AddSatellite(epoch, i, roster, sky, bin);
  if (bin.satellite_epochs > satellites_before) ++bin.epochs;
}

void TimeSeries::AddExpected(const Sky& sky, Bin& bin) {
  has_orbit_.resize(bin.satellites.size());
  for (std::size_t s = 0; s < has_orbit_.size(); ++s) {
    has_orbit_[s] = sky.CountsOf(s) != nullptr;
    bin.satellites[s].expected += sky.IsSatelliteExpected(s, Visibility::kCutoff);
  }
}

void TimeSeries::AddSatellite(const ObservationEpoch& epoch, std::size_t place, const SignalRoster& roster,
                              const Sky& sky, Bin& bin) {
  const SatelliteObservation& observation = epoch.satellites[place];
  const std::size_t number = roster.SatelliteAt(place);
  const bool counts = !has_orbit_[number] || sky.IsExpected(place, Visibility::kCutoff);
  bool observed = false;
  for (std::size_t k = 0; k < observation.signal_count; ++k) {
    const SignalObservation& o = epoch.signals[observation.first_signal + k];
    const std::size_t listed = roster.SignalAt(observation.first_signal + k);
    Signal& signal = bin.signals[listed];
    const bool has_code = !std::isnan(o.pseudorange_m), has_phase = !std::isnan(o.phase_cycles);
    observed = observed || has_code || has_phase;
    if (o.snr_dbhz > 0) signal.snr_dbhz.Add(o.snr_dbhz);
    if (!has_code || !has_phase) continue;
    ++signal.epochs;
    signal.observed += counts;
    if (begins_[listed] < 0) begins_[listed] = bin.number;
  }
  if (!observed) return;
  ++bin.satellite_epochs;
  Satellite& satellite = bin.satellites[number];
  satellite.observed += counts;
  const double elevation_deg = sky.ElevationDegrees(place);
  if (!std::isnan(elevation_deg)) satellite.elevation_deg.Add(elevation_deg);
}

void TimeSeries::AddEvent(const Event& event, const SignalRoster& roster) {
  if (!IsSlip(event.kind) || !IsUp(event.elevation_deg, cutoff_deg_)) return;
  Bin* const bin = FindBin(event.time_ns, roster);
  if (bin == nullptr) return;
  ++bin->slips;
  if (const auto satellite = roster.Find(event.satellite)) ++bin->satellites[*satellite].slips;
  for (const SignalCode code : event.signals) {
    if (const auto signal = roster.Find(event.satellite, code)) ++bin->signals[*signal].slips;
  }
}

void TimeSeries::AddMultipath(SatelliteId id, SignalCode code, const JudgedBlock& block,
                              const SignalRoster& roster) {
  Bin* const bin = FindBin(block.time_ns, roster);
  const auto signal = roster.Find(id, code);
  if (bin == nullptr || !signal) return;
  bin->signals[*signal].squares_m2 += block.squares;
  bin->signals[*signal].multipath_values += static_cast<Count>(block.values);
}

void TimeSeries::AddRoti(const RotiWindow& window, const SignalRoster& roster) {
  Bin* const bin = FindBin(window.time_ns, roster);
  const auto satellite = roster.Find(window.satellite);
  if (bin != nullptr && satellite) bin->satellites[*satellite].roti = window.roti;
}

std::int64_t TimeSeries::DecidedBefore() const { return newest_.empty() ? 0 : newest_.front(); }

void TimeSeries::Close(const SignalRoster& roster, bool all) {
  const std::int64_t decided_ns = newest_.size() > kLead ? DecidedBefore() : 0;
  while (!bins_.empty()) {
    Bin& bin = bins_.front();
    if (!all && (bin.number + 1) * kBin_ns + kLateness_ns > decided_ns) return;
    bin.satellites.resize(roster.Satellites().size());
    bin.signals.resize(roster.Signals().size());
    GiveOut(bin, roster);
    bins_.pop_front();
  }
}

std::vector<SeriesRow> TimeSeries::Take() { return std::exchange(rows_, {}); }

void TimeSeries::GiveOut(const Bin& bin, const SignalRoster& roster) {
  GiveOutStation(bin);
  GiveOutSums(bin, roster);
  const std::vector<SatelliteId>& ids = roster.Satellites();
  for (const std::size_t s :
       Sorted(ids.size(), [&](std::size_t a, std::size_t b) { return IsListedBefore(ids[a], ids[b]); })) {
    GiveOutSatellite(bin, s, roster);
  }
}

void TimeSeries::GiveOutStation(const Bin& bin) {
  SeriesRow row = RowOf(bin.number, SeriesSubject::kStation, {' ', 0}, {});
  row.observed_epochs = bin.epochs;
  if (bin.epochs > 0) row.satellites = static_cast<double>(bin.satellite_epochs) / bin.epochs;
  row.slips = bin.slips;
  row.pdop = bin.pdop.Value();
  row.clock_s = bin.clock_m / kLightSpeed_m_s;
  for (std::size_t k = 0; k < row.enu_m.size(); ++k) row.enu_m[k] = bin.enu_m[k].Value();
  rows_.push_back(row);
}

/// Whether the satellite of a signal has an orbit and was observed with it by the end of the bin.
bool TimeSeries::IsExpected(const Bin& bin, std::size_t signal, const SignalRoster& roster) const {
  return has_orbit_[roster.Signals()[signal].satellite] && begins_[signal] >= 0 &&
         begins_[signal] <= bin.number;
}

std::vector<TimeSeries::Sum> TimeSeries::SumsOf(const Bin& bin, const SignalRoster& roster) const {
  std::vector<Sum> sums(roster.SharedSignals().size());
  for (std::size_t i = 0; i < bin.signals.size(); ++i) {
    if (begins_[i] < 0 || begins_[i] > bin.number) continue;
    const ListedSignal& listed = roster.Signals()[i];
    const Signal& signal = bin.signals[i];
    Sum& sum = sums[listed.shared];
    sum.seen = true;
    sum.total.Add(signal);
    if (!IsExpected(bin, i, roster)) continue;
    sum.has_orbit = true;
    sum.expected += bin.satellites[listed.satellite].expected;
    sum.observed_with_orbit += signal.observed;
  }
  return sums;
}

void TimeSeries::GiveOutSums(const Bin& bin, const SignalRoster& roster) {
  const std::vector<SharedSignal>& shared = roster.SharedSignals();
  const std::vector<Sum> sums = SumsOf(bin, roster);
  const auto order = Sorted(shared.size(), [&](std::size_t a, std::size_t b) {
    if (shared[a].system == shared[b].system) return IsBefore(shared[a].code, shared[b].code);
    return SystemPlace(shared[a].system) < SystemPlace(shared[b].system);
  });
  for (const std::size_t k : order) {
    const Sum& sum = sums[k];
    if (!sum.seen) continue;
    SeriesRow row = RowOf(bin.number, SeriesSubject::kSystemSignal, {shared[k].system, 0}, shared[k].code);
    sum.total.FillIn(row);
    if (sum.has_orbit) {
      row.expected_epochs = sum.expected;
      row.observed_epochs = sum.observed_with_orbit;
    }
    if (bin.epochs > 0) row.satellites = static_cast<double>(sum.total.epochs) / bin.epochs;
    rows_.push_back(row);
  }
}

/// Unless there is nothing to say of it.
void TimeSeries::GiveOutSatellite(const Bin& bin, std::size_t satellite, const SignalRoster& roster) {
  const Satellite& s = bin.satellites[satellite];
  SeriesRow row = RowOf(bin.number, SeriesSubject::kSatellite, roster.Satellites()[satellite], {});
  if (has_orbit_[satellite]) row.expected_epochs = s.expected;
  row.observed_epochs = s.observed;
  row.elevation_deg = s.elevation_deg.Value();
  row.slips = s.slips;
  row.roti = s.roti;
  const std::size_t place = rows_.size();
  rows_.push_back(row);
  GiveOutSignalsOf(bin, satellite, roster);
  const bool silent = rows_.size() == place + 1 && s.elevation_deg.values + s.expected + s.observed == 0;
  if (silent) rows_.pop_back();
}

void TimeSeries::GiveOutSignalsOf(const Bin& bin, std::size_t satellite, const SignalRoster& roster) {
  const Satellite& s = bin.satellites[satellite];
  std::vector<std::size_t> own = roster.SignalsOf(satellite);
  std::sort(own.begin(), own.end(), [&](std::size_t a, std::size_t b) {
    return IsBefore(roster.Signals()[a].code, roster.Signals()[b].code);
  });
  for (const std::size_t i : own) {
    const Signal& signal = bin.signals[i];
    const bool expected = IsExpected(bin, i, roster);
    if (!(expected && s.expected > 0) && signal.epochs == 0 && signal.snr_dbhz.values == 0) continue;
    SeriesRow row = RowOf(bin.number, SeriesSubject::kSatelliteSignal, roster.Satellites()[satellite],
                          roster.Signals()[i].code);
    signal.FillIn(row);
    if (expected) row.expected_epochs = s.expected;
    row.elevation_deg = s.elevation_deg.Value();
    rows_.push_back(row);
  }
}

void TimeSeries::Signal::Add(const Signal& more) {
  epochs += more.epochs;
  observed += more.observed;
  slips += more.slips;
  snr_dbhz.sum += more.snr_dbhz.sum;
  snr_dbhz.values += more.snr_dbhz.values;
  squares_m2 += more.squares_m2;
  multipath_values += more.multipath_values;
}

void TimeSeries::Signal::FillIn(SeriesRow& row) const {
  row.observed_epochs = observed;
  row.slips = slips;
  row.snr_dbhz = snr_dbhz.Value();
  row.snr_values = snr_dbhz.values;
  row.multipath_m = RootMeanSquare(squares_m2, multipath_values);
  row.multipath_values = multipath_values;
}

}  // namespace orsolva_host::analysis
