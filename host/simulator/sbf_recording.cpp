#include "host/simulator/sbf_recording.h"

#include <algorithm>
#include <string>
#include <utility>

#include "host/formats/sbf/ephemeris.h"
#include "host/rinex/time_scales.h"
#include "host/simulator/header_lines.h"
#include "host/simulator/stream_writer.h"

namespace orsolva_host {
namespace {

/// Of 152 bytes at most, so that measurements lie within the beginning that formats are detected by.
constexpr std::size_t kEphemeridesPerEpoch = 64;

constexpr double kInavSources = 1 | 4 | 512;  // RINEX 3.05, table A8
constexpr double kGalileoAccuracy = 107;      // 3.12 m

/// What a block takes of the elements, times in the time of the system.
NavigationRecord RecordOf(const KeplerRecord& k) {
  NavigationRecord r;
  r.letter = k.satellite.system;
  r.number = k.satellite.number;
  r.time = {static_cast<std::int64_t>(k.toc_s) - (r.letter == 'C' ? kBdsTimeBehindGps_s : 0), 0};
  r.v[0] = k.af0, r.v[1] = k.af1, r.v[2] = k.af2;
  r.v[4] = k.crs, r.v[5] = k.delta_n, r.v[6] = k.m0;
  r.v[7] = k.cuc, r.v[8] = k.eccentricity, r.v[9] = k.cus, r.v[10] = k.sqrt_a;
  r.v[11] = k.toe_of_week_s, r.v[12] = k.cic, r.v[13] = k.omega0, r.v[14] = k.cis;
  r.v[15] = k.i0, r.v[16] = k.crc, r.v[17] = k.omega, r.v[18] = k.omega_dot;
  r.v[19] = k.idot;
  r.v[24] = k.unhealthy ? 1 : 0;
  r.v[25] = k.group_delay_s;
  if (r.letter == 'E') r.v[20] = kInavSources, r.v[23] = kGalileoAccuracy;
  return r;
}

NavigationRecord RecordOf(const StateVectorRecord& s) {
  constexpr double kKilometre_m = 1000;
  NavigationRecord r;
  r.letter = s.satellite.system;
  r.number = s.satellite.number;
  r.time = {static_cast<std::int64_t>(s.toe_s), 0};
  r.v[0] = s.clock_bias_s, r.v[1] = s.clock_rate;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    r.v[3 + 4 * axis] = s.position_m[axis] / kKilometre_m;
    r.v[4 + 4 * axis] = s.velocity_m_s[axis] / kKilometre_m;
    r.v[5 + 4 * axis] = s.acceleration_m_s2[axis] / kKilometre_m;
  }
  r.v[6] = s.unhealthy ? 1 : 0;
  r.v[10] = s.channel.value_or(0);
  return r;
}

}  // namespace

SbfRecording::SbfRecording(std::unique_ptr<ByteSink> sink, const Scenario& scenario,
                           const BroadcastRecords& records)
    : sink_(std::move(sink)), epochs_(ChannelsOf(records)) {
  const std::int64_t start_ns = scenario.start.time * kNanosecondsPerSecond;
  sbf::ReceiverSetup setup;
  setup.marker = scenario.station;
  setup.receiver = kSimulatedReceiver;
  setup.antenna = kSimulatedAntenna;
  Send(sbf::WriteReceiverSetup(setup, start_ns));
  for (const KeplerRecord& record : records.kepler) ephemerides_.push_back(RecordOf(record));
  for (const StateVectorRecord& record : records.state_vectors) ephemerides_.push_back(RecordOf(record));
}

void SbfRecording::SendEphemerides(std::size_t count) {
  for (const std::size_t end = std::min(sent_ + count, ephemerides_.size()); sent_ < end; ++sent_) {
    const NavigationRecord& record = ephemerides_[sent_];
    const std::int64_t shift_s = record.letter == 'C' ? kBdsTimeBehindGps_s : 0;
    Send(sbf::WriteEphemeris(record, (record.time.time + shift_s) * kNanosecondsPerSecond));
  }
}

void SbfRecording::Send(std::string_view block) {
  sink_->Write(block.data(), block.size());
  decoder_.Take(block);
}

void SbfRecording::Write(const ObservationEpoch& epoch) {
  SendEphemerides(kEphemeridesPerEpoch);
  Send(epochs_.Write(epoch));
}

void SbfRecording::Close() {
  SendEphemerides(ephemerides_.size());
  sink_->Close();
}

}  // namespace orsolva_host
