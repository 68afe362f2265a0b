#include "host/simulator/sky.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/broadcast.h"
#include "host/simulator/constellation.h"
#include "host/simulator/orbits.h"

namespace orsolva_host {
namespace {

constexpr double kAccuracy_m = 2.0;

std::int64_t CadenceOf(const Cadence& cadence, char system) {
  double seconds = cadence.qzss_s;
  if (system == 'G') seconds = cadence.gps_s;
  if (system == 'R') seconds = cadence.glonass_s;
  if (system == 'C') seconds = cadence.bds_s;
  if (system == 'E') seconds = cadence.galileo_s;
  return static_cast<std::int64_t>(seconds);
}

/// Health word of the record with a reference time, s after the start.
int HealthOf(const Scenario& scenario, const NominalOrbit& orbit, double reference_s) {
  for (const Fault& fault : scenario.faults) {
    if (fault.kind != FaultKind::kUnhealthy) continue;
    const bool meant = (fault.target.system == 0 || fault.target.system == orbit.system) &&
                       (fault.target.satellite == 0 || fault.target.satellite == orbit.number);
    const bool now =
        fault.duration_s <= 0 || (reference_s >= fault.at_s && reference_s < fault.at_s + fault.duration_s);
    if (meant && now) return fault.size > 0 ? static_cast<int>(fault.size) : 1;
  }
  return 0;
}

template <typename Eph>
Eph ToEph(const KeplerSet& r, int number, int issue, int health) {
  Eph e = {};
  e.prn = number;
  e.af0 = r.af0, e.af1 = r.af1, e.af2 = r.af2;
  e.iode = issue;
  e.crs = r.crs, e.deln = r.deln, e.M0 = r.m0;
  e.cuc = r.cuc, e.e = r.e, e.cus = r.cus, e.sqrtA = r.sqrt_a;
  e.toes = r.seconds_of_week, e.cic = r.cic, e.OMG0 = r.node_at_week, e.cis = r.cis;
  e.i0 = r.i0, e.crc = r.crc, e.omg = r.perigee, e.OMGd = r.node_rate, e.idot = r.idot;
  e.ura = kAccuracy_m;
  e.svh = health;
  return e;
}

/// The orbits that the records of one satellite describe.
struct Series {
  double first_s = 0;
  double step_s = 1;
  std::vector<KeplerOrbit> kepler;
  std::vector<GlonassOrbit> glonass;

  std::size_t Nearest(double time_s) const {
    const double last = static_cast<double>(std::max(kepler.size(), glonass.size())) - 1;
    const double place = std::floor((time_s - first_s) / step_s + 0.5);
    return static_cast<std::size_t>(std::fmin(std::fmax(place, 0), last));
  }
};

}  // namespace

class Sky::Stores {
 public:
  explicit Stores(const Scenario& scenario) : origin_(scenario.start.time) {
    for (const NominalOrbit& orbit : NominalConstellation(scenario.systems)) Add(scenario, orbit);
  }

  NavigationSet navigation;
  std::vector<SkySatellite> satellites;
  std::vector<Series> series;

 private:
  void Add(const Scenario& scenario, const NominalOrbit& orbit) {
    const std::int64_t step = CadenceOf(scenario.cadence, orbit.system);
    const std::int64_t end = origin_ + static_cast<std::int64_t>(std::ceil(scenario.hours * 3600)) + 60;
    std::int64_t offset = 0;
    if (orbit.system == 'C') offset = kBdsBehindGps_s;
    if (orbit.system == 'R') offset = LeapSeconds(origin_) + step / 2;
    const RecordTimes times = TimesOver(origin_, end, step, offset);
    Series s;
    s.first_s = static_cast<double>(times.first - origin_);
    s.step_s = static_cast<double>(step);
    std::vector<int> health;
    for (std::int64_t i = 0; i < times.count; ++i) {
      health.push_back(HealthOf(scenario, orbit, s.first_s + s.step_s * static_cast<double>(i)));
    }
    const bool healthy = std::find(health.begin(), health.end(), 0) != health.end();
    satellites.push_back({orbit.system, orbit.number, orbit.channel, healthy});
    orbit.system == 'R' ? AddGlonass(orbit, times, health, s) : AddKepler(orbit, times, health, s);
    series.push_back(std::move(s));
  }

  void AddKepler(const NominalOrbit& orbit, const RecordTimes& times, const std::vector<int>& health,
                 Series& s) {
    int issue = 0;
    for (const KeplerSet& record : KeplerSets(orbit, times, origin_)) {
      s.kepler.emplace_back(record);
      AddRecord(orbit, record, times.first + issue * times.step, issue + 1, health[s.kepler.size() - 1]);
      ++issue;
    }
  }

  void AddRecord(const NominalOrbit& o, const KeplerSet& r, std::int64_t time, int issue, int health) {
    if (o.system == 'C') {
      BdsEph_gbt e = ToEph<BdsEph_gbt>(r, o.number, issue, health);
      e.toc = {time - kBdsBehindGps_s, 0.0};
      e.week = static_cast<std::int32_t>((e.toc.time - kBdsEpoch) / kWeek_s);
      navigation.bds.push_back(e);
      return;
    }
    const auto week = static_cast<std::int32_t>((time - kGpsEpoch) / kWeek_s);
    if (o.system == 'E') {
      GalEph_gbt e = ToEph<GalEph_gbt>(r, o.number, issue, health);
      e.toc = {time, 0.0};
      e.week = week;
      navigation.galileo.push_back(e);
    } else {
      GpsEph_gbt e = ToEph<GpsEph_gbt>(r, o.number, issue, health);
      e.toc = {time, 0.0};
      e.week = week;
      (o.system == 'G' ? navigation.gps : navigation.qzss).push_back(e);
    }
  }

  void AddGlonass(const NominalOrbit& orbit, const RecordTimes& times, const std::vector<int>& health,
                  Series& s) {
    double reference_s = s.first_s;
    for (GloEph_gbt& e : GlonassRecords(orbit, times)) {
      e.svh = health[s.glonass.size()];
      // The same products as a reader of the record computes, in kilometres.
      const GlonassState state = {e.x * 1000, e.y * 1000, e.z * 1000, e.vx * 1000, e.vy * 1000, e.vz * 1000};
      const GlonassAcceleration pull = {e.ax * 1000, e.ay * 1000, e.az * 1000};
      s.glonass.emplace_back(reference_s, state, pull, e.clock_bias, e.clock_rate, s.step_s / 2 + 120);
      reference_s += s.step_s;
      navigation.glonass.push_back(e);
    }
  }

  std::int64_t origin_;
};

Sky::Sky(const Scenario& scenario) : stores_(std::make_unique<Stores>(scenario)) {}
Sky::~Sky() = default;
Sky::Sky(Sky&&) noexcept = default;
Sky& Sky::operator=(Sky&&) noexcept = default;

const NavigationSet& Sky::Navigation() const { return stores_->navigation; }
const std::vector<SkySatellite>& Sky::Satellites() const { return stores_->satellites; }

SkyState Sky::StateAt(std::size_t index, double transmit_s, double receive_s) const {
  const Series& series = stores_->series[index];
  const std::size_t place = series.Nearest(receive_s);
  SkyState state;
  state.clock_s = series.kepler.empty() ? series.glonass[place].StateAt(transmit_s, state.position_m)
                                        : series.kepler[place].StateAt(transmit_s, state.position_m);
  return state;
}

}  // namespace orsolva_host
