// Files of several versions and forms joined into one: every part is read as it would be alone.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/rinex/observation_reader.h"
#include "tests/host/folder.h"
#include "tests/host/shared_data.h"

namespace {

using namespace orsolva_host;
using orsolva_test::DataFile;
using orsolva_test::ReadText;

/// What is read of an epoch, in a text.
std::string Shown(const ObservationEpoch& epoch) {
  std::string text = std::to_string(epoch.time_ns);
  for (const SatelliteObservation& satellite : epoch.satellites) {
    text += " " + NameOf(satellite.id);
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const SignalObservation& o = epoch.signals[satellite.first_signal + i];
      text += " " + NameOf(o.code) + "=" + std::to_string(o.pseudorange_m) + "," +
              std::to_string(o.phase_cycles) + "," + std::to_string(o.snr_dbhz);
    }
  }
  return text;
}

struct Epochs {
  std::vector<std::string> shown;
  Diagnostics notices;

  explicit Epochs(const std::string& text) {
    ObservationReader reader(TextBytes(text), "test.obs", notices);
    ObsEpoch_QC_gbt record;
    ObservationEpoch full;
    while (reader.Next(record, full)) shown.push_back(Shown(full));
    EXPECT_FALSE(reader.Failure());
  }
};

TEST(Splices, OfOtherVersionsAndFormsAreReadAsTheyWouldBeAlone) {
  const std::vector<std::string> names = {"AJAC3550.21O",  // RINEX 2, plain
                                          "ACOR00ESP_R_20213550000_01D_30S_MO.crx", "zegv0010.21d",
                                          "ACOR00ESP_R_20213550000_01D_30S_MO.rnx", "zegv0010.21o"};
  std::string spliced;
  std::vector<std::string> expected;
  for (const std::string& name : names) {
    ORSOLVA_NEED_FILE(DataFile(name));
    const std::string text = ReadText(DataFile(name));
    spliced += text;
    const Epochs alone(text);
    expected.insert(expected.end(), alone.shown.begin(), alone.shown.end());
  }
  const Epochs read(spliced);
  EXPECT_EQ(read.shown, expected);
  int continued = 0;
  for (const Notice& notice : read.notices.Notices()) {
    if (notice.text.find("continues as") == 0) continued += static_cast<int>(notice.count);
  }
  EXPECT_EQ(continued, 4);
}

}  // namespace
