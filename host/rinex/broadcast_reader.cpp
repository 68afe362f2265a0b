#include "host/rinex/broadcast_reader.h"

#include <cmath>

#include "host/rinex/time_scales.h"

namespace orsolva_host {
namespace {

constexpr double kWeek_s = 604800;
constexpr double kMetresPerKilometre = 1000;
constexpr int kInavSources = 1 | 4;
constexpr int kFnavSource = 2;

double SecondsOf(const Time_gbt& time) { return static_cast<double>(time.time) + time.sec; }

/// The time with the second of week that lies nearest to a time of the same scale. Weeks of files are not
/// needed.
double NearestWithSecondOfWeek(double near_s, double second_of_week) {
  constexpr double kGpsTimeBegins_s =
      315964800;  // 1980-01-06, a Sunday, as are the beginnings of other scales' weeks
  const double of_week = std::fmod(near_s - kGpsTimeBegins_s, kWeek_s);
  double off = second_of_week - of_week;
  if (off > kWeek_s / 2) off -= kWeek_s;
  if (off < -kWeek_s / 2) off += kWeek_s;
  return near_s + off;
}

bool IsSecondMessage(const NavigationRecord& r, std::string_view message) {
  if (r.letter != 'E') return false;
  if (message == "FNAV") return true;
  const double sources = r.v[20];
  if (!(sources >= 0 && sources < 65536)) return false;
  const int bits = static_cast<int>(sources);
  return (bits & kFnavSource) != 0 && (bits & kInavSources) == 0;
}

KeplerRecord KeplerOf(const NavigationRecord& r, std::string_view message) {
  KeplerRecord k;
  k.satellite = {r.letter, static_cast<std::uint8_t>(r.number)};
  const double shift_s = r.letter == 'C' ? kBdsTimeBehindGps_s : 0;
  k.toc_s = SecondsOf(r.time) + shift_s;
  k.toe_s = NearestWithSecondOfWeek(SecondsOf(r.time), r.v[11]) + shift_s;
  k.af0 = r.v[0], k.af1 = r.v[1], k.af2 = r.v[2];
  k.crs = r.v[4], k.delta_n = r.v[5], k.m0 = r.v[6];
  k.cuc = r.v[7], k.eccentricity = r.v[8], k.cus = r.v[9], k.sqrt_a = r.v[10];
  k.toe_of_week_s = r.v[11], k.cic = r.v[12], k.omega0 = r.v[13], k.cis = r.v[14];
  k.i0 = r.v[15], k.crc = r.v[16], k.omega = r.v[17], k.omega_dot = r.v[18];
  k.idot = r.v[19];
  k.unhealthy = r.v[24] != 0;
  if (r.letter == 'C' && std::isfinite(r.v[25])) k.group_delay_s = r.v[25];
  k.second_message = IsSecondMessage(r, message);
  return k;
}

StateVectorRecord StateVectorOf(const NavigationRecord& r) {
  StateVectorRecord s;
  s.satellite = {r.letter, static_cast<std::uint8_t>(r.number)};
  s.toe_s = SecondsOf(r.time) + (r.letter == 'R' ? LeapSecondsAt(r.time) : 0);
  s.clock_bias_s = r.v[0];
  s.clock_rate = r.v[1];
  for (std::size_t axis = 0; axis < 3; ++axis) {
    s.position_m[axis] = r.v[3 + 4 * axis] * kMetresPerKilometre;
    s.velocity_m_s[axis] = r.v[4 + 4 * axis] * kMetresPerKilometre;
    s.acceleration_m_s2[axis] = r.v[5 + 4 * axis] * kMetresPerKilometre;
  }
  s.unhealthy = r.v[6] != 0;
  const double channel = r.v[10] > 127 ? r.v[10] - 256 : r.v[10];
  if (r.letter == 'R' && channel >= -7 && channel <= 13) s.channel = static_cast<int>(channel);
  return s;
}

}  // namespace

void AddBroadcast(const NavigationRecord& record, std::string_view message, BroadcastRecords& records) {
  if (IsStateVector(record.letter)) {
    records.state_vectors.push_back(StateVectorOf(record));
  } else {
    records.kepler.push_back(KeplerOf(record, message));
  }
}

}  // namespace orsolva_host
