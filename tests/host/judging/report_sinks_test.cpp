#include "host/judging/report_sinks.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/host/folder.h"
#include "tests/host/sample_report.h"
#include "tests/host/shared_data.h"

namespace {

using namespace orsolva_host;
using orsolva_test::Folder;
using orsolva_test::ReadText;
using Names = std::set<std::string>;

FileOutcome Good() { return {orsolva_test::SampleReport(), "", false}; }
FileOutcome Bad() { return {std::nullopt, "b.rnx: why not", false}; }
FileOutcome Cancelled() { return {std::nullopt, "", true}; }

/// Quiet, so that nothing goes to standard output.
OutputSettings Into(const std::string& folder, std::vector<Format> formats) {
  OutputSettings settings;
  settings.quiet = true;
  settings.folder = folder;
  settings.formats = std::move(formats);
  return settings;
}

void WriteAll(const OutputSettings& settings, const std::vector<std::string>& inputs,
              const std::vector<FileOutcome>& outcomes) {
  ReportSinks sinks(settings, inputs);
  for (std::size_t input = 0; input < inputs.size(); ++input) {
    if (outcomes[input].report) sinks.HooksOf(input)->Finish(*outcomes[input].report);
    sinks.Add(input, outcomes[input]);
  }
  sinks.Finish();
}

TEST(ReportSinks, WriteTheFilesOfEachInputAndTheTablesOverSeveral) {
  const Folder folder;
  WriteAll(Into(folder / "out", {Format::kJson, Format::kSum}), {"a.rnx", "b.rnx"}, {Good(), Bad()});
  EXPECT_EQ(Folder::NamesIn(folder / "out"), (Names{"a.json", "a.sum", "network.csv", "network.txt"}));
  EXPECT_NE(ReadText(folder / "out/network.csv").find("b.rnx"), std::string::npos);
}

TEST(ReportSinks, WriteNoTablesOverASingleInput) {
  const Folder folder;
  WriteAll(Into(folder.Path(), {Format::kText, Format::kCsv}), {"a.rnx"}, {Good()});
  EXPECT_EQ(folder.Names(), (Names{"a.txt", "a.csv"}));
}

TEST(ReportSinks, AStreamHoldsReportsAndFailuresInTheirOrder) {
  const Folder folder;
  OutputSettings settings;
  settings.quiet = true;
  settings.File(Format::kSum) = folder / "all.sum";
  WriteAll(settings, {"b.rnx", "a.rnx"}, {Bad(), Good()});
  const std::string sum = ReadText(folder / "all.sum");
  EXPECT_EQ(sum.find("#FAILED b.rnx"), 0U) << sum;
  EXPECT_NE(sum.find("\nSUM "), std::string::npos) << sum;
}

TEST(ReportSinks, ACancelledInputLeavesNoTrace) {
  const Folder folder;
  OutputSettings settings;
  settings.quiet = true;
  settings.File(Format::kSum) = folder / "all.sum";
  settings.network = folder / "network.csv";
  WriteAll(settings, {"a.rnx", "b.rnx"}, {Cancelled(), Bad()});
  EXPECT_EQ(ReadText(folder / "all.sum").find("a.rnx"), std::string::npos);
  EXPECT_EQ(ReadText(folder / "network.csv").find("a.rnx"), std::string::npos);
}

TEST(ReportSinks, WithoutFinishNoStreamAppears) {
  const Folder folder;
  OutputSettings settings;
  settings.quiet = true;
  settings.File(Format::kJson) = folder / "all.json";
  {
    ReportSinks sinks(settings, {"a.rnx"});
    sinks.Add(0, Good());
  }
  EXPECT_TRUE(folder.Names().empty());
}

TEST(OutputNames, AnIndexOfSeveralInputsAsksForTheirPages) {
  OutputSettings settings = Into("out", {Format::kSum});
  const std::vector<std::string> two = {"x/a.rnx.gz", "y/a.crx"};
  EXPECT_TRUE(OutputNames(settings, two).PagesOf(0).empty());
  settings.File(Format::kHtml) = "index.html";
  EXPECT_EQ(OutputNames(settings, two).PagesOf(1), std::vector<std::string>{"out/a-2.html"});
  EXPECT_EQ(OutputNames(settings, {"a.rnx"}).PagesOf(0), std::vector<std::string>{"index.html"});
}

TEST(OutputFormats, AreInTheOrderOfTheirEnumeration) {
  for (int i = 0; i < kFormatCount; ++i) {
    EXPECT_EQ(static_cast<int>(kFormats[i].format), i);
    EXPECT_EQ(FindFormat(kFormats[i].name), &kFormats[i]);
  }
  EXPECT_EQ(FormatNames(), "text,json,csv,sum,html,detail,events,series");
  EXPECT_EQ(FormatNames(true), "text,json,sum");
  EXPECT_EQ(FindFormat("toml"), nullptr);
}

}  // namespace
