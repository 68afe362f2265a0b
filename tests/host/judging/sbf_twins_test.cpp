// A simulated span as a recording of a Septentrio receiver and as its RINEX twin, faults included: epochs and
// reports must be the same.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/judging/judge_file.h"
#include "host/report/json_writer.h"
#include "host/report/text_writer.h"
#include "host/simulator/file_set.h"
#include "tests/host/folder.h"
#include "tests/host/judging/faulty_hour.h"

namespace {

using namespace orsolva_host;

/// With several signals on most bands, BDS-2 and BDS-3 among them.
Scenario FaultyHour() {
  return orsolva_test::FaultyHour(
      R"("signals": {"G": ["1C", "1W", "2W", "2L", "5Q"], "R": ["1C", "1P", "2P", "2C"], )"
      R"("E": ["1C", "5Q", "7Q", "8Q", "6C"], "C2": ["2I", "7I", "6I"], "C3": ["2I", "1P", "5P", "6I"]}, )");
}

class SbfTwins : public testing::Test {
 protected:
  void SetUp() override {
    FileSetOptions options;
    options.folder = folder_.Path();
    options.sbf = true;
    names_ = FileNames(FaultyHour(), options);
    truth_ = WriteFileSet(FaultyHour(), options, [](std::uint64_t, std::uint64_t) {});
  }
  /// @param navigation  that of the folder; else the recording's own
  Report Judged(const std::string& file, bool navigation = true) const {
    JudgingSettings settings;
    SharedNavigation named(
        navigation ? std::vector<std::string>{names_.navigation} : std::vector<std::string>(),
        settings.limits);
    Diagnostics diagnostics;
    return JudgeFile(file, settings, named, diagnostics);
  }

  orsolva_test::Folder folder_;
  FileSet names_;
  Truth truth_;
};

TEST_F(SbfTwins, HoldTheSameEpochsToTheBit) {
  Diagnostics notices;
  const auto recording = OpenObservations(names_.stream, {}, notices);
  const auto file = OpenObservations(names_.observations, {}, notices);
  std::size_t channels = 0;
  for (std::size_t slot = 0; slot < file->Header().glonass_channels.size(); ++slot) {
    const auto& channel = recording->Header().glonass_channels[slot];  // of those observed
    if (!channel) continue;
    ++channels;
    EXPECT_EQ(channel, file->Header().glonass_channels[slot]);
  }
  EXPECT_GE(channels, 6U);
  const auto a = std::make_unique<ObsEpoch_QC_gbt>(), b = std::make_unique<ObsEpoch_QC_gbt>();
  std::memset(a.get(), 0, sizeof *a);
  std::memset(b.get(), 0, sizeof *b);
  ObservationEpoch full_a, full_b;
  std::uint64_t epochs = 0;
  std::size_t phases = 0, flags = 0;
  while (recording->Next(*a, full_a)) {
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
      phases += std::isnan(x.phase_cycles) ? 0U : 1U;
      flags += x.loss_of_lock & kLossOfLock;
    }
    ++epochs;
  }
  EXPECT_FALSE(file->Next(*b, full_b));
  EXPECT_EQ(epochs, truth_.delivered_epochs);
  EXPECT_GT(phases, 100U * 230U);  // further signals included
  EXPECT_GE(flags, 3U);            // those of the outages
  EXPECT_EQ(notices.Total(), 0);
}

TEST_F(SbfTwins, GiveTheSameReportToTheBit) {
  Report recording = Judged(names_.stream);
  const Report file = Judged(names_.observations);
  ASSERT_TRUE(recording.run.stream);
  EXPECT_EQ(recording.run.stream->format, "Septentrio SBF");
  EXPECT_EQ(recording.run.receiver, file.run.receiver);
  EXPECT_EQ(recording.run.antenna, file.run.antenna);
  EXPECT_EQ(recording.run.marker, file.run.marker);
  EXPECT_EQ(recording.run.interval_source, "data");
  const std::string text = WriteText(recording);
  EXPECT_NE(text.find("4027=236"), std::string::npos) << text;
  // What names and headers say is another thing than what was measured.
  recording.run.observation_file = file.run.observation_file;
  recording.run.rinex_version = file.run.rinex_version;
  recording.run.stream.reset();
  recording.run.interval_source = file.run.interval_source;
  recording.notices = file.notices;
  recording.notes = file.notes;
  EXPECT_EQ(WriteJson(recording), WriteJson(file));
  EXPECT_GT(file.analysis.events.size(), 10U);
}

TEST_F(SbfTwins, OfTheRecordingsOwnEphemeridesHaveTheSameCounts) {
  const Report named = Judged(names_.stream), own = Judged(names_.stream, false);
  EXPECT_EQ(own.run.navigation_files, std::vector<std::string>{names_.stream});
  ASSERT_EQ(own.systems.size(), named.systems.size());
  ASSERT_GE(own.systems.size(), 4U);
  for (std::size_t i = 0; i < own.systems.size(); ++i) {
    EXPECT_EQ(own.systems[i].figures.expected, named.systems[i].figures.expected);
    EXPECT_EQ(own.systems[i].figures.observed, named.systems[i].figures.observed);
  }
  ASSERT_TRUE(own.run.position_m && named.run.position_m);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    // Velocities of GLONASS in single precision, 0.1 mm/s, are 0.1 m of its orbit after a quarter of an hour.
    EXPECT_NEAR((*own.run.position_m)[axis], (*named.run.position_m)[axis], 0.05);
  }
}

}  // namespace
