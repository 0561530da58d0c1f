#include "support/entry.hpp"

#include <gtest/gtest.h>

/// Which lines are the companion's, in every form that a log has.
namespace tamo::support {
namespace {

Recognised read(std::string_view line) {
  return recognised(line, line.contains(subsystem));
}

struct Row {
  std::string line;
  Level level;
  bool mayGoOn;
};

TEST(EntryTest, TheCompanionsLineIsReadInEveryForm) {
  const std::vector<Row> rows{
      {R"({"eventMessage":"receipt failed","eventType":"logEvent","subsystem":"studio.pell.Tamo.Core","processID":812,)"
       R"("messageType":"Error","timestamp":"2026-11-21 23:00:00.123456+0100"})",
       Level::Error, false},
      {"2026-11-21 23:00:00.123 E  Tamo Core[812:4fa1] [studio.pell.Tamo.Core:lifecycle] receipt failed",
       Level::Error, true},
      {"2026-11-21 23:00:00.123 Df Tamo Core[812:4fa1] (Tamo Core) [studio.pell.Tamo.Core:lifecycle] receipt "
       "failed",
       Level::Default, true},
      {"2026-11-21 23:00:00.123456+0100 0x4fa1     Error       0x0                  812    0    Tamo Core: "
       "[studio.pell.Tamo.Core:lifecycle] receipt failed",
       Level::Error, true},
      {"2026-11-21 23:00:00.123456+0100  localhost Tamo Core[812]: (Tamo Core) "
       "[studio.pell.Tamo.Core:lifecycle] receipt failed",
       Level::Default, true},
      {"2026-11-21T23:00:00.123Z\t812\terror\tstudio.pell.Tamo.Core\tlifecycle\treceipt failed\treceipt "
       "failed",
       Level::Error, false},
  };
  for (const auto& row : rows) {
    const auto found = read(row.line);
    ASSERT_EQ(found.kind, Kind::Product) << row.line;
    EXPECT_EQ(found.entry->message, "receipt failed") << row.line;
    EXPECT_EQ(found.entry->pid, 812) << row.line;
    EXPECT_EQ(found.entry->level, row.level) << row.line;
    EXPECT_EQ(found.entry->mayGoOn, row.mayGoOn) << row.line;
    EXPECT_EQ(timeOfDay(found.entry->at), "23:00:00.123") << row.line;
  }
}

TEST(EntryTest, AFaultIsKnownByItsLevel) {
  EXPECT_EQ(read("2026-11-21 23:00:00.123 F  Tamo Core[8:4] [studio.pell.Tamo.Core:lifecycle] fatal: x")
                .entry->level,
            Level::Fault);
  EXPECT_EQ(read(R"({"eventMessage":"x","subsystem":"studio.pell.Tamo.Core","messageType":"Fault",)"
                 R"("timestamp":"2026-11-21 23:00:00.123456+0100"})")
                .entry->level,
            Level::Fault);
}

TEST(EntryTest, ALineForDebuggingIsNoneOfTheDefaultLevel) {
  for (const auto& [word, level] : {std::pair("Default", Level::Default), std::pair("Debug", Level::Other)}) {
    const auto line = R"({"eventMessage":"x","subsystem":"studio.pell.Tamo.Core","messageType":")" +
                      std::string(word) + R"(","timestamp":"2026-11-21 23:00:00.123456+0100"})";
    EXPECT_EQ(read(line).entry->level, level) << word;
  }
}

TEST(EntryTest, AStagesTextIsUnescaped) {
  const auto found =
      read("2026-11-21T23:00:00.123Z\t8\tdefault\tstudio.pell.Tamo.Core\tlifecycle\ta\\tb\\nc\\\\d\\\tmarks");
  EXPECT_EQ(found.entry->message, "a\tb\nc\\d\\");
}

TEST(EntryTest, AControlCharacterOfAStagesTextIsReadFromItsNumber) {
  const auto found = read(
      "2026-11-21T23:00:00.123Z\t8\tdefault\tstudio.pell.Tamo.Core\tlifecycle\ta\\x1b["
      "2J\\x7f\\\\x1b\\xg\tmarks");
  EXPECT_EQ(found.entry->message, "a\x1b[2J\x7f\\x1bxg");
}

TEST(EntryTest, AnotherProgramsEntryIsForeignEvenIfItNamesTheProduct) {
  for (
      const auto* line :
      {"2026-11-21 23:00:00.123 Df launchd[1:2] [com.apple.xpc:x] hello",
       "2026-11-21 23:00:00.123 Df launchd[1:2] [com.apple.xpc:x] [studio.pell.Tamo.Core:lifecycle] receipt "
       "failed",
       "2026-11-21 23:00:00.123 Df launchd[1:2] (lib) studio.pell.Tamo.Core",
       "2026-11-21 23:00:00.123 Df no process studio.pell.Tamo.Core",
       "2026-11-21 23:00:00.123 Df launchd[1:2] [studio.pell.Tamo.Core.more:x] receipt failed",
       "2026-11-21 23:00:00.123456+0100 0x4fa1 Error 0x0 812 0 launchd: [a:b] studio.pell.Tamo.Core",
       "2026-11-21 23:00:00.123456+0100  localhost launchd[1]: studio.pell.Tamo.Core",
       "2026-11-21T23:00:00.123Z\t8\tdefault\tother\tlifecycle\tstudio.pell.Tamo.Core\tx",
       R"({"eventMessage":"studio.pell.Tamo.Core","subsystem":"a","timestamp":"2026-11-21 23:00:00.123456+0100"})",
       R"({"eventType":"activityCreateEvent","eventMessage":"x","subsystem":"studio.pell.Tamo.Core",)"
       R"("timestamp":"2026-11-21 23:00:00.123456+0100"})",
       R"({"eventMessage":"hello"})"})
    EXPECT_EQ(read(line).kind, Kind::Foreign) << line;
}

TEST(EntryTest, WhatAnExportHasAroundItsEntriesIsAFrame) {
  for (const auto* line : {"Timestamp               Ty Process[PID:TID]", R"({"count":11,"finished":1})",
                           "Filtering the log data using \"subsystem == \"studio.pell.Tamo.Core\"\"",
                           "Skipping info and debug messages, pass --info and/or --debug to include.",
                           "Log      - Default:          3, Info:                0"})
    EXPECT_EQ(read(line).kind, Kind::Frame) << line;
}

TEST(EntryTest, WhatIsInNoFormIsUnknown) {
  for (const auto* line :
       {"", "hello", "studio.pell.Tamo.Core", R"({"subsystem":"studio.pell.Tamo.Core","eventMess)",
        R"({"subsystem":"studio.pell.Tamo.Core",,})",
        R"({"subsystem":"studio.pell.Tamo.Core","eventMessage":"x"})",
        "2026-99-21 23:00:00.123 Df Tamo Core[8:4] [studio.pell.Tamo.Core:lifecycle] x",
        "2026-11-21 23:00:00.123,studio.pell.Tamo.Core",
        "2026-11-21T23:00:00.123Z\t812\terror\tstudio.pell.Tamo.Core\tlifecycle\treceipt fai"})
    EXPECT_EQ(read(line).kind, Kind::Unknown) << line;
}

}  // namespace
}  // namespace tamo::support
