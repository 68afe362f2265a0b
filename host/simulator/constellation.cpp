// Planes and slots after the performance standards of the systems: GPS SPS PS 2020 (six planes), GLONASS ICD
// 5.1 (three planes of eight), Galileo OS SDD (three planes), BDS-3 B1C ICD (three planes of eight, and the
// inclined and geostationary orbits over the Asia-Pacific), IS-QZSS-PNT.
#include "host/simulator/constellation.h"

#include <cmath>

#include "host/simulator/portable_math.h"
#include "host/simulator/random_streams.h"

namespace orsolva_host {
namespace {

constexpr std::uint64_t kShapeSeed = 20200625;  // the sky is the same for every seed of a scenario

constexpr int kGpsNumbers[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 12, 13, 14, 15, 16, 17,
                               18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32};
constexpr int kGalileoNumbers[] = {1,  2,  3,  4,  5,  7,  8,  9,  10, 11, 12, 13, 15,
                                   19, 21, 23, 24, 25, 26, 27, 29, 30, 31, 33, 34, 36};
constexpr int kBdsMediumNumbers[] = {19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30,
                                     32, 33, 34, 35, 36, 37, 41, 42, 43, 44, 45, 46};

/// Slots 1 to 24; antipodal satellites of a plane share a channel.
constexpr int kGlonassChannels[] = {1,  -4, 5, 6,  1, -4, 5, 6, -2, -7, 0, -1,
                                    -2, -7, 0, -1, 4, -3, 3, 2, 4,  -3, 3, 2};

/// Geosynchronous satellites: geostationary at a longitude, or inclined with a ground track that crosses it.
struct SynchronousRow {
  char system;
  int number;
  OrbitKind kind;
  double longitude_deg;
  double inclination_deg;
  double phase_deg;  ///< position along the track
};

constexpr auto kGeo = OrbitKind::kGeostationary;
constexpr auto kIgso = OrbitKind::kInclinedSynchronous;

constexpr SynchronousRow kSynchronousTable[] = {
    {'J', 1, kIgso, 135.0, 41.0, 0},    {'J', 2, kIgso, 135.0, 41.0, 130}, {'J', 3, kGeo, 127.0, 0.06, 0},
    {'J', 4, kIgso, 135.0, 41.0, 230},  {'C', 1, kGeo, 140.0, 1.2, 40},    {'C', 2, kGeo, 80.0, 0.9, 110},
    {'C', 3, kGeo, 110.5, 1.5, 200},    {'C', 4, kGeo, 160.0, 0.7, 250},   {'C', 5, kGeo, 58.75, 1.1, 330},
    {'C', 6, kIgso, 118.0, 54.5, 0},    {'C', 7, kIgso, 118.0, 54.8, 120}, {'C', 8, kIgso, 118.0, 55.1, 240},
    {'C', 9, kIgso, 95.0, 54.6, 60},    {'C', 10, kIgso, 95.0, 54.9, 180}, {'C', 13, kIgso, 95.0, 55.2, 300},
    {'C', 16, kIgso, 112.0, 54.7, 20},  {'C', 38, kIgso, 110.0, 55.0, 90}, {'C', 39, kIgso, 110.0, 55.0, 210},
    {'C', 40, kIgso, 110.0, 55.0, 330}, {'C', 59, kGeo, 140.2, 0.8, 70},   {'C', 60, kGeo, 80.2, 0.6, 160},
    {'C', 61, kGeo, 110.7, 1.0, 280},
};

double Spread(char system, int number, int what, double low, double high) {
  const RandomStream stream =
      RandomStream(kShapeSeed).Of(static_cast<unsigned char>(system)).Of(static_cast<unsigned>(number));
  return stream.Between(static_cast<unsigned>(what), low, high);
}

/// Slot `slot` of `slots` in plane `plane` of `planes`.
NominalOrbit PlaneOrbit(char system, int number, int plane, int planes, double slot_share, double tilt_deg) {
  NominalOrbit o;
  o.system = system;
  o.number = number;
  o.inclination_rad = (tilt_deg + Spread(system, number, 0, -0.6, 0.6)) * kRadian;
  o.node_rad = (360.0 * plane / planes + Spread(system, number, 1, -1.5, 1.5)) * kRadian;
  o.eccentricity = Spread(system, number, 2, 0.0005, system == 'G' ? 0.015 : 0.0015);
  o.perigee_rad = Spread(system, number, 3, -180, 180) * kRadian;
  const double latitude_deg =
      360.0 * slot_share + 360.0 * plane / planes / 4 + Spread(system, number, 4, -4, 4);
  o.mean_anomaly_rad = latitude_deg * kRadian - o.perigee_rad;
  return o;
}

/// Spreads the satellites of a list over planes in turn.
template <std::size_t N>
void AddPlanes(char system, const int (&numbers)[N], int planes, double tilt_deg,
               std::vector<NominalOrbit>& out) {
  const int slots = (static_cast<int>(N) + planes - 1) / planes;
  for (std::size_t i = 0; i < N; ++i) {
    const int plane = static_cast<int>(i) % planes;
    const double share = static_cast<double>(static_cast<int>(i) / planes) / slots;
    out.push_back(PlaneOrbit(system, numbers[i], plane, planes, share, tilt_deg));
  }
}

void AddGlonass(std::vector<NominalOrbit>& out) {
  for (int slot = 1; slot <= 24; ++slot) {
    NominalOrbit o = PlaneOrbit('R', slot, (slot - 1) / 8, 3, (slot - 1) % 8 / 8.0, 64.8);
    o.channel = kGlonassChannels[slot - 1];
    out.push_back(o);
  }
}

NominalOrbit SynchronousOrbit(const SynchronousRow& row) {
  NominalOrbit o;
  o.system = row.system;
  o.number = row.number;
  o.kind = row.kind;
  o.inclination_rad = row.inclination_deg * kRadian;
  const bool quasi_zenith = row.system == 'J' && row.kind == kIgso;
  o.eccentricity = quasi_zenith ? 0.075 : Spread(row.system, row.number, 2, 0.0002, 0.003);
  o.perigee_rad = quasi_zenith ? 270.0 * kRadian : Spread(row.system, row.number, 3, -180, 180) * kRadian;
  // On a synchronous orbit the node's longitude and the argument of latitude add up to a fixed longitude.
  o.mean_anomaly_rad = row.phase_deg * kRadian;
  o.node_rad = row.longitude_deg * kRadian - o.perigee_rad - o.mean_anomaly_rad;
  return o;
}

void AddSynchronous(char system, int from, int to, std::vector<NominalOrbit>& out) {
  for (const SynchronousRow& row : kSynchronousTable) {
    if (row.system == system && row.number >= from && row.number <= to) out.push_back(SynchronousOrbit(row));
  }
}

void AddBds(std::vector<NominalOrbit>& out) {
  AddSynchronous('C', 1, 10, out);
  out.push_back(PlaneOrbit('C', 11, 0, 3, 0.06, 55));
  out.push_back(PlaneOrbit('C', 12, 0, 3, 0.19, 55));
  AddSynchronous('C', 13, 13, out);
  out.push_back(PlaneOrbit('C', 14, 1, 3, 0.31, 55));
  AddSynchronous('C', 16, 16, out);
  std::vector<NominalOrbit> medium;
  AddPlanes('C', kBdsMediumNumbers, 3, 55, medium);
  for (const NominalOrbit& o : medium) {
    if (o.number < 38) out.push_back(o);
  }
  AddSynchronous('C', 38, 40, out);
  for (const NominalOrbit& o : medium) {
    if (o.number > 40) out.push_back(o);
  }
  AddSynchronous('C', 59, 61, out);
}

}  // namespace

std::vector<NominalOrbit> NominalConstellation(const std::string& systems) {
  std::vector<NominalOrbit> all;
  const auto wanted = [&systems](char letter) { return systems.find(letter) != std::string::npos; };
  if (wanted('G')) AddPlanes('G', kGpsNumbers, 6, 55, all);
  if (wanted('R')) AddGlonass(all);
  if (wanted('E')) AddPlanes('E', kGalileoNumbers, 3, 56, all);
  if (wanted('J')) AddSynchronous('J', 1, 10, all);
  if (wanted('C')) AddBds(all);
  return all;
}

}  // namespace orsolva_host
