#include "host/judging/stream_navigation.h"

#include <bit>
#include <cmath>
#include <utility>

#include "host/rinex/broadcast_reader.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/time_scales.h"

namespace orsolva_host {
namespace {

using rtcm::EphemerisMessage;
namespace term = rtcm::term;

// Data sources and health of Galileo records, bits of RINEX 3.05, table A8.
constexpr int kFnavSources = 2 | 256;
constexpr int kInavSources = 1 | 4 | 512;

/// Fields of a Keplerian message that a RINEX record has as they are.
struct Place {
  std::size_t value;  ///< in NavigationRecord::v
  term::Ephemeris name;
};

constexpr Place kPlaces[] = {
    {3, term::kIssue}, {24, term::kHealth}, {25, term::kGroupDelay1}, {26, term::kGroupDelay2}};

/// Elements from the record that the decoder made, which has their units and times.
NavigationRecord RecordOf(const EphemerisMessage& e, const KeplerRecord& k) {
  NavigationRecord r;
  r.letter = k.satellite.system;
  r.number = k.satellite.number;
  const bool bds = r.letter == 'C';
  const std::int64_t shift_s = bds ? kBdsTimeBehindGps_s : 0;
  const auto toe_s = static_cast<std::int64_t>(k.toe_s) - shift_s;
  r.time = {static_cast<std::int64_t>(k.toc_s) - shift_s, 0};
  for (const Place& place : kPlaces) r.v[place.value] = e.Scaled(place.name);
  r.v[0] = k.af0, r.v[1] = k.af1, r.v[2] = k.af2;
  r.v[4] = k.crs, r.v[5] = k.delta_n, r.v[6] = k.m0;
  r.v[7] = k.cuc, r.v[8] = k.eccentricity, r.v[9] = k.cus, r.v[10] = k.sqrt_a;
  r.v[11] = k.toe_of_week_s, r.v[12] = k.cic, r.v[13] = k.omega0, r.v[14] = k.cis;
  r.v[15] = k.i0, r.v[16] = k.crc, r.v[17] = k.omega, r.v[18] = k.omega_dot;
  r.v[19] = k.idot;
  const std::int64_t weeks = (toe_s - rtcm::kGpsBegins_s) / rtcm::kWeek_s;
  r.v[21] = static_cast<double>(weeks - (bds ? rtcm::kBdsWeekOffset : 0));
  r.v[23] = AccuracyOf(r.letter, static_cast<int>(e.values[term::kAccuracy]));
  if (r.letter == 'E') {
    r.v[20] = k.second_message ? kFnavSources : kInavSources;
    r.v[24] = k.unhealthy ? 1 : 0;
  }
  return r;
}

constexpr term::Ephemeris kVectors[][3] = {{term::kPositionX, term::kVelocityX, term::kAccelerationX},
                                           {term::kPositionY, term::kVelocityY, term::kAccelerationY},
                                           {term::kPositionZ, term::kVelocityZ, term::kAccelerationZ}};

/// Files count GLONASS in UTC and kilometres.
NavigationRecord RecordOf(const EphemerisMessage& e, const StateVectorRecord& s) {
  NavigationRecord r;
  r.letter = s.satellite.system;
  r.number = s.satellite.number;
  const auto toe_s = static_cast<std::int64_t>(s.toe_s);
  r.time = {toe_s - rtcm::LeapSecondsAtGps(toe_s), 0};
  r.v[0] = s.clock_bias_s;
  r.v[1] = s.clock_rate;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (std::size_t i = 0; i < 3; ++i) r.v[3 + 4 * axis + i] = e.Scaled(kVectors[axis][i]);
  }
  r.v[6] = s.unhealthy ? 1 : 0;
  r.v[10] = s.channel.value_or(0);
  return r;
}

double GpsAccuracy(int index) { return std::ldexp(1.0, index - 2); }

double GalileoAccuracy(int index) {
  if (index < 50) return 0.01 * index;
  if (index < 75) return 0.5 + 0.02 * (index - 50);
  if (index < 100) return 1 + 0.04 * (index - 75);
  return index <= 125 ? 2 + 0.16 * (index - 100) : -1;
}

}  // namespace

double AccuracyOf(char system, int index) {
  if (system == 'E') return GalileoAccuracy(index);
  if (index > 6) return GpsAccuracy(index);
  // 2^(1 + N/2), to one decimal.
  return std::nearbyint(10 * std::exp2(1 + index / 2.0)) / 10;
}

void StreamNavigation::Take(const std::vector<EphemerisMessage>& messages, const BroadcastRecords& records) {
  auto kepler = records.kepler.begin();
  auto vector = records.state_vectors.begin();
  for (const EphemerisMessage& message : messages) {
    if (rtcm::IsStateVector(message)) {
      Add({message.values.begin(), message.values.end()}, RecordOf(message, *vector++));
    } else {
      Add({message.values.begin(), message.values.end()}, RecordOf(message, *kepler++));
    }
  }
}

void StreamNavigation::Take(const std::vector<NavigationRecord>& records) {
  for (NavigationRecord record : records) {
    std::vector<std::int64_t> transmitted{record.number};
    for (const double value : record.v) transmitted.push_back(std::bit_cast<std::int64_t>(value));
    if (record.letter == 'R') {
      record.time.time -= rtcm::LeapSecondsAtGps(record.time.time);
    } else {
      record.v[23] = AccuracyOf(record.letter, static_cast<int>(record.v[23]));
    }
    Add(transmitted, record);
  }
}

/// @param transmitted  fields by which records of one system and time differ
void StreamNavigation::Add(const std::vector<std::int64_t>& transmitted, const NavigationRecord& record) {
  std::vector<std::int64_t> key{record.letter, record.time.time};
  key.insert(key.end(), transmitted.begin(), transmitted.end());
  if (!seen_.insert(std::move(key)).second) return;
  AddBroadcast(record, "", broadcast_);
  const int slot = SystemSlot(record.letter);
  if (slot < 0 || record.number > kSystemTable[slot].satellites) return;
  if (record.letter == 'G') ToGps(record, set_.gps.emplace_back());
  if (record.letter == 'J') ToGps(record, set_.qzss.emplace_back());
  if (record.letter == 'R') ToGlonass(record, set_.glonass.emplace_back());
  if (record.letter == 'C') ToBds(record, set_.bds.emplace_back());
  if (record.letter != 'E') return;
  GalileoRecord& galileo = galileo_.emplace_back();
  ToGalileo(record, galileo.eph, galileo.data_sources);
}

void StreamNavigation::AppendTo(NavigationSet& set, BroadcastRecords& records) const {
  const auto append = [](const auto& from, auto& to) { to.insert(to.end(), from.begin(), from.end()); };
  append(set_.gps, set.gps);
  append(set_.glonass, set.glonass);
  append(set_.bds, set.bds);
  append(set_.qzss, set.qzss);
  append(PreferInav(galileo_), set.galileo);
  append(broadcast_.kepler, records.kepler);
  append(broadcast_.state_vectors, records.state_vectors);
}

}  // namespace orsolva_host
