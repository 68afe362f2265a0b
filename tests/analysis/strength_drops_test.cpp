// Drops found in made-up passes with known truth: strength by elevation, power of each satellite, multipath
// as noise.
#include "host/analysis/figures/strength_drops.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "tests/analysis/figure_epochs.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kSatellites = 12;
constexpr std::int32_t kDay = 288;  // windows

/// A number in [-1, 1) that depends on its arguments alone.
double Noise(int a, int b) {
  std::uint64_t x = static_cast<std::uint64_t>(a) * 1000003 + static_cast<std::uint64_t>(b) * 7919 + 12345;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return static_cast<double>((x ^ (x >> 31)) >> 11) * 0x1p-52 - 1;
}

/// Satellites pass for six hours every twelve; each with another highest elevation.
double Elevation(int satellite, int window) {
  const int since_rise = (window + 24 * satellite) % 144;
  return (30 + 5 * satellite) * std::sin(3.14159265 * since_rise / 72.0);
}

double Usual(int satellite, double elevation_deg) {
  return 33 + 16 * std::sin(elevation_deg * 0.0174533) + (satellite % 3) * 2;
}

using Drop = std::function<double(int satellite, int window, int band)>;

/// GPS 1C and 2L of all satellites, with truth taken off.
class Passes {
 public:
  explicit Passes(const Drop& drop, double spread_db = 1.5) {
    ObservationEpoch epoch;
    for (int s = 0; s < kSatellites; ++s)
      AddSatellite(epoch, {'G', static_cast<std::uint8_t>(s + 1)}, {"1C", "2L"});
    roster_.Take(epoch);
    windows_.resize(roster_.Signals().size());
    for (int s = 0; s < kSatellites; ++s) {
      for (int w = 0; w < kDay; ++w) {
        const double elevation_deg = Elevation(s, w);
        if (elevation_deg < 1) continue;
        for (int band = 0; band < 2; ++band) {
          const double dbhz = Usual(s, elevation_deg) + 1.5 * Noise(2 * s + band, w) - drop(s, w, band);
          windows_[static_cast<std::size_t>(2 * s + band)].push_back(
              {w, static_cast<float>(dbhz), static_cast<float>(elevation_deg)});
        }
      }
    }
    StrengthCurve::Bins usual;
    for (std::size_t i = 0; i < kElevationBins; ++i) usual[i] = Usual(1, 5.0 * static_cast<double>(i) + 2.5);
    const StrengthCurve curve(usual);
    StrengthCurve::Bins spread;
    spread.fill(spread_db);
    drops_ = std::make_unique<StrengthDrops>(
        roster_, std::vector<StrengthCurves>(2, StrengthCurves{curve, curve, StrengthCurve(spread)}),
        windows_);
  }

  std::vector<StrengthDrop> System(std::size_t band) const { return drops_->OfSystem(band); }
  std::vector<StrengthDrop> Satellite(int satellite, std::size_t band) const {
    return drops_->OfSatellite(2 * static_cast<std::size_t>(satellite) + band);
  }
  std::size_t OfAllSatellites() const {
    std::size_t found = 0;
    for (std::size_t i = 0; i < windows_.size(); ++i) found += drops_->OfSatellite(i).size();
    return found;
  }

 private:
  SignalRoster roster_;
  std::vector<std::vector<StrengthWindow>> windows_;
  std::unique_ptr<StrengthDrops> drops_;
};

std::int64_t Start(std::int32_t window) { return window * kStrengthWindow_ns; }

TEST(StrengthDrops, AQuietDayHasNone) {
  const Passes passes([](int, int, int) { return 0.0; });
  EXPECT_TRUE(passes.System(0).empty());
  EXPECT_TRUE(passes.System(1).empty());
  EXPECT_EQ(passes.OfAllSatellites(), 0U);
}

TEST(StrengthDrops, InterferenceOfTenMinutesHitsOneBandOfAllSatellites) {
  const Passes passes([](int, int w, int band) { return band == 0 && (w == 100 || w == 101) ? 8.0 : 0.0; });
  const std::vector<StrengthDrop> drops = passes.System(0);
  ASSERT_EQ(drops.size(), 1U);
  EXPECT_EQ(drops[0].from_ns, Start(100));
  EXPECT_EQ(drops[0].to_ns, Start(102));
  EXPECT_NEAR(drops[0].mean_drop_db, 8, 2);
  EXPECT_EQ(drops[0].other_bands, false);
  EXPECT_TRUE(passes.System(1).empty());
  EXPECT_EQ(passes.OfAllSatellites(), 0U);
}

TEST(StrengthDrops, InterferenceIsNotFoundWithinTheSpreadOfASignal) {
  const Passes passes([](int, int w, int) { return w == 100 || w == 101 ? 8.0 : 0.0; }, 6);
  EXPECT_TRUE(passes.System(0).empty());
}

TEST(StrengthDrops, AFailingAntennaHitsAllBands) {
  const Passes passes([](int, int w, int) { return w >= 200 && w < 270 ? 6.0 : 0.0; });
  for (const std::size_t band : {0U, 1U}) {
    const std::vector<StrengthDrop> drops = passes.System(band);
    ASSERT_EQ(drops.size(), 1U);
    EXPECT_LE(std::abs(drops[0].from_ns - Start(200)), kStrengthWindow_ns);
    EXPECT_LE(std::abs(drops[0].to_ns - Start(270)), kStrengthWindow_ns);
    EXPECT_EQ(drops[0].other_bands, true);
  }
  EXPECT_EQ(passes.OfAllSatellites(), 0U) << "what hits the system is not reported for each satellite again";
}

TEST(StrengthDrops, AnObstructionHitsAllBandsOfASatellite) {
  // Satellite 4 rises at window 48: 20 windows of its first hours in view.
  const Passes passes([](int s, int w, int) { return s == 4 && w >= 54 && w < 74 ? 7.0 : 0.0; });
  const std::vector<StrengthDrop> drops = passes.Satellite(4, 0);
  ASSERT_EQ(drops.size(), 1U);
  EXPECT_LE(std::abs(drops[0].from_ns - Start(54)), 2 * kStrengthWindow_ns);
  EXPECT_LE(std::abs(drops[0].to_ns - Start(74)), 2 * kStrengthWindow_ns);
  EXPECT_NEAR(drops[0].mean_drop_db, 7, 1.5);
  EXPECT_EQ(drops[0].other_bands, true);
  EXPECT_EQ(passes.OfAllSatellites(), 2U);
  EXPECT_TRUE(passes.System(0).empty());
}

TEST(StrengthDrops, ASatelliteThatChangesThePowerOfOneSignalHitsOneBand) {
  const Passes passes([](int s, int w, int band) { return s == 7 && band == 1 && w < 75 ? 10.0 : 0.0; });
  EXPECT_TRUE(passes.Satellite(7, 0).empty());
  const std::vector<StrengthDrop> drops = passes.Satellite(7, 1);
  ASSERT_GE(drops.size(), 1U);
  EXPECT_EQ(drops[0].other_bands, false);
  EXPECT_GT(drops[0].mean_drop_db, 8);
}

TEST(StrengthDrops, LessThanAnHourOfOneSatelliteIsNone) {
  const Passes passes([](int s, int w, int) { return s == 4 && w >= 54 && w < 63 ? 9.0 : 0.0; });
  EXPECT_EQ(passes.OfAllSatellites(), 0U);
}

TEST(StrengthDrops, ThreeDecibelsAreNone) {
  const Passes passes(
      [](int s, int w, int) { return (s == 4 && w >= 54 && w < 74) || w == 150 ? 2.5 : 0.0; });
  EXPECT_EQ(passes.OfAllSatellites(), 0U);
  EXPECT_TRUE(passes.System(0).empty());
}

TEST(StrengthDrops, HalfTheSatellitesAreNoSystem) {
  // In view are satellites 2 to 4 and 8 to 10.
  const Passes passes([](int s, int w, int) { return s < 5 && w >= 100 && w < 106 ? 12.0 : 0.0; });
  EXPECT_TRUE(passes.System(0).empty());
}

TEST(StrengthCurve, IsInterpolatedBetweenTheMiddlesOfBins) {
  StrengthCurve::Bins bins;
  bins.fill(kAbsent);
  bins[2] = 40, bins[3] = 42;
  const StrengthCurve curve(bins);
  EXPECT_DOUBLE_EQ(curve.At(12.5), 40);
  EXPECT_DOUBLE_EQ(curve.At(15), 41);
  EXPECT_DOUBLE_EQ(curve.At(9), 40);
  EXPECT_DOUBLE_EQ(curve.At(20), 42);
  EXPECT_TRUE(std::isnan(curve.At(30)));
  EXPECT_TRUE(std::isnan(curve.At(2)));
}

}  // namespace
}  // namespace orsolva_host::analysis
