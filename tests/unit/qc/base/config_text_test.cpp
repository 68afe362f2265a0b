#include "qc/base/config_text.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/sky.h"
#include "tests/support/trace_recorder.h"
#include "tests/unit/qc/process_runs.h"

namespace {

using namespace orsolva;

std::string Flags(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += " 1";
  return text;
}

TEST(ConfigText, HoldsEveryLabelInOrder) {
  config_qct host = sky::Config();
  host.enable_system[1] = 0;
  host.elevation = 7.5;
  host.interval = 30.0;
  for (int i = 0; i < 3; ++i) host.position[i] = 1000.0 * (i + 1);
  QcConfig config;
  config.ApplyDefaults();
  config.Overlay(host);
  std::string expected =
      "EnableSystem = GPS 1 GLO 0 BDS 1 GAL 1 QZS 1\n"
      "CombinationSystem = GPS 1 GLO 0 BDS 1 GAL 0 QZS 0\n"
      "Elevation = 7.500000\nInterval = 30.00\nAutoDetectFreq = 1\n"
      "EnablePosition = 1, 1000.0000, 2000.0000, 3000.0000\n"
      "SatelliteFreq:\n";
  for (const char* label : {"GPS", "GLO", "BDS", "GAL", "QZS", "BD3"}) expected += label + Flags(6) + "\n";
  expected += "IncludeSatellite:\n";
  for (const char* label : {"GPS", "GLO", "BDS", "GAL", "QZS", "BD3"}) expected += label + Flags(64) + "\n";
  EXPECT_EQ(ConfigText(config, 1 + 4), expected);
}

TEST(ConfigText, OfAbsurdValuesIsCutAndEnds) {
  QcConfig config;
  config.Interval = 1e300;
  for (double& component : config.Position) component = -1e300;
  EXPECT_LT(ConfigText(config, 0).size(), 2000U);
}

TEST(ConfigText, IsTracedWhenTheConfigurationOfARunIsComplete) {
  orsolva_test::TraceRecorder trace;
  const auto process = orsolva_test::Process(sky::Config());
  ASSERT_EQ(trace.Texts.size(), 1U);
  EXPECT_EQ(trace.Texts[0], ConfigText(process->Config, process->CombinationMask));
}

}  // namespace
