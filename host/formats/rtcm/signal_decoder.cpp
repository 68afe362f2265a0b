#include "host/formats/rtcm/signal_decoder.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "host/formats/rtcm/msm_signals.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"

namespace orsolva_host::rtcm {
namespace {

// Ranges of MSM in steps of 2^-31 ms, the finest of any field: sums of them are exact.
constexpr int kStepsPerMillisecond = 31;
constexpr double kStep_ms = Power2(-kStepsPerMillisecond);
constexpr std::int64_t kInvalidRough_ms = 255;
constexpr std::int64_t kLongestCompletion_ns = 100 * kNanosecondsPerSecond;
constexpr int kUnknownChannel = 14;  // DF419: 14 is reserved, 15 not known

/// The column of a field in messages of a kind; null when it has none.
template <class Row>
const MsmColumn<Row>* ColumnOf(std::span<const MsmColumn<Row>> columns, int kind, std::int32_t Row::*member) {
  for (const MsmColumn<Row>& column : columns) {
    if (column.member == member && column.In(kind)) return &column;
  }
  return nullptr;
}

/// The columns that observations are made of.
struct KindColumns {
  explicit KindColumns(int kind)
      : range(ColumnOf(MsmCellColumns(), kind, &MsmCell::range)),
        phase(ColumnOf(MsmCellColumns(), kind, &MsmCell::phase)),
        strength(ColumnOf(MsmCellColumns(), kind, &MsmCell::strength)),
        rate(ColumnOf(MsmCellColumns(), kind, &MsmCell::rate)),
        rough_rate(ColumnOf(MsmSatelliteColumns(), kind, &MsmSatellite::rough_rate)) {}

  const MsmColumn<MsmCell>* range;
  const MsmColumn<MsmCell>* phase;
  const MsmColumn<MsmCell>* strength;
  const MsmColumn<MsmCell>* rate;
  const MsmColumn<MsmSatellite>* rough_rate;
};

/// @param kind  1 to 7
const KindColumns& ColumnsOf(int kind) {
  static const std::array<KindColumns, 8> columns = {KindColumns(0), KindColumns(1), KindColumns(2),
                                                     KindColumns(3), KindColumns(4), KindColumns(5),
                                                     KindColumns(6), KindColumns(7)};
  return columns[static_cast<std::size_t>(kind)];
}

/// The value of a field in its unit; absent when the kind has none or it is marked invalid.
template <class Row>
std::optional<double> Scaled(const MsmColumn<Row>* column, const Row& row) {
  if (column == nullptr || row.*column->member == column->invalid) return std::nullopt;
  return row.*column->member * column->scale;
}

/// A field of range or phase in steps of 2^-31 ms.
std::optional<std::int64_t> Steps(const MsmColumn<MsmCell>* column, const MsmCell& cell) {
  const std::optional<double> milliseconds = Scaled(column, cell);
  if (!milliseconds) return std::nullopt;
  return static_cast<std::int64_t>(*milliseconds / kStep_ms);
}

}  // namespace

void SignalDecoder::TakeChannel(int glonass_number, int channel) {
  if (glonass_number < 1 || glonass_number >= static_cast<int>(channels_.size())) return;
  if (channel >= -7 && channel <= 13) channels_[static_cast<std::size_t>(glonass_number)] = channel;
}

std::optional<int> SignalDecoder::ChannelOf(int glonass_number) const {
  if (glonass_number < 1 || glonass_number >= static_cast<int>(channels_.size())) return std::nullopt;
  return channels_[static_cast<std::size_t>(glonass_number)];
}

double SignalDecoder::CarrierOf(SatelliteId id, SignalCode code) const {
  if (id.system != 'R') return CarrierFrequency(id.system, code.band, 0);
  const std::optional<int> channel = ChannelOf(id.number);
  return channel ? CarrierFrequency('R', code.band, *channel) : 0;
}

std::optional<double> SignalDecoder::Completed(SatelliteId id, double part_m, double modulus_m,
                                               std::int64_t time_ns) {
  const auto known = ranges_.find(id);
  if (known == ranges_.end() || std::llabs(time_ns - known->second.time_ns) > kLongestCompletion_ns) {
    ++counts_.ranges_in_parts;
    return std::nullopt;
  }
  const double whole = std::round((known->second.range_m - part_m) / modulus_m) * modulus_m + part_m;
  Keep(id, whole, time_ns);
  return whole;
}

/// Steps of the rough range; absent when it is invalid or only known modulo 1 ms.
std::optional<std::int64_t> SignalDecoder::RoughRange(const MsmMessage& message,
                                                      const MsmSatellite& satellite, SatelliteId id,
                                                      std::int64_t time_ns) {
  const std::int64_t part = std::int64_t{satellite.rough_part} << (kStepsPerMillisecond - 10);
  std::int64_t whole_ms = satellite.rough_ms;
  if (message.type.kind <= 3) {
    const double part_m = static_cast<double>(part) * kStep_ms * kLightMillisecond_m;
    const std::optional<double> range = Completed(id, part_m, kLightMillisecond_m, time_ns);
    if (!range) return std::nullopt;
    whole_ms = std::llround((*range - part_m) / kLightMillisecond_m);
  } else if (whole_ms == kInvalidRough_ms) {
    return std::nullopt;
  }
  const std::int64_t rough = (whole_ms << kStepsPerMillisecond) + part;
  Keep(id, static_cast<double>(rough) * kStep_ms * kLightMillisecond_m, time_ns);
  return rough;
}

void SignalDecoder::Decode(const MsmMessage& message, EpochPart& part) {
  std::size_t next = 0;
  for (std::size_t i = 0; i < message.satellites.size(); ++i) AddCells(message, i, part, next);
}

void SignalDecoder::AddCells(const MsmMessage& message, std::size_t satellite, EpochPart& part,
                             std::size_t& next) {
  const MsmSatellite& row = message.satellites[satellite];
  const char system = message.type.system;
  const std::optional<SatelliteId> id = MsmSatelliteAt(system, row.number);
  const bool extended = message.type.kind == 5 || message.type.kind == 7;
  if (!id) ++counts_.unknown_satellites;
  if (id && system == 'R' && extended && row.extended < kUnknownChannel) {
    TakeChannel(id->number, row.extended - kChannelOffset);
  }
  const std::optional<std::int64_t> rough =
      id ? RoughRange(message, row, *id, part.time_ns) : std::optional<std::int64_t>();
  for (; next < message.cells.size(); ++next) {
    const MsmCell& cell = message.cells[next];
    if (cell.satellite != static_cast<int>(satellite)) break;
    const std::optional<SignalCode> code = MsmSignal(system, cell.signal);
    if (!code) ++counts_.unknown_signals;
    if (!id || !code) continue;
    const ReceivedSignal signal = SignalOf(message, cell, *id, *code, rough);
    if (HasValue(signal.observation)) part.signals.push_back(signal);
  }
}

ReceivedSignal SignalDecoder::SignalOf(const MsmMessage& message, const MsmCell& cell, SatelliteId id,
                                       SignalCode code, std::optional<std::int64_t> rough) {
  const int kind = message.type.kind;
  const KindColumns& columns = ColumnsOf(kind);
  ReceivedSignal signal;
  signal.satellite = id;
  signal.family = kind >= 6 ? Family::kFineMsm : Family::kCoarseMsm;
  signal.carrier_hz = CarrierOf(id, code);
  signal.lock = kind >= 6 ? LockTimeOf10Bits(cell.lock) : LockTimeOf4Bits(cell.lock);
  SignalObservation& o = signal.observation;
  o.code = code;
  const std::optional<std::int64_t> range = Steps(columns.range, cell);
  const std::optional<std::int64_t> phase = Steps(columns.phase, cell);
  if (rough && range) o.pseudorange_m = static_cast<double>(*rough + *range) * kStep_ms * kLightMillisecond_m;
  if (rough && phase && signal.carrier_hz > 0) {
    o.phase_cycles = static_cast<double>(*rough + *phase) * kStep_ms * (signal.carrier_hz / 1000);
    if (cell.half_cycle != 0) o.loss_of_lock |= kHalfCycle;
  }
  if (phase && signal.carrier_hz == 0) ++counts_.phases_without_channel;
  const MsmSatellite& satellite = message.satellites[static_cast<std::size_t>(cell.satellite)];
  const auto rough_rate = Scaled(columns.rough_rate, satellite);
  const auto rate = Scaled(columns.rate, cell);
  // A range that grows lowers the frequency.
  if (rough_rate && rate && signal.carrier_hz > 0) {
    o.doppler_hz = -(*rough_rate + *rate) * (signal.carrier_hz / kLightSpeed_m_s);
  }
  o.snr_dbhz = Scaled(columns.strength, cell).value_or(kAbsent);
  return signal;
}

}  // namespace orsolva_host::rtcm
