// Order of the values: RINEX 3.05, tables A6 to A14.
#include "host/simulator/navigation_writer.h"

#include <fmt/format.h>

#include <initializer_list>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/simulator/header_lines.h"

namespace orsolva_host {
namespace {

constexpr double kInav = 517;  // E1-B, E5b-I, clock for E1 and E5b
constexpr double kFitHours = 4;
constexpr double kGlonassAccuracyIndex = 2;

using Values = std::initializer_list<double>;

void BeginRecord(char letter, int number, const Time_gbt& time, Values values, std::string& out) {
  const CivilTime c = ToCivil(time);
  out += fmt::format("{} {:04} {:02} {:02} {:02} {:02} {:02}", SatelliteName(letter, number), c.year, c.month,
                     c.day, c.hour, c.minute, c.second);
  for (const double value : values) out += fmt::format("{:19.12E}", value);
  out += '\n';
}

void Line(Values values, std::string& out) {
  out += "    ";
  for (const double value : values) out += fmt::format("{:19.12E}", value);
  out += '\n';
}

/// @param codes   codes on L2, or data sources
/// @param delay1  group delay
/// @param delay2  second group delay, or the issue of the clock data
template <typename Eph>
void WriteKepler(char letter, const Eph& e, double codes, double delay1, double delay2, double fit,
                 std::string& out) {
  BeginRecord(letter, e.prn, e.toc, {e.af0, e.af1, e.af2}, out);
  Line({static_cast<double>(e.iode), e.crs, e.deln, e.M0}, out);
  Line({e.cuc, e.e, e.cus, e.sqrtA}, out);
  Line({e.toes, e.cic, e.OMG0, e.cis}, out);
  Line({e.i0, e.crc, e.omg, e.OMGd}, out);
  Line({e.idot, codes, static_cast<double>(e.week), 0.0}, out);
  Line({e.ura, static_cast<double>(e.svh), delay1, delay2}, out);
  Line({e.toes, fit}, out);
}

void WriteGlonass(const GloEph_gbt& e, std::string& out) {
  BeginRecord('R', e.prn, e.toe, {e.clock_bias, e.clock_rate, static_cast<double>(e.toe.time % 86400)}, out);
  Line({e.x, e.vx, e.ax, static_cast<double>(e.svh)}, out);
  Line({e.y, e.vy, e.ay, static_cast<double>(e.frequency_channel)}, out);
  Line({e.z, e.vz, e.az, 0.0}, out);
  Line({0.0, 0.0, kGlonassAccuracyIndex, 0.0}, out);
}

}  // namespace

std::string NavigationText(const NavigationSet& set, int leap_seconds) {
  std::string out = HeaderBegin("NAVIGATION DATA");
  out += HeaderLine(fmt::format("{:6}", leap_seconds), "LEAP SECONDS");
  out += HeaderLine("", "END OF HEADER");
  for (const GpsEph_gbt& e : set.gps) WriteKepler('G', e, 1, 0, e.iode, kFitHours, out);
  for (const GloEph_gbt& e : set.glonass) WriteGlonass(e, out);
  for (const GalEph_gbt& e : set.galileo) WriteKepler('E', e, kInav, 0, 0, 0, out);
  for (const GpsEph_gbt& e : set.qzss) WriteKepler('J', e, 2, 0, e.iode, 0, out);
  for (const BdsEph_gbt& e : set.bds) WriteKepler('C', e, 0, e.tgd1, e.tgd2, 0, out);
  return out;
}

}  // namespace orsolva_host
