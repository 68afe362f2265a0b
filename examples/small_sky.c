/* Notation: a semi-major axis (m), u argument of latitude, i inclination, omega longitude of the ascending
 * node (all rad). Frames: Earth-fixed at the time named. Orbits as in IS-GPS-200, table 20-IV, with e = 0. */
#include "small_sky.h"

#include <math.h>
#include <string.h>

static const double kPi = 3.14159265358979323846;
static const double kSpeedOfLight = 299792458.0;  /* m/s */
static const double kGravity = 3.986005e14;       /* m^3/s^2, WGS 84 as broadcast */
static const double kEarthRate = 7.2921151467e-5; /* rad/s */
static const double kSqrtA = 5153.6;              /* m^0.5 */
static const double kInclination = 0.96;
static const double kWavelength[2] = {0.19029367279836487, 0.24421021342456825}; /* L1, L2 in m */
static const int kWeek = 2200;
static const int64_t kWeekStart = 315964800 + (int64_t)2200 * 604800; /* s since 1970, GPS time */

const double small_sky_station_m[3] = {3582105.0, 532589.0, 5232754.0};

static double mean_motion(void) { return sqrt(kGravity) / pow(kSqrtA, 3); }
static double node_at_week_start(int prn) { return (prn - 1) % 6 * kPi / 3.0; }
static double latitude_at_week_start(int prn) { return (prn - 1) / 6 * kPi / 2.0 + (prn - 1) % 6 * 0.4; }

static GpsEph_gbt record_of(int prn, double toe_s) {
  GpsEph_gbt record;
  memset(&record, 0, sizeof record);
  record.prn = prn;
  record.week = kWeek;
  record.toes = toe_s;
  record.toc.time = kWeekStart + (int64_t)toe_s;
  record.sqrtA = kSqrtA;
  record.i0 = kInclination;
  record.OMG0 = node_at_week_start(prn);
  record.M0 = latitude_at_week_start(prn) + mean_motion() * toe_s;
  record.ura = 2.0;
  return record;
}

void small_sky_navigation(GpsEph_gbt* records) {
  int k;
  for (k = 0; k < SMALL_SKY_RECORDS; ++k) {
    records[k] = record_of(k % SMALL_SKY_SATELLITES + 1, k / SMALL_SKY_SATELLITES * 7200.0);
  }
}

/* Position at `sent_s` of the week, in the frame `flight_s` later, when the signal arrives. */
static void satellite_position(int prn, double sent_s, double flight_s, double xyz[3]) {
  const double a = kSqrtA * kSqrtA;
  const double u = latitude_at_week_start(prn) + mean_motion() * sent_s;
  const double node = node_at_week_start(prn) - kEarthRate * (sent_s + flight_s);
  const double x = a * cos(u), y = a * sin(u);
  xyz[0] = x * cos(node) - y * cos(kInclination) * sin(node);
  xyz[1] = x * sin(node) + y * cos(kInclination) * cos(node);
  xyz[2] = y * sin(kInclination);
}

/* Distance the signal travelled; the elevation above the geocentric horizon goes to `elevation_rad`. */
static double range_to(int prn, double received_s, double* elevation_rad) {
  double xyz[3], range = 2.3e7, up = 0.0, height = 0.0;
  int pass, i;
  for (pass = 0; pass < 4; ++pass) {
    const double flight_s = range / kSpeedOfLight;
    double squared = 0.0;
    satellite_position(prn, received_s - flight_s, flight_s, xyz);
    for (i = 0; i < 3; ++i) squared += (xyz[i] - small_sky_station_m[i]) * (xyz[i] - small_sky_station_m[i]);
    range = sqrt(squared);
  }
  for (i = 0; i < 3; ++i) {
    up += (xyz[i] - small_sky_station_m[i]) * small_sky_station_m[i];
    height += small_sky_station_m[i] * small_sky_station_m[i];
  }
  *elevation_rad = asin(up / (range * sqrt(height)));
  return range;
}

/* Half a metre of slowly changing code error stands for multipath. */
static Signal_QC_gbt signal_of(uint8_t code, double wavelength_m, double range_m, double elevation_rad) {
  Signal_QC_gbt signal;
  memset(&signal, 0, sizeof signal);
  signal.code = code;
  signal.pseudorange = range_m + 0.5 * sin(range_m / 1000.0 + code);
  signal.phase = range_m / wavelength_m + 1000.0 * code;
  signal.snr = (float)(35.0 + 15.0 * sin(elevation_rad));
  return signal;
}

void small_sky_epoch(int index, ObsEpoch_QC_gbt* epoch) {
  const double time_s = (double)index * SMALL_SKY_INTERVAL_S;
  int prn;
  memset(epoch, 0, sizeof *epoch);
  epoch->time.time = kWeekStart + (int64_t)index * SMALL_SKY_INTERVAL_S;
  for (prn = 1; prn <= SMALL_SKY_SATELLITES; ++prn) {
    double elevation_rad = 0.0;
    const double range_m = range_to(prn, time_s, &elevation_rad);
    Satellite_gbt* satellite = &epoch->sats[epoch->sat_num];
    if (elevation_rad < 5.0 * kPi / 180.0) continue;
    ++epoch->sat_num;
    satellite->sys = ORSOLVA_GPS;
    satellite->prn = prn;
    satellite->signal_num = 2;
    satellite->signals[0] = signal_of(ORSOLVA_GPS_1C, kWavelength[0], range_m, elevation_rad);
    satellite->signals[1] = signal_of(ORSOLVA_GPS_2W, kWavelength[1], range_m, elevation_rad);
  }
}
