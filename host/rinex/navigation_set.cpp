#include "host/rinex/navigation_set.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace orsolva_host {
namespace {

constexpr std::int64_t kInavBits = 1 | 4;
constexpr std::int64_t kFnavBits = 2;
// Galileo OS SIS ICD: a navigation data set is nominally valid for four hours.
constexpr std::int64_t kValidity_s = 4 * 3600;

/// 0 is best.
int Rank(std::int64_t data_sources) {
  if (data_sources & kInavBits) return 0;
  return data_sources & kFnavBits ? 2 : 1;
}

using Key = std::tuple<std::int32_t, std::int64_t, double, std::int32_t, double>;
using TimesOfSatellites = std::map<std::int32_t, std::vector<std::int64_t>>;

Key KeyOf(const GalEph_gbt& e) { return {e.prn, e.toc.time, e.toc.sec, e.week, e.toes}; }

TimesOfSatellites InavTimes(const std::vector<GalileoRecord>& records) {
  TimesOfSatellites times;
  for (const GalileoRecord& record : records) {
    if (Rank(record.data_sources) == 0) times[record.eph.prn].push_back(record.eph.toc.time);
  }
  for (auto& [prn, list] : times) std::sort(list.begin(), list.end());
  return times;
}

/// Whether an I/NAV record of the satellite is near enough to replace this one.
bool HasInavNear(const TimesOfSatellites& times, const GalEph_gbt& eph) {
  const auto satellite = times.find(eph.prn);
  if (satellite == times.end()) return false;
  const std::vector<std::int64_t>& list = satellite->second;
  const auto next = std::lower_bound(list.begin(), list.end(), eph.toc.time - kValidity_s);
  return next != list.end() && *next <= eph.toc.time + kValidity_s;
}

template <typename Record>
const Record* DataOf(const std::vector<Record>& records) {
  return records.empty() ? nullptr : records.data();
}

}  // namespace

NavBodyData_QC_gbt NavigationSet::Body() const {
  NavBodyData_QC_gbt body = {};
  body.gps_num = static_cast<std::int32_t>(gps.size());
  body.glo_num = static_cast<std::int32_t>(glonass.size());
  body.bds_num = static_cast<std::int32_t>(bds.size());
  body.gal_num = static_cast<std::int32_t>(galileo.size());
  body.qzs_num = static_cast<std::int32_t>(qzss.size());
  body.gps_eph = DataOf(gps);
  body.glo_eph = DataOf(glonass);
  body.bds_eph = DataOf(bds);
  body.gal_eph = DataOf(galileo);
  body.qzs_eph = DataOf(qzss);
  return body;
}

std::vector<GalEph_gbt> PreferInav(const std::vector<GalileoRecord>& records) {
  std::map<Key, std::size_t> best;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto [place, is_new] = best.emplace(KeyOf(records[i].eph), i);
    if (!is_new && Rank(records[i].data_sources) < Rank(records[place->second].data_sources)) {
      place->second = i;
    }
  }
  const TimesOfSatellites inav = InavTimes(records);
  std::vector<GalEph_gbt> kept;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const GalEph_gbt& eph = records[i].eph;
    const bool needless = Rank(records[i].data_sources) != 0 && HasInavNear(inav, eph);
    if (!needless && best.at(KeyOf(eph)) == i) kept.push_back(eph);
  }
  return kept;
}

}  // namespace orsolva_host
