// The table of events: columns, empty fields, and both forms.
#include "host/report/event_table.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace orsolva_host;
using analysis::Event;
using analysis::EventKind;

Event Slip() {
  Event event;
  event.time_ns = (1593043200 + 90) * kNanosecondsPerSecond + 500'000'000;
  event.satellite = {'G', 5};
  event.elevation_deg = 41.23456;
  event.signals = {{'1', 'C'}, {'2', 'W'}};
  event.sizes = {-12, 0.5};
  event.sure = true;
  event.score = 123.456;
  event.margin = 7.001;
  event.loss_of_lock = true;
  event.evidence = "2W by 0.5 cycles, \"sure\"";
  return event;
}

TEST(EventTable, ASlipHasItsSizesInTheOrderOfItsSignals) {
  EXPECT_EQ(EventLine(Slip(), TableForm::kCsv),
            "2020-06-25 00:01:30.500,G05,41.235,slip,1C 2W,-12 0.5,1,123.46,7,0,1,"
            "\"2W by 0.5 cycles, \"\"sure\"\"\"\n");
  EXPECT_EQ(
      EventLine(Slip(), TableForm::kJsonLines),
      R"({"time_gpst":"2020-06-25 00:01:30.500","satellite":"G05","elevation_deg":41.235,"kind":"slip",)"
      R"("signals":"1C 2W","size_cycles":[-12.0,0.5],"sure":true,"score":123.46,"margin":7.0,)"
      R"("gap_s":0.0,"loss_of_lock":true,"evidence":"2W by 0.5 cycles, \"sure\""})"
      "\n");
}

TEST(EventTable, WhatIsUnknownIsEmptyOrNull) {
  Event event;
  event.time_ns = 1593043200 * kNanosecondsPerSecond;
  event.kind = EventKind::kPowerFailure;
  event.gap_s = 330;
  EXPECT_EQ(EventLine(event, TableForm::kCsv), "2020-06-25 00:00:00.000,,,power_failure,,,0,,,330,0,\n");
  EXPECT_EQ(EventLine(event, TableForm::kJsonLines),
            R"({"time_gpst":"2020-06-25 00:00:00.000","satellite":null,"elevation_deg":null,)"
            R"("kind":"power_failure","signals":null,"size_cycles":null,"sure":false,"score":null,)"
            R"("margin":null,"gap_s":330.0,"loss_of_lock":false,"evidence":null})"
            "\n");
}

TEST(EventTable, AClockEventHasItsMillisecondsInTheEvidence) {
  Event event;
  event.kind = EventKind::kReceiverClockReset;
  event.sizes = {-1};
  EXPECT_EQ(EventLine(event, TableForm::kCsv),
            "1970-01-01 00:00:00.000,,,clock_reset_ms,,,0,,,0,0,codes and phases by -1.000000 ms\n");
}

TEST(EventTable, TheEndingOfTheFileChoosesTheForm) {
  EXPECT_EQ(TableFormOf("a.csv"), TableForm::kCsv);
  EXPECT_EQ(TableFormOf("a.jsonl"), TableForm::kJsonLines);
  EXPECT_EQ(TableFormOf("a.jsonl.gz"), TableForm::kJsonLines);
  EXPECT_EQ(TableFormOf("jsonl"), TableForm::kCsv);
}

TEST(EventTable, CsvBeginsWithItsColumnsAndJsonLinesDoNot) {
  std::string csv, json;
  EventTable(TableForm::kCsv, [&csv](std::string_view text) { csv += text; }).Add(Slip());
  EventTable(TableForm::kJsonLines, [&json](std::string_view text) { json += text; }).Add(Slip());
  EXPECT_EQ(csv, kEventCsvHeading + EventLine(Slip(), TableForm::kCsv));
  EXPECT_EQ(json, EventLine(Slip(), TableForm::kJsonLines));
}

}  // namespace
