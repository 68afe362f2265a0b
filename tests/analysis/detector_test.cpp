// The detector on a small made-up sky at 1 s without navigation: smooth ranges, two carriers, a wandering
// clock.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <regex>
#include <vector>

#include "host/analysis/geometry/constants.h"
#include "host/analysis/slips/slip_detector.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kStart_ns = 1593064800LL * kNanosecondsPerSecond;
constexpr int kSatellites = 8;

/// A number in [-1, 1) that depends on its arguments alone.
double Noise(int a, int b, int c) {
  std::uint64_t x = static_cast<std::uint64_t>(a) * 1000003 + static_cast<std::uint64_t>(b) * 7919 +
                    static_cast<std::uint64_t>(c) + 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return static_cast<double>((x ^ (x >> 31)) >> 11) * 0x1p-52 - 1;
}

double RangeOf(int satellite, int t) {
  const double phase = 0.7 * satellite + t * 1.4e-4;
  return 2.2e7 + 2.5e6 * std::sin(phase) + 3 * std::sin(0.02 * t);  // the last term is the receiver clock
}

ObservationEpoch EpochAt(int t) {
  ObservationEpoch epoch;
  epoch.time_ns = kStart_ns + t * kNanosecondsPerSecond;
  for (int s = 1; s <= kSatellites; ++s) {
    SatelliteObservation satellite;
    satellite.id = {'G', static_cast<std::uint8_t>(s)};
    satellite.first_signal = epoch.signals.size();
    satellite.signal_count = 2;
    for (const SignalCode code : {SignalCode{'1', 'C'}, SignalCode{'2', 'W'}}) {
      SignalObservation o;
      o.code = code;
      const double frequency = CarrierFrequency('G', code.band, 0);
      const double ionosphere =
          (5 + 0.001 * t) * (kReferenceCarrier_hz / frequency) * (kReferenceCarrier_hz / frequency);
      o.pseudorange_m = RangeOf(s, t) + ionosphere + 0.3 * Noise(s, t, code.band);
      o.phase_cycles =
          (RangeOf(s, t) - ionosphere + 0.002 * Noise(s, t, code.band + 500)) * frequency / kLightSpeed_m_s;
      epoch.signals.push_back(o);
    }
    epoch.satellites.push_back(satellite);
  }
  return epoch;
}

using Change = std::function<void(int, ObservationEpoch&)>;

std::vector<ObservationEpoch> Day(int epochs, const Change& change) {
  std::vector<ObservationEpoch> day;
  for (int t = 0; t < epochs; ++t) {
    day.push_back(EpochAt(t));
    change(t, day.back());
  }
  return day;
}

std::vector<Event> EventsOf(const std::vector<ObservationEpoch>& day) {
  SlipDetector detector({}, {});
  for (const ObservationEpoch& epoch : day) detector.Add(epoch);
  detector.Finish();
  return detector.TakeEvents();
}

/// Adds cycles to a satellite's signals from an epoch on.
Change Slip(int satellite, int from, double first, double second) {
  return [=](int t, ObservationEpoch& epoch) {
    if (t < from) return;
    SignalObservation* o =
        &epoch.signals[epoch.satellites[static_cast<std::size_t>(satellite - 1)].first_signal];
    o[0].phase_cycles += first;
    o[1].phase_cycles += second;
  };
}

void Nothing(int, ObservationEpoch&) {}

TEST(SlipDetector, FindsNothingWhereNothingSlips) { EXPECT_TRUE(EventsOf(Day(300, Nothing)).empty()); }

TEST(SlipDetector, TakesTheIntervalOfTheDataWhereTheStatedOneIsAbsurd) {
  for (const double stated : {0.0, -1.0, 1e15, std::nan("")}) {
    DetectorOptions options;
    options.interval_s = stated;
    SlipDetector detector(options, {});
    for (const ObservationEpoch& epoch : Day(20, Nothing)) detector.Add(epoch);
    EXPECT_EQ(detector.Interval(), 1) << stated;
  }
}

TEST(SlipDetector, CutsTheIntervalOfEpochsYearsApart) {
  SlipDetector detector({}, {});
  std::vector<ObservationEpoch> epochs = Day(20, Nothing);
  for (std::size_t i = 0; i < epochs.size(); ++i)
    epochs[i].time_ns = static_cast<std::int64_t>(i) * 400'000'000 * kNanosecondsPerSecond;
  for (const ObservationEpoch& epoch : epochs) detector.Add(epoch);
  EXPECT_EQ(detector.Interval(), 1e6);
}

TEST(SlipDetector, NamesEpochSatelliteSignalsAndSizes) {
  const struct {
    double first, second;
    EventKind kind;
  } slips[] = {{1, 0, EventKind::kSlip},  {0, -1, EventKind::kSlip},       {1, 1, EventKind::kSlip},
               {9, 7, EventKind::kSlip},  {77, 60, EventKind::kSlip},      {5, 4, EventKind::kSlip},
               {1, -1, EventKind::kSlip}, {0.5, 0, EventKind::kHalfCycle}, {0, 0.5, EventKind::kHalfCycle},
               {1e5, 0, EventKind::kSlip}};
  for (const auto& slip : slips) {
    const auto events = EventsOf(Day(200, Slip(3, 100, slip.first, slip.second)));
    ASSERT_EQ(events.size(), 1U) << slip.first << ' ' << slip.second;
    EXPECT_EQ(events[0].kind, slip.kind);
    EXPECT_EQ(NameOf(events[0].satellite), "G03");
    EXPECT_EQ(events[0].time_ns, kStart_ns + 100 * kNanosecondsPerSecond);
    std::vector<double> sizes;
    if (slip.first != 0) sizes.push_back(slip.first);
    if (slip.second != 0) sizes.push_back(slip.second);
    EXPECT_EQ(events[0].sizes, sizes);
    EXPECT_EQ(NameOf(events[0].signals[0]), slip.first != 0 ? "1C" : "2W");
    EXPECT_FALSE(events[0].evidence.empty());
  }
}

TEST(SlipDetector, WithoutARangeSlipsAtTheEndsOfAPassHaveNoAbsurdSize) {
  constexpr int kEpochs = 120;
  for (const int at : {1, 2, kEpochs - 2, kEpochs - 1}) {
    const std::vector<Event> events = EventsOf(Day(kEpochs, Slip(3, at, 4, -3)));
    for (const Event& event : events) {
      for (const double size : event.sizes) EXPECT_LT(std::fabs(size), 50) << at << " " << event.evidence;
      EXPECT_FALSE(event.sure && event.sizes.size() == 2) << at << " " << event.evidence;
    }
  }
}

/// The same sky at 30 s, of one band and another system.
std::vector<ObservationEpoch> SlowDay(char system, const Change& change) {
  std::vector<ObservationEpoch> day;
  for (int k = 0; k < 120; ++k) {
    ObservationEpoch epoch = EpochAt(30 * k);
    for (SatelliteObservation& satellite : epoch.satellites) {
      satellite.id.system = system;
      satellite.signal_count = 1;
      SignalObservation& o = epoch.signals[satellite.first_signal];
      const double frequency = CarrierFrequency('G', '1', 0);
      if (system == 'C') o.code = {'2', 'I'}, o.phase_cycles *= CarrierFrequency('C', '2', 0) / frequency;
    }
    change(k, epoch);
    day.push_back(std::move(epoch));
  }
  return day;
}

TEST(SlipDetector, HalfACycleOnOneBandIsBelievedOfClocksThatDoNotJump) {
  const auto half = [](int k, ObservationEpoch& epoch) {
    if (k >= 60) epoch.signals[4].phase_cycles += 0.5;
  };
  const std::vector<Event> steady = EventsOf(SlowDay('C', half));
  ASSERT_EQ(steady.size(), 1U);
  EXPECT_EQ(steady[0].kind, EventKind::kHalfCycle);
  EXPECT_FALSE(steady[0].sure);
  for (const Event& event : EventsOf(SlowDay('G', half))) EXPECT_FALSE(IsSlip(event.kind)) << event.evidence;
}

TEST(SlipDetector, ASlipOfEverySignalIsUnsureWhereOnlyTheStepsAroundPredictTheRange) {
  for (const double cycles : {2.0, 20.0}) {
    const auto slip = [=](int k, ObservationEpoch& epoch) {
      if (k >= 60) epoch.signals[4].phase_cycles += cycles;
    };
    const std::vector<Event> events = EventsOf(SlowDay('C', slip));
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].sizes, std::vector<double>{cycles});
    EXPECT_EQ(events[0].sure, cycles > 10);
  }
}

/// The sky at 30 s with a third band, whose signals are the last of their satellites.
std::vector<ObservationEpoch> ThreeBandDay(const Change& change) {
  std::vector<ObservationEpoch> day;
  for (int k = 0; k < 120; ++k) {
    const ObservationEpoch two = EpochAt(30 * k);
    ObservationEpoch epoch;
    epoch.time_ns = two.time_ns;
    for (SatelliteObservation satellite : two.satellites) {
      const SignalObservation* o = &two.signals[satellite.first_signal];
      satellite.first_signal = epoch.signals.size();
      satellite.signal_count = 3;
      epoch.signals.insert(epoch.signals.end(), {o[0], o[1], o[0]});
      epoch.signals.back().code = {'5', 'Q'};
      const double frequency = CarrierFrequency('G', '5', 0);
      const double mu = kReferenceCarrier_hz / frequency * (kReferenceCarrier_hz / frequency);
      const double ionosphere = 5 + 0.03 * k;  // as of 1C
      epoch.signals.back().pseudorange_m += (mu - 1) * ionosphere;
      epoch.signals.back().phase_cycles *= frequency / CarrierFrequency('G', '1', 0);
      epoch.signals.back().phase_cycles -= (mu - 1) * ionosphere * frequency / kLightSpeed_m_s;
      epoch.satellites.push_back(satellite);
    }
    change(k, epoch);
    day.push_back(std::move(epoch));
  }
  return day;
}

TEST(SlipDetector, ASignalThatSlippedAMomentAgoIsNoWitnessAgainstTwoBandsThatMoveAlike) {
  for (const bool slipped_before : {false, true}) {
    const std::vector<Event> events = EventsOf(ThreeBandDay([=](int k, ObservationEpoch& epoch) {
      SignalObservation* o = &epoch.signals[epoch.satellites[2].first_signal];
      if (k >= 52 && slipped_before) o[2].phase_cycles += 9;
      if (k >= 60) o[0].phase_cycles += 2, o[1].phase_cycles += 2;
    }));
    ASSERT_EQ(events.size(), slipped_before ? 2U : 1U);
    EXPECT_EQ(events.back().time_ns, kStart_ns + 1800 * kNanosecondsPerSecond);
    EXPECT_EQ(events.back().sizes, (std::vector<double>{2, 2}));
    EXPECT_EQ(events.back().sure, !slipped_before);
  }
}

TEST(SlipDetector, AnEventComesOutFourEpochsAfterItsOwn) {
  const auto day = Day(200, Slip(3, 100, 1, 0));
  SlipDetector detector({}, {});
  for (int t = 0; t < 200; ++t) {
    detector.Add(day[static_cast<std::size_t>(t)]);
    EXPECT_EQ(detector.TakeEvents().size(), t == 104 ? 1U : 0U) << t;
  }
}

bool Same(const Event& a, const Event& b) {
  return a.time_ns == b.time_ns && a.satellite == b.satellite && a.kind == b.kind && a.sizes == b.sizes &&
         a.score == b.score && a.margin == b.margin && a.evidence == b.evidence;
}

TEST(SlipDetector, DoesNotDependOnWhenEventsAreTaken) {
  const auto day = Day(300, [](int t, ObservationEpoch& epoch) {
    for (int s = 1; s <= kSatellites; ++s) Slip(s, 40 + 25 * s, s, 1 - s % 2)(t, epoch);
  });
  const std::vector<Event> at_the_end = EventsOf(day);
  SlipDetector detector({}, {});
  std::vector<Event> one_by_one;
  for (const ObservationEpoch& epoch : day) {
    detector.Add(epoch);
    for (Event& event : detector.TakeEvents()) one_by_one.push_back(std::move(event));
  }
  detector.Finish();
  for (Event& event : detector.TakeEvents()) one_by_one.push_back(std::move(event));
  ASSERT_EQ(one_by_one.size(), at_the_end.size());
  ASSERT_EQ(at_the_end.size(), static_cast<std::size_t>(kSatellites));
  for (std::size_t i = 0; i < one_by_one.size(); ++i) EXPECT_TRUE(Same(one_by_one[i], at_the_end[i])) << i;
}

TEST(SlipDetector, AHoleOfOneSignalIsBridgedAndASlipOverItSized) {
  for (const double cycles : {0.0, -4.0}) {
    const auto events = EventsOf(Day(200, [&](int t, ObservationEpoch& epoch) {
      if (t >= 100) Slip(3, 100, 0, cycles)(t, epoch);
      if (t >= 100 && t < 110) epoch.signals[epoch.satellites[2].first_signal + 1].phase_cycles = kAbsent;
    }));
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].kind, cycles == 0 ? EventKind::kSignalGapContinuous : EventKind::kSignalGapSlip);
    EXPECT_EQ(events[0].time_ns, kStart_ns + 110 * kNanosecondsPerSecond);
    EXPECT_DOUBLE_EQ(events[0].gap_s, 11);
    EXPECT_EQ(events[0].sizes, cycles == 0 ? std::vector<double>{} : std::vector<double>{cycles});
  }
}

/// The phase of 2W is away for three epochs and returns with one slip, and an epoch later has another, which
/// is decided first.
std::vector<Event> EventsOfHoleBeforeSlip(double in_hole, double after) {
  return EventsOf(Day(200, [&](int t, ObservationEpoch& epoch) {
    Slip(3, 100, 0, in_hole)(t, epoch);
    Slip(3, 104, 0, after)(t, epoch);
    if (t >= 100 && t < 103) epoch.signals[epoch.satellites[2].first_signal + 1].phase_cycles = kAbsent;
  }));
}

TEST(SlipDetector, AHoleIsClosedThoughASlipThatFollowsIsDecidedFirst) {
  for (const double cycles : {-2.0, 0.0, 1.0}) {
    const auto events = EventsOfHoleBeforeSlip(cycles, -1);
    ASSERT_EQ(events.size(), 2U) << cycles;
    EXPECT_EQ(events[0].kind, cycles == 0 ? EventKind::kSignalGapContinuous : EventKind::kSignalGapSlip);
    EXPECT_EQ(events[0].time_ns, kStart_ns + 103 * kNanosecondsPerSecond);
    EXPECT_EQ(events[0].sizes, cycles == 0 ? std::vector<double>{} : std::vector<double>{cycles});
    EXPECT_EQ(events[1].kind, EventKind::kSlip);
    EXPECT_EQ(events[1].time_ns, kStart_ns + 104 * kNanosecondsPerSecond);
    EXPECT_EQ(events[1].sizes, std::vector<double>{-1});
  }
}

TEST(SlipDetector, HalfACycleOverAHoleIsLeftOpenWhereASlipThatFollowsIsDecidedFirst) {
  const auto events = EventsOfHoleBeforeSlip(0.5, -1);
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].kind, EventKind::kSignalGapUnresolved);
  EXPECT_EQ(events[0].time_ns, kStart_ns + 103 * kNanosecondsPerSecond);
  EXPECT_FALSE(events[0].sure);
  EXPECT_EQ(events[1].kind, EventKind::kSlip);
  EXPECT_EQ(events[1].time_ns, kStart_ns + 104 * kNanosecondsPerSecond);
}

TEST(SlipDetector, AReceiverThatResetsItsClockByAMillisecondDoesNotSlip) {
  const auto events = EventsOf(Day(200, [](int t, ObservationEpoch& epoch) {
    if (t < 100) return;
    for (const SatelliteObservation& satellite : epoch.satellites) {
      // A millisecond earlier the satellite was where its rate says.
      const double rate = 0.5 * (RangeOf(satellite.id.number, t + 1) - RangeOf(satellite.id.number, t - 1));
      const double change = 1e-3 * (kLightSpeed_m_s - rate);
      for (std::size_t i = 0; i < satellite.signal_count; ++i) {
        SignalObservation& o = epoch.signals[satellite.first_signal + i];
        o.pseudorange_m += change;
        o.phase_cycles += change * CarrierFrequency('G', o.code.band, 0) / kLightSpeed_m_s;
      }
    }
  }));
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].kind, EventKind::kReceiverClockReset);
  EXPECT_EQ(events[0].sizes, std::vector<double>{1});
}

TEST(SlipDetector, ACodeClockJumpIsOneEventAndNoSlip) {
  const auto events = EventsOf(Day(200, [](int t, ObservationEpoch& epoch) {
    if (t < 100) return;
    for (SignalObservation& o : epoch.signals) o.pseudorange_m += 1e-3 * kLightSpeed_m_s;
  }));
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].kind, EventKind::kCodeClockJump);
  EXPECT_NEAR(events[0].sizes.at(0), 1, 1e-5);
}

TEST(SlipDetector, ASignalFullOfHolesIsNotSearchedForEver) {
  const auto events = EventsOf(Day(400, [](int t, ObservationEpoch& epoch) {
    if (t % 2 == 1) epoch.signals[epoch.satellites[2].first_signal + 1].phase_cycles = kAbsent;
  }));
  // 50 searches to begin with and one per twenty steps; every hole is an event, with or without a search.
  int searched = 0, left = 0;
  for (const Event& event : events) {
    EXPECT_TRUE(event.kind == EventKind::kSignalGapContinuous ||
                event.kind == EventKind::kSignalGapUnresolved);
    (event.kind == EventKind::kSignalGapContinuous ? searched : left) += 1;
  }
  EXPECT_EQ(searched + left, 199);
  EXPECT_LE(searched, 50 + 400 / 20);
  EXPECT_GE(searched, 50);
}

/// Adds cycles to a satellite's signals in one epoch.
Change Spike(int satellite, int at, double first, double second, std::uint8_t flags = 0) {
  return [=](int t, ObservationEpoch& epoch) {
    if (t == at) Slip(satellite, at, first, second)(t, epoch);
    if (t != at && t != at + 1) return;
    const std::size_t place = epoch.satellites[static_cast<std::size_t>(satellite - 1)].first_signal;
    for (const std::size_t i : {place, place + 1}) epoch.signals[i].loss_of_lock = flags;
  };
}

TEST(SlipDetector, OneEpochOffIsAnOutlier) {
  const struct {
    double first, second;
  } spikes[] = {{0.41, 0}, {0, 0.37}, {0.29, 0.71}, {0.5, 0}, {0, -0.5}, {0.5, 0.5}, {-1.5, 0}};
  for (const auto& spike : spikes) {
    const auto events = EventsOf(Day(200, Spike(3, 100, spike.first, spike.second)));
    ASSERT_EQ(events.size(), 1U) << spike.first << ' ' << spike.second;
    EXPECT_EQ(events[0].kind, EventKind::kOutlier) << spike.first << ' ' << spike.second;
    EXPECT_EQ(events[0].time_ns, kStart_ns + 100 * kNanosecondsPerSecond);
    EXPECT_EQ(NameOf(events[0].satellite), "G03");
  }
}

TEST(SlipDetector, HalfCyclesThatAreGoneAgainStaySlipsWhereTheReceiverFlagsThem) {
  const auto events = EventsOf(Day(200, Spike(3, 100, 0.5, 0, kLossOfLock)));
  bool half = false;
  for (const Event& event : events) {
    EXPECT_NE(event.kind, EventKind::kOutlier);
    EXPECT_TRUE(event.loss_of_lock);
    half = half || event.kind == EventKind::kHalfCycle;
  }
  EXPECT_TRUE(half);
}

TEST(SlipDetector, EvidenceSaysWhatSlippedAndWhatDidNot) {
  const struct {
    double first, second;
    const char* text;
  } slips[] = {
      {0, -12,
       "2W slipped by -12 cycles; the other signal within 0\\.0[0-9] cycle; wide lane 1[12]\\.[0-9] \\+- "
       "0\\.[0-9]"},
      {9, 7,
       "1C slipped by 9 cycles and 2W by 7 cycles; no other signal; wide lane [12]\\.[0-9] \\+- 0\\.[0-9]"},
      {1, 1, "1C 2W slipped by 1 cycle; no other signal; wide lane -?0\\.[0-9] \\+- 0\\.[0-9]"}};
  for (const auto& slip : slips) {
    const auto events = EventsOf(Day(200, Slip(3, 100, slip.first, slip.second)));
    ASSERT_EQ(events.size(), 1U);
    EXPECT_TRUE(std::regex_match(events[0].evidence, std::regex(slip.text))) << events[0].evidence;
  }
}

TEST(SlipDetector, ASatelliteThatNeverFitsIsLeftOutAfterAWhile) {
  const auto events = EventsOf(Day(3000, [](int t, ObservationEpoch& epoch) {
    Slip(3, 0, 1000 * Noise(3, t, 7), 1000 * Noise(3, t, 8))(t, epoch);
  }));
  EXPECT_GT(events.size(), 10U);
  EXPECT_LT(events.size(), 300U);
  for (const Event& event : events) EXPECT_EQ(NameOf(event.satellite), "G03");
}

TEST(SlipDetector, TimesThatDoNotGoOnAreCountedAndLeftOut) {
  auto day = Day(100, Nothing);
  SlipDetector detector({}, {});
  for (const ObservationEpoch& epoch : day) {
    detector.Add(epoch);
    detector.Add(epoch);
  }
  detector.Finish();
  EXPECT_EQ(detector.DisorderedEpochs(), 100);
  EXPECT_TRUE(detector.TakeEvents().empty());
  EXPECT_EQ(detector.Counts().at({'G', 1}).observed_epochs, 99);
}

}  // namespace
}  // namespace orsolva_host::analysis
