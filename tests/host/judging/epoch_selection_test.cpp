// The part of a source that is judged: times, sampling, signals, and what becomes of the rest.
#include "host/judging/epoch_selection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/judging/judge_file.h"
#include "host/judging/selected_epochs.h"
#include "host/judging/selection_texts.h"
#include "host/report/json_writer.h"
#include "host/rinex/civil_time.h"
#include "tests/host/judging/simulated_files.h"

namespace {

using namespace orsolva_host;
using orsolva_test::SettingsOfSimulatedHour;
using orsolva_test::SimulatedFiles;

constexpr std::int64_t kMidnight_ns = 1'767'225'600 * kNanosecondsPerSecond;  // 2026-01-01

std::optional<TimeLimit> Limit(const std::string& text) {
  std::optional<TimeLimit> limit;
  EXPECT_EQ(ParseTimeLimit(text, limit), "") << text;
  return limit;
}

ChosenSignals Signals(const std::string& text) {
  ChosenSignals signals;
  EXPECT_EQ(ParseSignals(text, signals), "") << text;
  return signals;
}

TEST(TimeLimits, AreDatesDaysOfTheYearOrTimesOfDay) {
  constexpr std::int64_t kSecond = kNanosecondsPerSecond;
  EXPECT_EQ(Limit("2026-01-01")->time_ns, kMidnight_ns);
  EXPECT_EQ(Limit("2026-001")->time_ns, kMidnight_ns);
  EXPECT_EQ(Limit("2026-01-01T06:00")->time_ns, kMidnight_ns + 6 * 3600 * kSecond);
  EXPECT_EQ(Limit("2026-032 06:00:30.5")->time_ns,
            kMidnight_ns + 31 * 86400 * kSecond + 6 * 3600 * kSecond + 30 * kSecond + kSecond / 2);
  EXPECT_EQ(Limit("2026-01-01T24:00")->time_ns, kMidnight_ns + 86400 * kSecond);
  EXPECT_FALSE(Limit("2026-01-01")->of_first_day);
  EXPECT_TRUE(Limit("06:00")->of_first_day);
  EXPECT_EQ(Limit("06:00:01")->time_ns, 21601 * kSecond);
  EXPECT_FALSE(Limit("").has_value());
}

TEST(TimeLimits, RefuseWhatIsNoTime) {
  std::optional<TimeLimit> limit;
  for (const char* wrong :
       {"noon", "6:00", "06:60", "25:00", "24:00:01", "2026-02-29", "2026-13-01", "2025-366", "2026-01-01T",
        "2026-01-01T06:00Z", "2026-01-01T06:00:30.", "06:00:60", "1999", "2026/01/01", "-", ":"}) {
    EXPECT_NE(ParseTimeLimit(wrong, limit), "") << wrong;
    EXPECT_FALSE(limit.has_value()) << wrong;
  }
}

TEST(SignalsOfASelection, AreOfOneSystemOrOfAllAndLeaveOtherSystemsWhole) {
  const ChosenSignals gps = Signals("G:1C, 2W");
  EXPECT_TRUE(IsChosen(gps, 'G', {'1', 'C'}));
  EXPECT_FALSE(IsChosen(gps, 'G', {'2', 'L'}));
  EXPECT_TRUE(IsChosen(gps, 'E', {'7', 'Q'}));
  const ChosenSignals bands = Signals("1,E:5Q");
  EXPECT_TRUE(IsChosen(bands, 'R', {'1', 'P'}));
  EXPECT_FALSE(IsChosen(bands, 'R', {'2', 'C'}));
  EXPECT_TRUE(IsChosen(bands, 'E', {'1', 'X'}));
  EXPECT_TRUE(IsChosen(bands, 'E', {'5', 'Q'}));
  EXPECT_FALSE(IsChosen(bands, 'E', {'5', 'I'}));
  EXPECT_TRUE(IsChosen(Signals("C:1I"), 'C', {'2', 'I'}));
  EXPECT_TRUE(IsChosen({}, 'G', {'1', 'C'}));
}

TEST(SignalsOfASelection, ReadBackAsTheyAreWritten) {
  for (const char* text : {"G:1C,2W,E:5Q", "1C", "1,5", "1C,G:2W", ""}) {
    EXPECT_EQ(TextOf(Signals(text)), text);
  }
  ChosenSignals signals;
  for (const char* wrong : {"L1", "G:", "G:1C,,2W", "1c", "X:1C", "G;1C", "1CC", ","}) {
    EXPECT_NE(ParseSignals(wrong, signals), "") << wrong;
  }
}

/// Epochs of one GPS satellite at given times.
class MadeSource : public EpochSource {
 public:
  explicit MadeSource(std::vector<double> seconds) : seconds_(std::move(seconds)) {}
  const std::string& Name() const override { return name_; }
  const ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) override {
    if (next_ == seconds_.size()) return false;
    epoch = {};
    full.Clear();
    full.time_ns = kMidnight_ns + std::llround(seconds_[next_] * 1e9);
    epoch.time = TimeOfNanoseconds(full.time_ns);
    full.satellites = {{{'G', 5}, 0, 1}};
    full.signals.resize(1);
    full.signals[0].code = {'1', 'C'};
    full.signals[0].phase_cycles = 1e8;
    full.signals[0].loss_of_lock = next_ == lost_at ? kLossOfLock : 0;
    full.events = next_ == lost_at ? kPowerFailure : 0;
    ++next_;
    return true;
  }
  const std::optional<FileError>& Failure() const override { return failure_; }

  std::size_t lost_at = 1000;

 private:
  std::string name_ = "made";
  ObservationHeader header_;
  std::vector<double> seconds_;
  std::size_t next_ = 0;
  std::optional<FileError> failure_;
};

std::vector<double> Taken(MadeSource& source, const EpochSelection& selection) {
  Diagnostics diagnostics;
  SelectedEpochs selected(source, selection, diagnostics);
  std::vector<double> seconds;
  ObsEpoch_QC_gbt epoch;
  ObservationEpoch full;
  while (selected.Next(epoch, full)) seconds.push_back(SecondsBetween(full.time_ns, kMidnight_ns));
  return seconds;
}

std::vector<double> Sampled(std::vector<double> seconds, double sampling_s) {
  MadeSource source(std::move(seconds));
  EpochSelection selection;
  selection.sampling_s = sampling_s;
  return Taken(source, selection);
}

TEST(SelectedEpochs, BeginWithTheStartAndEndBeforeTheEnd) {
  MadeSource source({0, 30, 60, 90});
  EXPECT_EQ(Taken(source, {Limit("00:00:30"), Limit("2026-01-01T00:01:30"), {}, {}}),
            (std::vector<double>{30, 60}));
}

TEST(SelectedEpochs, GoFromAnEveningToTheNextMorning) {
  MadeSource source({79000, 80000, 86400, 90000, 90060});
  EXPECT_EQ(Taken(source, {Limit("22:00"), Limit("01:00"), {}, {}}), (std::vector<double>{80000, 86400}));
}

TEST(SelectedEpochs, AreSampledOnTheGridOfGpsTime) {
  EXPECT_EQ(Sampled({1, 2, 29, 30, 31, 59, 60, 61, 95, 120}, 30), (std::vector<double>{30, 60, 120}));
  // Tags that wander, and duplicates.
  EXPECT_EQ(Sampled({-0.001, 1, 29, 30.001, 30.001, 59.999}, 30),
            (std::vector<double>{-0.001, 30.001, 59.999}));
}

TEST(SelectedEpochs, OfAPhoneAreSampledOffTheFullSecond) {
  std::vector<double> phone;
  for (int i = 0; i < 62; ++i) phone.push_back(i + 0.44);
  EXPECT_EQ(Sampled(phone, 30), (std::vector<double>{30.44, 60.44}));
}

TEST(SelectedEpochs, ThatAreLeftOutPassTheirFlagsOn) {
  for (const std::size_t lost_at : {0U, 1U, 2U, 3U}) {
    MadeSource source({30, 40, 50, 60, 90});
    source.lost_at = lost_at;
    Diagnostics diagnostics;
    EpochSelection selection;
    selection.sampling_s = 30;
    SelectedEpochs selected(source, selection, diagnostics);
    ObsEpoch_QC_gbt epoch;
    ObservationEpoch full;
    std::vector<int> flags;
    while (selected.Next(epoch, full)) {
      flags.push_back(full.signals[0].loss_of_lock);
      EXPECT_EQ(full.events, full.signals[0].loss_of_lock != 0 ? kPowerFailure : 0U);
    }
    EXPECT_EQ(flags, lost_at == 0 ? (std::vector<int>{1, 0, 0}) : (std::vector<int>{0, 1, 0})) << lost_at;
  }
}

Report Judged(const SimulatedFiles& files, const JudgingSettings& settings) {
  SharedNavigation navigation({files.Path("nav.rnx")}, settings.limits);
  Diagnostics diagnostics;
  return JudgeFile(files.Path("a.rnx"), settings, navigation, diagnostics);
}

TEST(SelectedEpochs, AreThoseOfLibraryAndAnalysisAlike) {
  const SimulatedFiles files;
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.selection.start = Limit("00:10");
  settings.selection.end = Limit("00:50");
  settings.selection.sampling_s = 60;
  settings.selection.signals = Signals("G:1C,2W,E:1,5");
  const Report report = Judged(files, settings);
  EXPECT_EQ(report.run.epochs, 40);
  EXPECT_EQ(report.run.interval_s, 60);
  EXPECT_EQ(report.run.judged_epochs, 40);
  EXPECT_EQ(report.run.lost_epochs, 0);
  EXPECT_EQ(report.analysis.figures.span.present_epochs, 40);
  EXPECT_TRUE(report.analysis.figures.contradictions.empty());
  for (const SignalReport& signal : report.signals)
    EXPECT_TRUE(IsChosen(settings.selection.signals, signal.letter, {signal.signal[0], signal.signal[1]}));
  for (const analysis::SignalFigures& signal : report.analysis.figures.signals)
    EXPECT_TRUE(IsChosen(settings.selection.signals, signal.system, signal.code)) << NameOf(signal.code);
  ASSERT_TRUE(report.run.selection.has_value());
  EXPECT_EQ(report.run.selection->epochs_left_out, 80);
  EXPECT_EQ(report.run.selection->signals, "G:1C,2W,E:1,5");
  EXPECT_EQ(TimeText(*report.run.selection->start), "2020-06-25 00:10:00.000");
}

TEST(SelectedEpochs, OfTheWholeFileMakeItsReport) {
  const SimulatedFiles files;
  JudgingSettings settings = SettingsOfSimulatedHour();
  const Report whole = Judged(files, settings);
  settings.selection.start = Limit("00:00");
  settings.selection.sampling_s = 30;
  Report report = Judged(files, settings);
  ASSERT_TRUE(report.run.selection.has_value());
  EXPECT_EQ(report.run.selection->epochs_left_out, 0);
  report.run.selection.reset();
  EXPECT_EQ(WriteJson(report), WriteJson(whole));
}

TEST(SelectedEpochs, SayWhereTheDataLieWhenNoneIsLeft) {
  const SimulatedFiles files;
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.selection.start = Limit("2021-01-01");
  try {
    Judged(files, settings);
    FAIL() << "judged";
  } catch (const RunError& error) {
    const std::string text = error.what();
    EXPECT_NE(text.find("from 2020-06-25 00:00:00.000 to 2020-06-25 00:59:30.000"), std::string::npos)
        << text;
  }
}

TEST(SelectedEpochs, NameTheSignalsThatTheDataDoNotHold) {
  const SimulatedFiles files;
  JudgingSettings settings = SettingsOfSimulatedHour();
  settings.selection.signals = Signals("G:1C,2W,9Z");
  const Report report = Judged(files, settings);
  bool named = false;
  for (const ReportNotice& notice : report.notices)
    named = named || notice.text.find("G:9Z") != std::string::npos;
  EXPECT_TRUE(named);
}

}  // namespace
