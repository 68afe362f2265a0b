#include "host/judging/nominal_interval.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "host/judging/analysis_run.h"
#include "host/judging/run_error.h"

namespace {

using namespace orsolva_host;

class Headed : public EpochSource {
 public:
  explicit Headed(std::optional<double> interval_s) { header_.interval_s = interval_s; }
  const std::string& Name() const override { return name_; }
  const ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt&, ObservationEpoch&) override { return false; }
  const std::optional<FileError>& Failure() const override { return failure_; }

 private:
  std::string name_ = "test.rnx";
  ObservationHeader header_;
  std::optional<FileError> failure_;
};

struct Chosen {
  NominalInterval interval;
  std::string notice;
};

Chosen Choose(std::optional<double> header_s, const std::vector<double>& seconds,
              std::optional<double> option_s = std::nullopt) {
  std::vector<ObsEpoch_QC_gbt> epochs(seconds.size());
  for (std::size_t i = 0; i < seconds.size(); ++i)
    epochs[i].time = {1000000 + static_cast<std::int64_t>(seconds[i]), seconds[i] - std::int64_t(seconds[i])};
  JudgingSettings settings;
  settings.interval_s = option_s;
  Diagnostics diagnostics;
  Chosen chosen;
  chosen.interval = ChooseInterval(settings, Headed(header_s), epochs.data(), epochs.size(), diagnostics);
  if (!diagnostics.Notices().empty()) chosen.notice = diagnostics.Notices()[0].text;
  return chosen;
}

std::vector<double> Every(double step_s, std::size_t count) {
  std::vector<double> seconds;
  for (std::size_t i = 0; i < count; ++i) seconds.push_back(step_s * static_cast<double>(i));
  return seconds;
}

TEST(NominalInterval, IsTheDatasWhereTheHeaderIsWrong) {
  const Chosen chosen = Choose(15.0, Every(30, 100));
  EXPECT_EQ(chosen.interval.interval_s, 30);
  EXPECT_STREQ(chosen.interval.source, "data");
  EXPECT_EQ(chosen.notice,
            "the header says an interval of 15 s and the data have 30 s; that of the data is used unless "
            "--interval says otherwise");
}

TEST(NominalInterval, IsTheHeadersWhereItAgreesOrTheDataSayTooLittle) {
  EXPECT_STREQ(Choose(30.0, Every(30.1, 100)).interval.source, "header");
  EXPECT_EQ(Choose(30.0, Every(30, 100)).notice, "");
  const Chosen few = Choose(15.0, Every(30, 10));
  EXPECT_EQ(few.interval.interval_s, 15) << "nine steps are too few";
  EXPECT_NE(few.notice.find("the header's is used"), std::string::npos);
  EXPECT_EQ(Choose(15.0, Every(30, 11)).interval.interval_s, 30) << "ten are enough";
  std::vector<double> scattered;
  for (int i = 0; i < 30; ++i) scattered.push_back(i * i * 15.0);
  EXPECT_EQ(Choose(15.0, scattered).interval.interval_s, 15) << "no step is that of half of all";
}

TEST(NominalInterval, IsNotMisledByGaps) {
  std::vector<double> seconds;
  for (int i = 0; i < 200; ++i) {
    if (i % 4 != 0) seconds.push_back(30.0 * i);
  }
  EXPECT_EQ(Choose(30.0, seconds).interval.interval_s, 30);
  EXPECT_EQ(Choose(30.0, seconds).notice, "");
}

TEST(NominalInterval, OfTheOptionNeedsNoHeaderAndNoData) {
  EXPECT_STREQ(Choose(15.0, Every(30, 100), 5.0).interval.source, "option");
  EXPECT_STREQ(Choose(std::nullopt, Every(30, 3)).interval.source, "data");
  EXPECT_THROW(Choose(std::nullopt, {0}), RunError);
}

/// That of the analysis for steps of 60 to 240 s in equal numbers.
double AnalysisIntervalOfHoles(std::optional<double> header_s, std::optional<double> option_s) {
  JudgingSettings settings;
  settings.interval_s = option_s;
  AnalysisRun run(settings, Headed(header_s), {}, nullptr, nullptr, nullptr);
  std::int64_t seconds = 1593043200;
  for (int i = 0; i < 49; ++i) {
    ObservationEpoch epoch;
    epoch.time_ns = seconds * 1000000000;
    run.Add(epoch);
    seconds += 60 + 30 * (i % 7);
  }
  return run.Finish({}).figures.span.interval_s;
}

TEST(NominalInterval, OfTheAnalysisIsTheOneStatedWhereNoStepIsFrequent) {
  EXPECT_EQ(AnalysisIntervalOfHoles(std::nullopt, std::nullopt), 60);
  EXPECT_EQ(AnalysisIntervalOfHoles(30, std::nullopt), 30);
  EXPECT_EQ(AnalysisIntervalOfHoles(60, 30), 30) << "that of the user goes first";
}

}  // namespace
