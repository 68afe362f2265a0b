// A simulated span as a recording of a u-blox receiver and as its RINEX twin, faults included: epochs and
// reports must be the same.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
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

/// With signals whose numbers the format has.
Scenario FaultyHour() {
  return orsolva_test::FaultyHour(
      R"("signals": {"G": ["1C", "2L", "5Q"], "E": ["1C", "5Q", "7Q"], "C2": ["2I", "7I"], "C3": ["2I", "1P", "5P"]}, )");
}

class UbxTwins : public testing::Test {
 protected:
  void SetUp() override {
    const FileSetOptions options{folder_.Path(), false, false, 0, true};
    names_ = FileNames(FaultyHour(), options);
    truth_ = WriteFileSet(FaultyHour(), options, [](std::uint64_t, std::uint64_t) {});
  }
  Report Judged(const std::string& file) const {
    const JudgingSettings settings;
    SharedNavigation named({names_.navigation}, settings.limits);
    Diagnostics diagnostics;
    return JudgeFile(file, settings, named, diagnostics);
  }

  orsolva_test::Folder folder_;
  FileSet names_;
  Truth truth_;
};

TEST_F(UbxTwins, HoldTheSameEpochsToTheBit) {
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
      ASSERT_EQ(full_a.signals[i].code, full_b.signals[i].code);
      ASSERT_EQ(full_a.signals[i].loss_of_lock, full_b.signals[i].loss_of_lock);
      phases += std::isnan(full_a.signals[i].phase_cycles) ? 0U : 1U;
      flags += full_a.signals[i].loss_of_lock & kLossOfLock;
    }
    ++epochs;
  }
  EXPECT_FALSE(file->Next(*b, full_b));
  EXPECT_EQ(epochs, truth_.delivered_epochs);
  EXPECT_GT(phases, 50U * 230U);
  EXPECT_GE(flags, 3U);  // those of the outages
  EXPECT_EQ(notices.Total(), 0);
}

TEST_F(UbxTwins, GiveTheSameReportToTheBit) {
  Report recording = Judged(names_.stream);
  const Report file = Judged(names_.observations);
  ASSERT_TRUE(recording.run.stream);
  EXPECT_EQ(recording.run.stream->format, "u-blox UBX");
  EXPECT_EQ(recording.run.receiver, file.run.receiver);
  EXPECT_EQ(recording.run.interval_source, "data");
  const std::string text = WriteText(recording);
  EXPECT_NE(text.find("02-15=236"), std::string::npos) << text;
  // What names and headers say is another thing than what was measured.
  recording.run.observation_file = file.run.observation_file;
  recording.run.rinex_version = file.run.rinex_version;
  recording.run.marker = file.run.marker;
  recording.run.antenna = file.run.antenna;
  recording.run.stream.reset();
  recording.run.interval_source = file.run.interval_source;
  recording.notices = file.notices;
  recording.notes = file.notes;
  EXPECT_EQ(WriteJson(recording), WriteJson(file));
  EXPECT_GT(file.analysis.events.size(), 10U);
}

}  // namespace
