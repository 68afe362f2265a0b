#include "host/judging/shared_navigation.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "host/judging/inputs.h"
#include "tests/host/shared_data.h"

namespace {

using orsolva_host::Diagnostics;
using orsolva_host::InputsOf;
using orsolva_host::ReadNavigation;
using orsolva_host::RunInputs;
using orsolva_host::SharedNavigation;

TEST(SharedNavigation, IsReadOnceAndIsTheSameForAllThreads) {
  const std::string file = orsolva_test::DataFile("SEPT078M.21P");
  ORSOLVA_NEED_FILE(file);
  SharedNavigation navigation({file}, {});
  std::vector<std::shared_ptr<const ReadNavigation>> given(4);
  std::vector<std::thread> threads;
  for (auto& place : given) threads.emplace_back([&place, &navigation] { place = navigation.Get(); });
  for (std::thread& thread : threads) thread.join();
  for (const auto& read : given) EXPECT_EQ(read, given[0]);
  EXPECT_GT(given[0]->set.Size(), 0U);
  EXPECT_EQ(given[0]->files, std::vector<std::string>{file});
  EXPECT_FALSE(given[0]->failure.has_value());
}

TEST(SharedNavigation, KeepsTheErrorThatEndedReading) {
  SharedNavigation navigation({"/no/such.nav"}, {});
  for (int i = 0; i < 2; ++i) {
    const auto read = navigation.Get();
    ASSERT_TRUE(read->failure.has_value());
    EXPECT_EQ(read->failure->File(), "/no/such.nav");
    EXPECT_EQ(read->set.Size(), 0U);
  }
}

TEST(SharedNavigation, PreciseOrbitsAreRecognisedAmongTheFilesNamed) {
  const std::string records = orsolva_test::DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz");
  const std::string precise = orsolva_test::DataFile("GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz");
  ORSOLVA_NEED_FILE(records);
  ORSOLVA_NEED_FILE(precise);
  SharedNavigation both({precise, records}, {});
  ASSERT_TRUE(both.Get()->precise);
  EXPECT_EQ(both.Get()->precise->satellites.size(), 75U);
  EXPECT_TRUE(both.Get()->has_record_files);
  EXPECT_GT(both.Get()->set.Size(), 0U);
  EXPECT_EQ(both.Get()->files, (std::vector<std::string>{precise, records}));
  SharedNavigation alone({precise}, {});
  EXPECT_FALSE(alone.Get()->has_record_files);
  EXPECT_FALSE(SharedNavigation({records}, {}).Get()->precise);
  const RunInputs inputs = InputsOf({precise, "a.rnx"}, {});
  EXPECT_EQ(inputs.navigation, std::vector<std::string>{precise});
  EXPECT_EQ(inputs.observations, std::vector<std::string>{"a.rnx"});
}

/// Everything that is told, in one text.
std::string Told(const Diagnostics& diagnostics) {
  std::string text = std::to_string(diagnostics.Total()) + " " + std::to_string(diagnostics.Uncounted());
  for (const auto& n : diagnostics.Notices()) {
    text += "\n" + n.file + ":" + std::to_string(n.line) + " " + n.text + " " + std::to_string(n.count) +
            (n.recovered ? "" : " lost");
  }
  return text;
}

TEST(SharedNavigation, NoticesAppendedAreThoseToldInPlace) {
  // Beyond the kinds that are kept too, and with kinds that both have.
  for (const int kinds : {0, 3, 150, 250}) {
    Diagnostics first, second, all;
    const auto tell = [](Diagnostics& to, int begin, int end) {
      for (int round = 0; round < 2; ++round) {
        for (int i = begin; i < end; ++i) to.Add("file", i + round, "kind " + std::to_string(i), i % 2 == 0);
      }
    };
    tell(first, 0, 100);
    tell(second, 90, 90 + kinds);
    tell(all, 0, 100);
    tell(all, 90, 90 + kinds);
    first.Append(second);
    EXPECT_EQ(Told(first), Told(all)) << kinds;
  }
}

}  // namespace
