// A simulated span as an RTCM 3 stream and as its RINEX twin, faults included: reports must be the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "host/judging/judge_file.h"
#include "host/report/json_writer.h"
#include "host/report/text_writer.h"
#include "host/simulator/file_set.h"
#include "tests/host/folder.h"
#include "tests/host/judging/faulty_hour.h"

namespace {

using namespace orsolva_host;

using orsolva_test::FaultyHour;

/// The files of a span, with navigation and stream in folders of their own.
class Twins {
 public:
  explicit Twins(int kind, const Scenario& scenario = FaultyHour()) {
    const FileSetOptions options{folder_.Path(), false, false, kind};
    names_ = FileNames(scenario, options);
    truth_ = WriteFileSet(scenario, options, [](std::uint64_t, std::uint64_t) {});
  }
  const FileSet& Names() const { return names_; }
  const Truth& TruthOfSpan() const { return truth_; }

  /// @param navigation  also that of the folder; else the stream's own
  Report Judged(const std::string& file, bool navigation) const {
    JudgingSettings settings;
    SharedNavigation named(
        navigation ? std::vector<std::string>{names_.navigation} : std::vector<std::string>(),
        settings.limits);
    Diagnostics diagnostics;
    return JudgeFile(file, settings, named, diagnostics);
  }

 private:
  orsolva_test::Folder folder_;
  FileSet names_;
  Truth truth_;
};

class RtcmTwins : public testing::TestWithParam<int> {};

TEST_P(RtcmTwins, HoldTheSameEpochsToTheBit) {
  const Twins twins(GetParam());
  Diagnostics notices;
  const JudgingSettings settings;
  const auto stream = OpenObservations(twins.Names().stream, settings, notices);
  const auto file = OpenObservations(twins.Names().observations, settings, notices);
  const auto a = std::make_unique<ObsEpoch_QC_gbt>(), b = std::make_unique<ObsEpoch_QC_gbt>();
  std::memset(a.get(), 0, sizeof *a);
  std::memset(b.get(), 0, sizeof *b);
  ObservationEpoch full_a, full_b;
  int epochs = 0;
  std::size_t phases = 0, flags = 0;
  while (stream->Next(*a, full_a)) {
    ASSERT_TRUE(file->Next(*b, full_b));
    ASSERT_EQ(std::memcmp(a.get(), b.get(), sizeof *a), 0) << "epoch " << epochs;
    ASSERT_EQ(full_a.time_ns, full_b.time_ns);
    ASSERT_EQ(full_a.signals.size(), full_b.signals.size());
    for (std::size_t i = 0; i < full_a.signals.size(); ++i) {
      const SignalObservation &x = full_a.signals[i], &y = full_b.signals[i];
      ASSERT_EQ(x.code, y.code);
      ASSERT_EQ(x.loss_of_lock, y.loss_of_lock);
      for (const auto member : {&SignalObservation::pseudorange_m, &SignalObservation::phase_cycles,
                                &SignalObservation::doppler_hz, &SignalObservation::snr_dbhz}) {
        ASSERT_TRUE(x.*member == y.*member || (std::isnan(x.*member) && std::isnan(y.*member)));
      }
      phases += std::isnan(x.phase_cycles) ? 0 : 1;
      flags += (x.loss_of_lock & kLossOfLock) != 0 ? 1 : 0;
    }
    ++epochs;
  }
  EXPECT_FALSE(file->Next(*b, full_b));
  EXPECT_EQ(epochs, static_cast<int>(twins.TruthOfSpan().delivered_epochs));
  EXPECT_GT(phases, 50U * 230U);
  EXPECT_GE(flags, 3U);  // those of the outages
}

TEST_P(RtcmTwins, GiveTheSameReportToTheBit) {
  const Twins twins(GetParam());
  Report stream = twins.Judged(twins.Names().stream, true);
  const Report file = twins.Judged(twins.Names().observations, true);
  EXPECT_EQ(stream.run.interval_source, "data");
  EXPECT_EQ(stream.run.receiver, file.run.receiver);
  EXPECT_EQ(stream.run.antenna, file.run.antenna);
  // What names and headers say is another thing than what was measured.
  stream.run.observation_file = file.run.observation_file;
  stream.run.rinex_version = file.run.rinex_version;
  stream.run.marker = file.run.marker;
  stream.run.stream.reset();
  stream.run.interval_source = file.run.interval_source;
  stream.notices = file.notices;
  stream.notes = file.notes;
  EXPECT_EQ(WriteJson(stream), WriteJson(file));
  EXPECT_GT(file.analysis.events.size(), 10U);
}

TEST_P(RtcmTwins, OfTheStreamsOwnEphemeridesHaveTheSameCounts) {
  const Twins twins(GetParam());
  const Report named = twins.Judged(twins.Names().stream, true);
  const Report own = twins.Judged(twins.Names().stream, false);
  EXPECT_EQ(own.run.navigation_files, std::vector<std::string>{twins.Names().stream});
  ASSERT_EQ(own.systems.size(), named.systems.size());
  for (std::size_t i = 0; i < own.systems.size(); ++i) {
    EXPECT_EQ(own.systems[i].figures.expected, named.systems[i].figures.expected);
    EXPECT_EQ(own.systems[i].figures.observed, named.systems[i].figures.observed);
  }
  ASSERT_TRUE(own.run.position_m && named.run.position_m);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    // Ephemerides of messages are rounded to some centimetres on the orbit.
    EXPECT_NEAR((*own.run.position_m)[axis], (*named.run.position_m)[axis], 0.2);
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, RtcmTwins, testing::Values(4, 7));

TEST(RtcmReport, HasMessagesByTypeAndTheStepsOfMsm4Alone) {
  for (const int kind : {4, 7}) {
    const Twins twins(kind);
    const Report report = twins.Judged(twins.Names().stream, false);
    ASSERT_TRUE(report.run.stream);
    const StreamFacts& stream = *report.run.stream;
    const auto found = std::find_if(stream.messages.begin(), stream.messages.end(),
                                    [kind](const StreamMessages& row) { return row.type == 1070 + kind; });
    ASSERT_NE(found, stream.messages.end());
    EXPECT_EQ(found->messages, 236U);
    EXPECT_TRUE(found->decoded);
    EXPECT_EQ(stream.crc_errors, 0U);
    EXPECT_EQ(stream.coarse_systems.empty(), kind == 7);
    const std::string text = WriteText(report), json = WriteJson(report);
    EXPECT_NE(text.find(kind == 4 ? "1074=236" : "1077=236"), std::string::npos);
    EXPECT_EQ(text.find("in MSM4 or MSM5: code 18 mm, phase 0.6 mm") != std::string::npos, kind == 4);
    EXPECT_EQ(json.find("\"pseudorange_m\": 0.018") != std::string::npos, kind == 4);
  }
}

}  // namespace
