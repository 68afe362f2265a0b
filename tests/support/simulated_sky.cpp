#include "tests/support/simulated_sky.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "navigation/ephemerides/ephemeris.h"
#include "navigation/orbits/geometry.h"
#include "tests/support/sky/kepler_record.h"
#include "toolkit/signals.h"

namespace orsolva_test {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::Ephemeris;
using gnssqctoolkit::SatelliteId;
using gnssqctoolkit::SatelliteState;

constexpr double kPi = 3.14159265358979323846;
constexpr double kLight = 299792458.0;
constexpr double kGm = 3.986004418e14;
constexpr double kEarthRate = 7.2921151467e-5;
constexpr std::int64_t kGpsEpoch = 315964800;   // 1980-01-06
constexpr std::int64_t kBdsEpoch = 1136073600;  // 2006-01-01
constexpr std::int64_t kWeek = 604800;

struct Orbit {
  double a, e, i, node, perigee, anomaly;  // m, rad; node in the frame of the week's start, anomaly at `from`
};

double MeanMotion(const Orbit& orbit) { return std::sqrt(kGm / (orbit.a * orbit.a * orbit.a)); }

/// A record at `reference` of an orbit whose anomaly is given at `from`.
/// @param week, week_start  of the record's time scale
template <class Record>
Record RecordOf(int prn, const Orbit& orbit, std::int64_t reference, std::int64_t week,
                std::int64_t week_start, std::int64_t from) {
  const double anomaly =
      std::remainder(orbit.anomaly + MeanMotion(orbit) * static_cast<double>(reference - from), 2 * kPi);
  auto record = KeplerRecord<Record>(
      prn, {std::sqrt(orbit.a), orbit.e, orbit.i, orbit.node, orbit.perigee, anomaly},
      {reference, static_cast<std::int32_t>(week), static_cast<double>(reference - week_start)},
      1e-5 * (prn % 9 - 4));
  record.af1 = 1e-12 * (prn % 5 - 2);
  record.iode = static_cast<std::int32_t>(reference / 600 % 1000);
  return record;
}

/// State vector of a circular GLONASS orbit at a UTC time.
GloEph_gbt GlonassRecord(int slot, const Orbit& orbit, std::int64_t utc, std::int64_t week_start,
                         std::int64_t from) {
  const double n = MeanMotion(orbit);
  const double u = orbit.anomaly + n * static_cast<double>(utc - from);
  const double node = orbit.node - 7.292115e-5 * static_cast<double>(utc - week_start);
  const double c = std::cos(node), s = std::sin(node), ci = std::cos(orbit.i), si = std::sin(orbit.i);
  const double x = orbit.a * std::cos(u), y = orbit.a * std::sin(u);
  const double vx = -n * y, vy = n * x;
  const double px = x * c - y * ci * s, py = x * s + y * ci * c, pz = y * si;
  GloEph_gbt record{};
  record.prn = slot;
  record.toe = {utc, 0.0};
  record.clock_bias = 1e-6 * (slot - 12);
  record.x = px / 1000;
  record.y = py / 1000;
  record.z = pz / 1000;
  record.vx = (vx * c - vy * ci * s + 7.292115e-5 * py) / 1000;
  record.vy = (vx * s + vy * ci * c - 7.292115e-5 * px) / 1000;
  record.vz = vy * si / 1000;
  record.frequency_channel = slot % 14 - 7;
  return record;
}

/// Records of a walker-like constellation of `count` satellites in `planes` planes.
Orbit Walker(int k, int count, int planes, double a, double inclination) {
  const int per_plane = std::max(1, count / planes);
  const int plane = k % planes;
  const double anomaly = 2 * kPi * (k / planes) / per_plane + 2 * kPi * plane / count;
  return {a, 0.002 + 0.0005 * (k % 7), inclination, 2 * kPi * plane / planes, 0.3 * k, anomaly};
}

void AddRecords(NavigationSet& set, std::int64_t start, std::int64_t end) {
  const std::int64_t week = (start - kGpsEpoch) / kWeek;
  const std::int64_t week_start = kGpsEpoch + week * kWeek;
  const std::int64_t bds_week = (start - kBdsEpoch) / kWeek;
  const std::int64_t bds_start = kBdsEpoch + bds_week * kWeek;
  const auto reference_times = [&](std::int64_t step) {
    std::vector<std::int64_t> times;
    for (std::int64_t t = (start - step) / step * step; t <= end + 2 * step; t += step) times.push_back(t);
    return times;
  };
  for (const std::int64_t t : reference_times(7200)) {
    for (int k = 0; k < 30; ++k) {
      set.Gps.push_back(
          RecordOf<GpsEph_gbt>(k + 1, Walker(k, 30, 6, 26559710.0, 0.9599), t, week, week_start, start));
    }
    for (int k = 0; k < 4; ++k) {
      const Orbit orbit{42164170.0, 0.075, 0.715, 2.4 + 1.57 * k, 4.712, 1.6 - 1.57 * k};
      set.Qzss.push_back(RecordOf<GpsEph_gbt>(k + 1, orbit, t, week, week_start, start));
    }
  }
  static const int medium[] = {11, 12, 14, 18, 19, 20, 21, 22, 23, 24, 25, 26,
                               27, 28, 29, 30, 32, 33, 34, 35, 36, 37, 41, 42};
  for (const std::int64_t t : reference_times(3600)) {
    const auto add = [&](int prn, const Orbit& orbit, int type) {
      auto record = RecordOf<BdsEph_gbt>(prn, orbit, t, bds_week, bds_start, start);
      record.orbit_type = static_cast<std::uint8_t>(type);
      set.Bds.push_back(record);
    };
    for (int k = 0; k < 24; ++k) add(medium[k], Walker(k, 24, 3, 27906100.0, 0.9599), 0);
    static const int geostationary[] = {1, 2, 3, 60};
    for (int k = 0; k < 4; ++k) {
      const double node = 0.2 + 0.7 * k + kEarthRate * static_cast<double>(start - bds_start);
      add(geostationary[k], {42164170.0, 0.0002, 0.01, node, 0.0, 0.0}, 0);
    }
    for (int k = 0; k < 3; ++k) add(6 + k, {42164170.0, 0.003, 0.96, 2.1 * k, 3.0, 4.2 * k}, 0);
  }
  for (const std::int64_t t : reference_times(3600)) {
    for (int k = 0; k < 24; ++k) {
      set.Galileo.push_back(
          RecordOf<GalEph_gbt>(k + 1, Walker(k, 24, 3, 29600300.0, 0.9774), t, week, week_start, start));
    }
  }
  for (const std::int64_t t : reference_times(1800)) {
    for (int k = 0; k < 24; ++k) {
      set.Glonass.push_back(GlonassRecord(k + 1, Walker(k, 24, 3, 25508200.0, 1.131), t, week_start, start));
    }
  }
}

Ephemeris Stores(const NavigationSet& set) {
  Ephemeris stores;
  for (const auto& record : set.Gps) stores.Gps().Add(record);
  for (const auto& record : set.Glonass) stores.Glonass().Add(record);
  for (const auto& record : set.Bds) stores.Bds().Add(record);
  for (const auto& record : set.Galileo) stores.Galileo().Add(record);
  for (const auto& record : set.Qzss) stores.Qzss().Add(record);
  stores.UpdateGlonassChannels();
  return stores;
}

std::vector<int> Codes(const SatelliteId& satellite) {
  switch (satellite.system) {
    case gnssqctoolkit::kGps:
      return {1, 16, 22};
    case gnssqctoolkit::kGlonass:
      return {30, 36};
    case gnssqctoolkit::kBds:
      return satellite.prn < 18 ? std::vector<int>{150, 164, 173} : std::vector<int>{150, 173, 154, 162};
    case gnssqctoolkit::kGalileo:
      return {62, 66, 69, 76};
    default:
      return {120, 128, 131};
  }
}

/// Normal deviates from the raw generator: the standard distributions differ between libraries.
double Normal(std::mt19937& random) {
  double sum = 0.0;
  for (int i = 0; i < 12; ++i) sum += random() / 4294967296.0;
  return sum - 6.0;
}

}  // namespace

class SkyStream::Observer {
 public:
  Observer(const SkyOptions& options, const NavigationSet& set) : options_(options), random_(options.Seed) {
    stores_ = std::make_unique<Ephemeris>(Stores(set));
    receiver_ = gnssqctoolkit::EcefToGeodetic(options.Station);
    const auto collect = [&](int system, const auto& records) {
      for (const auto& record : records) {
        const SatelliteId id{static_cast<std::uint8_t>(system), record.prn};
        if (std::none_of(satellites_.begin(), satellites_.end(),
                         [&](const SatelliteId& s) { return s.system == id.system && s.prn == id.prn; })) {
          satellites_.push_back(id);
        }
      }
    };
    collect(1, set.Gps);
    collect(2, set.Glonass);
    collect(4, set.Bds);
    collect(8, set.Galileo);
    collect(16, set.Qzss);
  }

  ObsEpoch_QC_gbt Observe(double seconds) {
    ObsEpoch_QC_gbt epoch{};
    const double whole = std::floor(seconds);
    epoch.time = {options_.Start + static_cast<std::int64_t>(whole), seconds - whole};
    for (const SatelliteId& satellite : satellites_) {
      const bool room = epoch.sat_num < static_cast<std::uint32_t>(std::min(options_.MostSatellites, 80));
      if (room && Observe(satellite, epoch.time, epoch.sats[epoch.sat_num])) ++epoch.sat_num;
    }
    return epoch;
  }

 private:
  bool Observe(const SatelliteId& satellite, const Time_gbt& time, Satellite_gbt& out) {
    const AbsoluteTime reception{time.time, time.sec};
    double range = 2.4e7, pseudorange = 2.4e7, elevation = -1.0;
    SatelliteState state;
    for (int k = 0; k < 4; ++k) {
      if (!stores_->SatellitePosition(satellite, reception, pseudorange, state)) return false;
      double unit[3];
      range = gnssqctoolkit::GeometricRange(state.Position, options_.Station, unit);
      if (range < 0) return false;
      elevation = gnssqctoolkit::AzimuthElevation(receiver_, unit, nullptr);
      pseudorange = range - kLight * state.Clock;
      // The later rounds move the direction by less than a millionth of this.
      if (elevation < options_.LowestElevation - 0.01) return false;
    }
    if (elevation < options_.LowestElevation) return false;
    out = Satellite_gbt{};
    out.sys = satellite.system;
    out.prn = satellite.prn;
    const double zenith = 1.0 / (std::sin(elevation) + 0.1);
    const int key = satellite.system * 100 + satellite.prn;
    for (const int code : Codes(satellite)) {
      const int channel = satellite.system == 2 ? stores_->GlonassChannels()[satellite.prn - 1] : 0;
      const double wavelength = gnssqctoolkit::Wavelength(satellite.system, code, channel);
      const double ionosphere =
          3.0 * zenith * wavelength * wavelength / (0.19029367279836487 * 0.19029367279836487);
      Signal_QC_gbt signal{};
      signal.code = static_cast<std::uint8_t>(code);
      const double code_noise = options_.CodeNoise * Normal(random_);
      const double phase_noise = options_.PhaseNoise * Normal(random_);
      const double snr_noise = Normal(random_);
      const bool missing = random_() / 4294967296.0 < options_.MissingShare;
      if (missing) continue;
      signal.pseudorange = pseudorange + 2.3 * zenith + ionosphere + code_noise;
      signal.phase =
          (pseudorange + 2.3 * zenith - ionosphere + phase_noise) / wavelength + 1000.0 * key + code;
      signal.snr = static_cast<float>(30.0 + 18.0 * std::sin(elevation) + 0.5 * snr_noise);
      out.signals[out.signal_num++] = signal;
    }
    return true;
  }

  SkyOptions options_;
  std::mt19937 random_;
  std::unique_ptr<Ephemeris> stores_;
  gnssqctoolkit::GeodeticPosition receiver_;
  std::vector<SatelliteId> satellites_;
};

SkyStream::SkyStream(const SkyOptions& options) : options_(options) {
  const auto span = static_cast<std::int64_t>(options.Interval * options.Epochs) + 1;
  AddRecords(navigation_, options.Start, options.Start + span);
  observer_ = std::make_unique<Observer>(options, navigation_);
}

SkyStream::~SkyStream() = default;

ObsEpoch_QC_gbt SkyStream::Next() {
  return observer_->Observe(static_cast<double>(next_++) * options_.Interval);
}

SimulatedSky::SimulatedSky(const SkyOptions& options) : Options(options) {
  SkyStream stream(options);
  Navigation = stream.Navigation();
  Epochs.reserve(static_cast<std::size_t>(options.Epochs));
  for (int k = 0; k < options.Epochs; ++k) Epochs.push_back(stream.Next());
}

config_qct OpenConfig() {
  config_qct config{};
  for (int s = 0; s < 5; ++s) {
    config.enable_system[s] = 1;
    config.combination_system[s] = 1;
  }
  config.elevation = 10.0;
  config.interval = 30.0;
  for (auto& row : config.include_satellite) std::fill(std::begin(row), std::end(row), 1);
  config.auto_detect_freq = 1;
  for (auto& row : config.satellite_freq) std::fill(std::begin(row), std::end(row), 1);
  return config;
}

config_qct ConfigOf(const SkyOptions& options) {
  config_qct config = OpenConfig();
  config.interval = options.Interval;
  config.enable_position = 1;
  std::copy(std::begin(options.Station), std::end(options.Station), config.position);
  return config;
}

config_qct SimulatedSky::Config() const { return ConfigOf(Options); }

}  // namespace orsolva_test
