// Nominal constellations: the satellites and their orbits.
#ifndef ORSOLVA_SIMULATOR_CONSTELLATION_H
#define ORSOLVA_SIMULATOR_CONSTELLATION_H

#include <string>
#include <vector>

namespace orsolva_host {

enum class OrbitKind { kMedium, kInclinedSynchronous, kGeostationary };

/// An orbit at the reference instant, in the Earth-fixed frame of that instant.
struct NominalOrbit {
  char system = 'G';
  int number = 0;
  int channel = 0;  ///< GLONASS frequency channel
  OrbitKind kind = OrbitKind::kMedium;
  double eccentricity = 0;
  double inclination_rad = 0;
  double node_rad = 0;     ///< longitude of the ascending node
  double perigee_rad = 0;  ///< argument of perigee
  double mean_anomaly_rad = 0;
};

/// The satellites of the systems named by letters, in the order in which a receiver lists them.
std::vector<NominalOrbit> NominalConstellation(const std::string& systems);

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_CONSTELLATION_H
