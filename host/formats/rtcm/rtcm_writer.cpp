#include "host/formats/rtcm/rtcm_writer.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "host/formats/rtcm/lock_time.h"
#include "host/formats/rtcm/msm_signals.h"
#include "host/formats/rtcm/received_signal.h"
#include "host/formats/rtcm/stream_clock.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"

namespace orsolva_host::rtcm {
namespace {

constexpr std::int64_t kRoughSteps = 1024;  // of a millisecond
constexpr std::int64_t kLargestRough_ms = 254;
constexpr std::size_t kMaxCells = 64;
constexpr std::int64_t kMillisecond_ns = kNanosecondsPerSecond / 1000;
constexpr int kNoChannel = 15;

template <class Row>
const MsmColumn<Row>* ColumnOf(std::span<const MsmColumn<Row>> columns, int kind, std::int32_t Row::*member) {
  for (const MsmColumn<Row>& column : columns) {
    if (column.member == member && column.In(kind)) return &column;
  }
  return nullptr;
}

/// The value in steps of the field, or its invalid value when it is absent or does not fit.
template <class Row>
std::int32_t InSteps(const MsmColumn<Row>& column, double value) {
  const double limit = std::ldexp(1.0, column.bits - 1);
  const bool is_signed = column.field_kind == FieldKind::kSigned;
  const double steps = std::nearbyint(value / column.scale);
  const double lowest = is_signed ? -limit + 1 : 0;
  const double highest = is_signed ? limit - 1 : 2 * limit - 1;
  if (!(steps >= lowest && steps <= highest)) return column.invalid;
  return static_cast<std::int32_t>(steps);
}

double RateOf(const SignalObservation& signal, double carrier_hz) {
  return -signal.doppler_hz * (kLightSpeed_m_s / carrier_hz);
}

void SetTime(std::int64_t time_ns, MsmMessage& message) {
  if (message.type.system == 'R') {
    const GlonassFields fields = GlonassMilliseconds(time_ns);
    message.header[msm::kDayOfWeek] = fields.day_of_week;
    message.header[msm::kTime] = fields.milliseconds;
  } else {
    message.header[msm::kTime] =
        message.type.system == 'C' ? BdsMilliseconds(time_ns) : GpsMilliseconds(time_ns);
  }
}

}  // namespace

std::vector<std::string> MsmWriter::Write(const ObservationEpoch& epoch, const ChannelTable& channels) {
  std::vector<MsmMessage> messages;
  for (const char system : {'G', 'R', 'E', 'S', 'J', 'C', 'I'}) {
    for (MsmMessage& message : SystemMessages(system, epoch, channels))
      messages.push_back(std::move(message));
  }
  std::vector<std::string> written;
  for (std::size_t i = 0; i < messages.size(); ++i) {
    messages[i].header[msm::kMore] = i + 1 < messages.size() ? 1 : 0;
    written.push_back(WriteMsm(messages[i]));
  }
  return written;
}

std::vector<MsmMessage> MsmWriter::SystemMessages(char system, const ObservationEpoch& epoch,
                                                  const ChannelTable& channels) {
  std::vector<Candidate> candidates;
  std::uint64_t signals = 0;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    const int place = satellite.id.system == system ? MsmPlace(satellite.id) : 0;
    if (place == 0) continue;
    candidates.push_back({&satellite, place});
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      signals |= std::uint64_t{1} << MsmPlace(system, epoch.signals[satellite.first_signal + i].code);
    }
  }
  std::sort(candidates.begin(), candidates.end(),
            [](const Candidate& a, const Candidate& b) { return a.place < b.place; });
  const auto count = static_cast<std::size_t>(std::popcount(signals & ~std::uint64_t{1}));
  const std::size_t at_a_time = kMaxCells / std::max<std::size_t>(count, 1);
  std::vector<MsmMessage> messages;
  for (const Candidate& candidate : candidates) {
    if (messages.empty() || messages.back().satellites.size() >= at_a_time) {
      messages.emplace_back();
      messages.back().type = {system, kind_};
      messages.back().header[msm::kStation] = station_;
      SetTime(epoch.time_ns, messages.back());
    }
    AddSatellite(epoch, candidate, channels, messages.back());
  }
  std::erase_if(messages, [](const MsmMessage& message) { return message.satellites.empty(); });
  return messages;
}

void MsmWriter::AddSatellite(const ObservationEpoch& epoch, const Candidate& candidate,
                             const ChannelTable& channels, MsmMessage& message) {
  const SatelliteObservation& satellite = *candidate.satellite;
  const char system = satellite.id.system;
  const auto begin = epoch.signals.begin() + static_cast<std::ptrdiff_t>(satellite.first_signal);
  std::vector<SignalObservation> signals(begin, begin + static_cast<std::ptrdiff_t>(satellite.signal_count));
  std::erase_if(signals, [&](const SignalObservation& s) { return MsmPlace(system, s.code) == 0; });
  std::sort(signals.begin(), signals.end(), [&](const SignalObservation& a, const SignalObservation& b) {
    return MsmPlace(system, a.code) < MsmPlace(system, b.code);
  });
  const auto ranged = std::find_if(signals.begin(), signals.end(),
                                   [](const SignalObservation& s) { return !std::isnan(s.pseudorange_m); });
  if (ranged == signals.end()) return;
  const double range_ms = ranged->pseudorange_m / kLightMillisecond_m;
  if (!(range_ms >= 0 && range_ms < static_cast<double>(kLargestRough_ms))) return;

  const std::optional<int> channel = system == 'R' ? channels[satellite.id.number] : std::optional<int>(0);
  const auto carrier = [&](const SignalObservation& s) {
    return channel ? CarrierFrequency(system, s.code.band, *channel) : 0;
  };
  const std::int64_t rough = std::llround(range_ms * kRoughSteps);
  MsmSatellite row;
  row.number = candidate.place;
  row.rough_ms = static_cast<std::int32_t>(rough / kRoughSteps);
  row.rough_part = static_cast<std::int32_t>(rough % kRoughSteps);
  if (system == 'R') row.extended = channel ? *channel + kChannelOffset : kNoChannel;
  if (const auto* column = ColumnOf(MsmSatelliteColumns(), kind_, &MsmSatellite::rough_rate)) {
    const auto moving = std::find_if(signals.begin(), signals.end(), [&](const SignalObservation& s) {
      return !std::isnan(s.doppler_hz) && carrier(s) > 0;
    });
    row.rough_rate =
        moving == signals.end() ? column->invalid : InSteps(*column, RateOf(*moving, carrier(*moving)));
  }
  message.satellites.push_back(row);
  for (const SignalObservation& signal : signals) {
    MsmCell cell = CellOf(epoch, satellite.id, signal, rough, carrier(signal), row.rough_rate);
    cell.satellite = static_cast<int>(message.satellites.size()) - 1;
    message.cells.push_back(cell);
  }
}

MsmCell MsmWriter::CellOf(const ObservationEpoch& epoch, SatelliteId id, const SignalObservation& signal,
                          std::int64_t rough, double carrier_hz, std::int32_t rough_rate) {
  const auto columns = MsmCellColumns();
  const double rough_ms = static_cast<double>(rough) / kRoughSteps;
  MsmCell cell;
  cell.signal = MsmPlace(id.system, signal.code);
  cell.range = InSteps(*ColumnOf(columns, kind_, &MsmCell::range),
                       signal.pseudorange_m / kLightMillisecond_m - rough_ms);
  FillPhase(epoch, id, signal, rough_ms, carrier_hz, cell);
  const auto* strength = ColumnOf(columns, kind_, &MsmCell::strength);
  cell.strength = std::isnan(signal.snr_dbhz) ? strength->invalid : InSteps(*strength, signal.snr_dbhz);
  if (const auto* rate = ColumnOf(columns, kind_, &MsmCell::rate)) {
    const double off = carrier_hz > 0 ? RateOf(signal, carrier_hz) - rough_rate : kAbsent;
    cell.rate = InSteps(*rate, off);
  }
  return cell;
}

void MsmWriter::FillPhase(const ObservationEpoch& epoch, SatelliteId id, const SignalObservation& signal,
                          double rough_ms, double carrier_hz, MsmCell& cell) {
  const auto& column = *ColumnOf(MsmCellColumns(), kind_, &MsmCell::phase);
  cell.phase = column.invalid;
  if (std::isnan(signal.phase_cycles) || carrier_hz <= 0) return;
  const double cycles_per_ms = carrier_hz / 1000;
  const auto [place, is_new] = tracks_.try_emplace({id, cell.signal});
  Track& track = place->second;
  const double limit_ms = std::ldexp(column.scale, column.bits - 1) - column.scale;
  const auto fine_ms = [&] {
    return (signal.phase_cycles + static_cast<double>(track.cycles + track.rolled)) / cycles_per_ms -
           rough_ms;
  };
  const auto begin = [&](bool again) {
    track.locked_since_ns = epoch.time_ns;
    track.rolled = 0;
    if (again) track.cycles = std::llround(rough_ms * cycles_per_ms - signal.phase_cycles);
  };
  if (is_new || (signal.loss_of_lock & kLossOfLock) != 0) begin(is_new);
  if (std::fabs(fine_ms()) > limit_ms) track.rolled += fine_ms() > 0 ? -kRollOver_cycles : kRollOver_cycles;
  if (std::fabs(fine_ms()) > limit_ms) begin(true);
  cell.phase = InSteps(column, fine_ms());
  const std::int64_t lock_ms =
      std::max<std::int64_t>(epoch.time_ns - track.locked_since_ns, 0) / kMillisecond_ns;
  cell.lock = kind_ >= 6 ? Indicator10Bits(lock_ms) : Indicator4Bits(lock_ms);
  cell.half_cycle = (signal.loss_of_lock & kHalfCycle) != 0 ? 1 : 0;
}

}  // namespace orsolva_host::rtcm
