#include "host/rinex/navigation_records.h"

#include <cmath>

namespace orsolva_host {
namespace {

constexpr double kLargestInteger = 2147483647.0;

bool ToInteger(double value, std::int32_t& out) {
  if (!(std::fabs(value) <= kLargestInteger)) return false;
  out = static_cast<std::int32_t>(value);
  return true;
}

/// What the Keplerian records have at the same places: clock, orbit and prn.
template <typename Eph>
bool TakeKepler(const NavigationRecord& r, Eph& e) {
  e = {};
  e.prn = r.number;
  e.toc = r.time;
  e.af0 = r.v[0];
  e.af1 = r.v[1];
  e.af2 = r.v[2];
  e.crs = r.v[4];
  e.deln = r.v[5];
  e.M0 = r.v[6];
  e.cuc = r.v[7];
  e.e = r.v[8];
  e.cus = r.v[9];
  e.sqrtA = r.v[10];
  e.toes = r.v[11];
  e.cic = r.v[12];
  e.OMG0 = r.v[13];
  e.cis = r.v[14];
  e.i0 = r.v[15];
  e.crc = r.v[16];
  e.omg = r.v[17];
  e.OMGd = r.v[18];
  e.idot = r.v[19];
  e.ura = r.v[23];
  return ToInteger(r.v[3], e.iode) && ToInteger(r.v[21], e.week) && ToInteger(r.v[24], e.svh);
}

}  // namespace

bool ToGps(const NavigationRecord& record, GpsEph_gbt& eph) { return TakeKepler(record, eph); }

bool ToBds(const NavigationRecord& record, BdsEph_gbt& eph) {
  if (!TakeKepler(record, eph)) return false;
  eph.tgd1 = record.v[25];
  eph.tgd2 = record.v[26];
  return true;
}

bool ToGalileo(const NavigationRecord& record, GalEph_gbt& eph, std::int64_t& data_sources) {
  std::int32_t sources = 0;
  if (!TakeKepler(record, eph) || !ToInteger(record.v[20], sources)) return false;
  data_sources = sources;
  return true;
}

bool ToGlonass(const NavigationRecord& r, GloEph_gbt& e) {
  e = {};
  e.prn = r.number;
  e.toe = r.time;
  e.clock_bias = r.v[0];
  e.clock_rate = r.v[1];
  e.x = r.v[3];
  e.vx = r.v[4];
  e.ax = r.v[5];
  e.y = r.v[7];
  e.vy = r.v[8];
  e.ay = r.v[9];
  e.z = r.v[11];
  e.vz = r.v[12];
  e.az = r.v[13];
  if (!ToInteger(r.v[6], e.svh) || !ToInteger(r.v[10], e.frequency_channel)) return false;
  if (e.frequency_channel > 127 && e.frequency_channel < 256) e.frequency_channel -= 256;
  return true;
}

}  // namespace orsolva_host
