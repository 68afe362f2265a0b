#include "host/formats/rtcm/ephemeris.h"

#include <cmath>

namespace orsolva_host::rtcm {
namespace {

using namespace term;

constexpr double kSemicircle_rad = 3.1415926535898;  // IS-GPS-200, 20.3.3.4.3
constexpr double kMetresPerKilometre = 1000;
constexpr std::int64_t kTbStep_s = 900;

struct Numbers {
  int message;
  char system;
  int highest;
};

constexpr Numbers kNumbers[] = {{1019, 'G', 32}, {1020, 'R', 63}, {1041, 'I', 14}, {1042, 'C', 63},
                                {1044, 'J', 10}, {1045, 'E', 36}, {1046, 'E', 36}};

/// Plain members of a Keplerian record and the fields they come from.
struct Member {
  double KeplerRecord::*member;
  Ephemeris name;
  double unit;  ///< of the record, in that of the field
};

constexpr Member kMembers[] = {
    {&KeplerRecord::af0, kAf0, 1},
    {&KeplerRecord::af1, kAf1, 1},
    {&KeplerRecord::af2, kAf2, 1},
    {&KeplerRecord::sqrt_a, kSqrtA, 1},
    {&KeplerRecord::eccentricity, kEccentricity, 1},
    {&KeplerRecord::m0, kM0, kSemicircle_rad},
    {&KeplerRecord::delta_n, kDeltaN, kSemicircle_rad},
    {&KeplerRecord::omega0, kOmega0, kSemicircle_rad},
    {&KeplerRecord::omega_dot, kOmegaDot, kSemicircle_rad},
    {&KeplerRecord::i0, kI0, kSemicircle_rad},
    {&KeplerRecord::idot, kIdot, kSemicircle_rad},
    {&KeplerRecord::omega, kOmega, kSemicircle_rad},
    {&KeplerRecord::cuc, kCuc, 1},
    {&KeplerRecord::cus, kCus, 1},
    {&KeplerRecord::cic, kCic, 1},
    {&KeplerRecord::cis, kCis, 1},
    {&KeplerRecord::crc, kCrc, 1},
    {&KeplerRecord::crs, kCrs, 1},
};

constexpr Ephemeris kPosition[] = {kPositionX, kPositionY, kPositionZ};
constexpr Ephemeris kVelocity[] = {kVelocityX, kVelocityY, kVelocityZ};
constexpr Ephemeris kAcceleration[] = {kAccelerationX, kAccelerationY, kAccelerationZ};

const FieldRow* RowOf(int message, Ephemeris name) {
  for (const FieldRow& row : EphemerisRows(message)) {
    if (row.term == name) return &row;
  }
  return nullptr;
}

/// Seconds of the week that a field of reference time gives.
std::int64_t SecondsOf(const EphemerisMessage& e, Ephemeris name) {
  return static_cast<std::int64_t>(e.Scaled(name));
}

void Store(EphemerisMessage& e, Ephemeris name, double value) {
  const FieldRow* row = RowOf(e.message, name);
  if (row != nullptr) e.values[name] = std::llround(value / row->scale);
}

bool IsHealthy(const EphemerisMessage& e) {
  return e.values[kHealth] == 0 && e.values[kHealth2] == 0 && e.values[kDataInvalid] == 0 &&
         e.values[kDataInvalid2] == 0;
}

double SecondsOfNanoseconds(std::int64_t time_ns) {
  return static_cast<double>(time_ns / kNanosecondsPerSecond);  // reference times are whole seconds
}

}  // namespace

double EphemerisMessage::Scaled(Ephemeris name) const {
  const FieldRow* row = RowOf(message, name);
  return row == nullptr ? 0 : static_cast<double>(values[name]) * row->scale;
}

std::optional<EphemerisMessage> ReadEphemeris(std::string_view message) {
  BitReader type(message);
  EphemerisMessage e;
  e.message = static_cast<int>(type.Unsigned(12));
  const std::span<const FieldRow> rows = EphemerisRows(e.message);
  BitReader bits(message);
  ReadFields(bits, rows, e.values);
  if (rows.empty() || bits.Overrun()) return std::nullopt;
  return e;
}

std::string WriteEphemeris(const EphemerisMessage& ephemeris) {
  EphemerisMessage e = ephemeris;
  e.values[kMessage] = e.message;
  BitWriter bits;
  WriteFields(bits, EphemerisRows(e.message), e.values);
  return bits.Bytes();
}

std::optional<SatelliteId> SatelliteOf(const EphemerisMessage& e) {
  for (const Numbers& row : kNumbers) {
    if (row.message != e.message) continue;
    const std::int64_t number = e.values[kSatellite];
    if (number < 1 || number > row.highest) return std::nullopt;
    return SatelliteId{row.system, static_cast<std::uint8_t>(number)};
  }
  return std::nullopt;
}

bool TakeDate(const EphemerisMessage& e, StreamClock& clock) {
  const int week = static_cast<int>(e.values[kWeek]);
  switch (e.message) {
    case 1020:
      // Satellites before GLONASS-M send neither.
      if (e.values[kN4] == 0 || e.values[kNt] == 0) return true;
      return clock.TakeGlonassDate(static_cast<int>(e.values[kN4]), static_cast<int>(e.values[kNt]),
                                   e.values[kTb] * kTbStep_s);
    case 1042:
      return clock.TakeBdsWeek(week, SecondsOf(e, kToe));
    case 1045:
    case 1046:
      return clock.TakeGalileoWeek(week, SecondsOf(e, kToe));
    default:
      return clock.TakeGpsWeek(week, SecondsOf(e, kToe));
  }
}

std::optional<KeplerRecord> KeplerOf(const EphemerisMessage& e, const StreamClock& clock) {
  const std::optional<SatelliteId> satellite = SatelliteOf(e);
  const std::int64_t toe_of_week = SecondsOf(e, kToe);
  const std::int64_t toc_of_week = SecondsOf(e, kToc);
  if (!satellite || IsStateVector(e) || toe_of_week >= kWeek_s || toc_of_week >= kWeek_s) return std::nullopt;
  KeplerRecord k;
  for (const Member& m : kMembers) k.*m.member = e.Scaled(m.name) * m.unit;
  k.satellite = *satellite;
  const bool bds = satellite->system == 'C';
  k.toe_s = SecondsOfNanoseconds(bds ? clock.NearestBds(toe_of_week) : clock.NearestGps(toe_of_week));
  k.toc_s = SecondsOfNanoseconds(bds ? clock.NearestBds(toc_of_week) : clock.NearestGps(toc_of_week));
  k.toe_of_week_s = static_cast<double>(toe_of_week);
  if (bds) k.group_delay_s = e.Scaled(kGroupDelay1);
  k.unhealthy = !IsHealthy(e);
  k.second_message = e.message == 1045;
  return k;
}

std::optional<StateVectorRecord> StateVectorOf(const EphemerisMessage& e, const StreamClock& clock) {
  const std::optional<SatelliteId> satellite = SatelliteOf(e);
  const std::int64_t second_of_day = e.values[kTb] * kTbStep_s;
  if (!satellite || !IsStateVector(e) || second_of_day > kDay_s) return std::nullopt;
  StateVectorRecord s;
  s.satellite = *satellite;
  s.toe_s = SecondsOfNanoseconds(clock.NearestGlonass(second_of_day));
  s.clock_bias_s = -e.Scaled(kTau);
  s.clock_rate = e.Scaled(kGamma);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    s.position_m[axis] = e.Scaled(kPosition[axis]) * kMetresPerKilometre;
    s.velocity_m_s[axis] = e.Scaled(kVelocity[axis]) * kMetresPerKilometre;
    s.acceleration_m_s2[axis] = e.Scaled(kAcceleration[axis]) * kMetresPerKilometre;
  }
  s.unhealthy = e.values[kHealthMsb] != 0;
  const auto channel = static_cast<int>(e.values[kChannel]) - kChannelOffset;
  if (channel <= 13) s.channel = channel;
  return s;
}

EphemerisMessage MessageOf(const KeplerRecord& record, int message) {
  EphemerisMessage e;
  e.message = message;
  e.values[kMessage] = message;
  e.values[kSatellite] = record.satellite.number;
  for (const Member& m : kMembers) Store(e, m.name, record.*m.member / m.unit);
  const std::int64_t shift_s = message == 1042 ? kBdsBehindGps_s : 0;
  const std::int64_t toe_s = std::llround(record.toe_s) - kGpsBegins_s - shift_s;
  const std::int64_t toc_s = std::llround(record.toc_s) - kGpsBegins_s - shift_s;
  const std::int64_t week = toe_s / kWeek_s;
  Store(e, kToe, static_cast<double>(toe_s % kWeek_s));
  Store(e, kToc, static_cast<double>(toc_s % kWeek_s));
  const bool galileo = message == 1045 || message == 1046;
  e.values[kWeek] = message == 1042 ? (week - kBdsWeekOffset) % 8192
                    : galileo       ? (week - kGalileoWeekOffset) % 4096
                                    : week % 1024;
  e.values[kHealth] = record.unhealthy ? 1 : 0;
  if (message == 1042) Store(e, kGroupDelay1, record.group_delay_s);
  return e;
}

EphemerisMessage MessageOf(const StateVectorRecord& record) {
  EphemerisMessage e;
  e.message = 1020;
  e.values[kMessage] = e.message;
  e.values[kSatellite] = record.satellite.number;
  e.values[kChannel] = record.channel.value_or(0) + kChannelOffset;
  const std::int64_t gps_s = std::llround(record.toe_s);
  const std::int64_t moscow_s = gps_s - LeapSecondsAtGps(gps_s) + kMoscowAheadOfUtc_s;
  constexpr std::int64_t k1996_s = 820454400;  // 1996-01-01
  const std::int64_t days = (moscow_s - k1996_s) / kDay_s;
  e.values[kTb] = moscow_s % kDay_s / kTbStep_s;
  e.values[kN4] = days / 1461 + 1;
  e.values[kNt] = days % 1461 + 1;
  e.values[term::kM] = 1;
  e.values[kHealthMsb] = record.unhealthy ? 1 : 0;
  Store(e, kTau, -record.clock_bias_s);
  Store(e, kGamma, record.clock_rate);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    Store(e, kPosition[axis], record.position_m[axis] / kMetresPerKilometre);
    Store(e, kVelocity[axis], record.velocity_m_s[axis] / kMetresPerKilometre);
    Store(e, kAcceleration[axis], record.acceleration_m_s2[axis] / kMetresPerKilometre);
  }
  return e;
}

}  // namespace orsolva_host::rtcm
