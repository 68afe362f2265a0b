#include "host/formats/rtcm/rtcm_writer.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/formats/rtcm/decoder.h"
#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;

constexpr std::int64_t kStart = GpsTime(2300, 604798);

void AddSignal(ObservationEpoch& epoch, SatelliteId id, SignalCode code, double range_m, double cycles) {
  if (epoch.satellites.empty() || !(epoch.satellites.back().id == id)) {
    epoch.satellites.push_back({id, epoch.signals.size(), 0});
  }
  SignalObservation s;
  s.code = code;
  s.pseudorange_m = range_m;
  s.phase_cycles = range_m * (CarrierFrequency(id.system, code.band, 1) / kLightSpeed_m_s) + cycles;
  s.doppler_hz = -234.567 * (CarrierFrequency(id.system, code.band, 1) / kLightSpeed_m_s);
  s.snr_dbhz = 41.0625;
  epoch.signals.push_back(s);
  ++epoch.satellites.back().signal_count;
}

/// All systems, at a time; ranges grow by 700 m/s.
ObservationEpoch Sky(std::int64_t second, double drift_cycles = 0) {
  ObservationEpoch epoch;
  epoch.time_ns = kStart + second * kSecond;
  const double growth_m = 700.0 * static_cast<double>(second);
  for (std::uint8_t number = 1; number <= 12; ++number) {
    const double range_m = 20e6 + 3e5 * number + growth_m;
    for (const SignalCode code :
         {SignalCode{'1', 'C'}, {'2', 'W'}, {'2', 'X'}, {'5', 'X'}, {'1', 'X'}, {'1', 'L'}}) {
      AddSignal(epoch, {'G', number}, code, range_m + 3, 1000.25 + drift_cycles);
    }
  }
  AddSignal(epoch, {'R', 5}, {'1', 'C'}, 19.5e6 + growth_m, -77e6);
  AddSignal(epoch, {'E', 5}, {'1', 'X'}, 24e6 + growth_m, 5.5);
  AddSignal(epoch, {'S', 23}, {'1', 'C'}, 38e6 + growth_m, 5.5);
  AddSignal(epoch, {'J', 2}, {'1', 'C'}, 38e6 + growth_m, 5.5);
  AddSignal(epoch, {'C', 60}, {'2', 'I'}, 39e6 + growth_m, 5.5);
  AddSignal(epoch, {'I', 2}, {'5', 'A'}, 39e6 + growth_m, 5.5);
  return epoch;
}

class EveryMsm : public testing::TestWithParam<int> {
 protected:
  EveryMsm() : decoder_({kStart, EpochEnd::kLastMessage}), writer_(GetParam(), 17) {
    channels_[5] = 1;
    decoder_.TakeChannel(5, 1);  // MSM4 and 6 do not hold it
  }

  ObservationEpoch Through(const ObservationEpoch& epoch) {
    for (const std::string& message : writer_.Write(epoch, channels_)) {
      EXPECT_LE(message.size(), 1023u);
      decoder_.Take(message);
    }
    ObservationEpoch back;
    EXPECT_TRUE(decoder_.Next(back));
    ObservationEpoch none;
    EXPECT_FALSE(decoder_.Next(none));
    return back;
  }

  bool Fine() const { return GetParam() >= 6; }

  Decoder decoder_;
  MsmWriter writer_;
  ChannelTable channels_;
};

const SignalObservation* Find(const ObservationEpoch& epoch, SatelliteId id, SignalCode code) {
  for (const SatelliteObservation& satellite : epoch.satellites) {
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& signal = epoch.signals[satellite.first_signal + i];
      if (satellite.id == id && signal.code == code) return &signal;
    }
  }
  return nullptr;
}

TEST_P(EveryMsm, EpochsComeBackWithinHalfAStepAndPhasesByConstantCycles) {
  std::map<std::string, double> offsets;
  // Half of 2^-24 or 2^-29 ms of range and of 2^-29 or 2^-31 ms of phase, in metres, and some for doubles.
  const double range_m = 299792.458 * std::ldexp(1.0, Fine() ? -30 : -25) * 1.01;
  const double phase_m = 299792.458 * std::ldexp(1.0, Fine() ? -32 : -30) * 1.01;
  for (int second = 0; second < 4; ++second) {
    const ObservationEpoch sent = Sky(second);
    const ObservationEpoch back = Through(sent);
    EXPECT_EQ(back.time_ns, sent.time_ns);
    ASSERT_EQ(back.signals.size(), sent.signals.size());
    for (const SatelliteObservation& satellite : sent.satellites) {
      for (std::size_t i = 0; i < satellite.signal_count; ++i) {
        const SignalObservation& a = sent.signals[satellite.first_signal + i];
        const std::string name = NameOf(satellite.id) + NameOf(a.code);
        const SignalObservation* b = Find(back, satellite.id, a.code);
        ASSERT_NE(b, nullptr) << name;
        const double wavelength_m = kLightSpeed_m_s / CarrierFrequency(satellite.id.system, a.code.band, 1);
        EXPECT_NEAR(b->pseudorange_m, a.pseudorange_m, range_m) << name;
        const double cycles = b->phase_cycles - a.phase_cycles;
        EXPECT_NEAR(cycles, std::round(cycles), phase_m / wavelength_m) << name;
        EXPECT_EQ(offsets.try_emplace(name, std::round(cycles)).first->second, std::round(cycles)) << name;
        EXPECT_NEAR(b->snr_dbhz, a.snr_dbhz, Fine() ? 1.0 / 32 : 0.5) << name;
        if (GetParam() == 5 || GetParam() == 7) {
          EXPECT_NEAR(b->doppler_hz, a.doppler_hz, 5.1e-5 / wavelength_m);
        }
        EXPECT_EQ(b->loss_of_lock, 0) << name;
      }
    }
  }
}

TEST_P(EveryMsm, LossOfLockAndHalfCyclesComeBack) {
  Through(Sky(0));
  Through(Sky(1));
  ObservationEpoch epoch = Sky(2);
  epoch.signals[0].loss_of_lock = kLossOfLock;
  epoch.signals[1].loss_of_lock = kHalfCycle;
  const ObservationEpoch back = Through(epoch);
  EXPECT_EQ(Find(back, {'G', 1}, {'1', 'C'})->loss_of_lock, kLossOfLock);
  EXPECT_EQ(Find(back, {'G', 1}, {'2', 'W'})->loss_of_lock, kHalfCycle);
  EXPECT_EQ(Find(back, {'G', 1}, {'2', 'X'})->loss_of_lock, 0);
  EXPECT_EQ(Find(Through(Sky(3)), {'G', 1}, {'1', 'C'})->loss_of_lock, 0);
}

TEST_P(EveryMsm, RollOverIsInvisible) {
  const SatelliteId id = {'G', 1};
  const SignalCode code = {'1', 'C'};
  double offset = 0;
  // 20 cycles a second apart: the limit of 6150 cycles is passed after 308 s.
  for (int second = 0; second < 400; ++second) {
    const ObservationEpoch sent = Sky(second, 20.0 * second);
    const ObservationEpoch back = Through(sent);
    const double cycles = Find(back, id, code)->phase_cycles - Find(sent, id, code)->phase_cycles;
    if (second == 0) offset = cycles;
    EXPECT_NEAR(cycles, offset, 0.01) << second;
    EXPECT_EQ(Find(back, id, code)->loss_of_lock, 0);
  }
  EXPECT_GT(decoder_.Phases().RollOvers(), 0u);
  EXPECT_EQ(decoder_.Phases().UnknownJumps(), 0u);
}

TEST_P(EveryMsm, AbsentValuesStayAbsent) {
  ObservationEpoch epoch = Sky(0);
  epoch.signals[0].phase_cycles = kAbsent;
  epoch.signals[1].snr_dbhz = kAbsent;
  epoch.signals[2].pseudorange_m = kAbsent;
  epoch.signals[3].doppler_hz = kAbsent;
  const ObservationEpoch back = Through(epoch);
  EXPECT_TRUE(std::isnan(Find(back, {'G', 1}, {'1', 'C'})->phase_cycles));
  EXPECT_TRUE(std::isnan(Find(back, {'G', 1}, {'2', 'W'})->snr_dbhz));
  EXPECT_TRUE(std::isnan(Find(back, {'G', 1}, {'2', 'X'})->pseudorange_m));
  EXPECT_TRUE(std::isnan(Find(back, {'G', 1}, {'5', 'X'})->doppler_hz));
}

TEST_P(EveryMsm, GlonassPhaseWithoutAChannelIsLeftOut) {
  channels_[5].reset();
  EXPECT_TRUE(std::isnan(Find(Through(Sky(0)), {'R', 5}, {'1', 'C'})->phase_cycles));
}

INSTANTIATE_TEST_SUITE_P(RtcmWriter, EveryMsm, testing::Values(4, 5, 6, 7));

}  // namespace
