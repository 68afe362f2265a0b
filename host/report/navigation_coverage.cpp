#include "host/report/navigation_coverage.h"

#include <algorithm>
#include <cmath>

#include "host/rinex/civil_time.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

const Time_gbt& TimeOf(const GloEph_gbt& record) { return record.toe; }
template <typename Record>
const Time_gbt& TimeOf(const Record& record) {
  return record.toc;
}

}  // namespace

double RecordAge_s(int system) {
  if (system == kGlonass) return 1800;
  return system == kBds || system == kGalileo ? 21600 : 7200;
}

bool HasNoOrbit(const std::string& satellite) {
  if (satellite.empty() || satellite[0] != 'C') return false;
  const int n = std::stoi(satellite.substr(1));
  return n == 15 || n == 17 || n == 31 || (n >= 47 && n <= 58) || n >= 62;
}

CoverageCounter::CoverageCounter(const NavigationSet& set, std::string_view systems) {
  for (int slot = 0; slot < kSystems; ++slot) {
    judged_[slot] = systems.find(kSystemTable[slot].letter) != std::string_view::npos;
    for (int i = 0; i < kMaxSatellites; ++i)
      satellites_[slot][i].row.satellite = SatelliteName(kSystemTable[slot].letter, i + 1);
  }
  AddRecords(set);
}

void CoverageCounter::AddRecords(const NavigationSet& set) {
  Take(kGps, set.gps);
  Take(kGlonass, set.glonass);
  Take(kBds, set.bds);
  Take(kGalileo, set.galileo);
  Take(kQzss, set.qzss);
  for (auto& system : satellites_) {
    for (Satellite& satellite : system) {
      std::sort(satellite.references.begin(), satellite.references.end(),
                [](const Time_gbt& a, const Time_gbt& b) { return Difference(a, b) < 0; });
      satellite.row.records = satellite.references.size();
      if (satellite.references.empty()) continue;
      satellite.row.first_reference = satellite.references.front();
      satellite.row.last_reference = satellite.references.back();
    }
  }
}

template <typename Record>
void CoverageCounter::Take(int system, const std::vector<Record>& records) {
  auto& satellites = satellites_[SystemSlotOfCode(system)];
  for (const Record& record : records) {
    if (record.prn < 1 || record.prn > kMaxSatellites) continue;
    Satellite& satellite = satellites[record.prn - 1];
    if (record.svh == 0) {
      satellite.references.push_back(TimeOf(record));
    } else {
      ++satellite.row.unhealthy_records;
    }
  }
}

bool CoverageCounter::Covers(Satellite& satellite, const Time_gbt& time, double age_s) {
  const std::vector<Time_gbt>& all = satellite.references;
  const auto near = [&](std::size_t i) { return std::fabs(Difference(time, all[i])) <= age_s; };
  if (all.empty()) return false;
  if (near(satellite.last)) return true;
  const auto next = std::lower_bound(all.begin(), all.end(), time, [](const Time_gbt& a, const Time_gbt& b) {
    return Difference(a, b) < 0;
  });
  const auto place = static_cast<std::size_t>(next - all.begin());
  if (place < all.size() && near(place)) {
    satellite.last = place;
    return true;
  }
  if (place > 0 && near(place - 1)) {
    satellite.last = place - 1;
    return true;
  }
  return false;
}

void CoverageCounter::Add(const ObsEpoch_QC_gbt& epoch) {
  for (std::uint32_t i = 0; i < std::min(epoch.sat_num, std::uint32_t{ORSOLVA_MAX_SATELLITES}); ++i) {
    const int slot = SystemSlotOfCode(epoch.sats[i].sys);
    const std::int32_t number = epoch.sats[i].prn;
    if (slot < 0 || !judged_[slot] || number < 1 || number > kMaxSatellites) continue;
    Satellite& satellite = satellites_[slot][number - 1];
    ++satellite.row.observed_epochs;
    if (Covers(satellite, epoch.time, RecordAge_s(epoch.sats[i].sys))) ++satellite.covered_epochs;
  }
}

std::vector<NavigationCoverage> CoverageCounter::Rows() const {
  std::vector<NavigationCoverage> rows;
  for (const auto& system : satellites_) {
    for (const Satellite& satellite : system) {
      if (satellite.row.observed_epochs == 0) continue;
      rows.push_back(satellite.row);
      rows.back().covered_ratio =
          static_cast<double>(satellite.covered_epochs) / static_cast<double>(satellite.row.observed_epochs);
    }
  }
  return rows;
}

}  // namespace orsolva_host
