#include "app/receipt.hpp"

#include <gtest/gtest.h>

#include "fakes/fake_platform.hpp"

namespace tamo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::sys_seconds;
using Texts = std::vector<std::string>;

TEST(InternetDateTimeTest, IsUtcWithWholeSecondsAndAZ) {
  const auto time = std::chrono::system_clock::time_point(seconds(1794787509));
  EXPECT_EQ(internetDateTime(time), "2026-11-16T00:05:09Z");
  EXPECT_EQ(internetDateTime(time + milliseconds(999)), "2026-11-16T00:05:09Z");
  EXPECT_EQ(internetDateTime(std::chrono::system_clock::time_point(milliseconds(-1))),
            "1969-12-31T23:59:59Z");
}

TEST(ReceiptJsonTest, IsPrettyWithSortedKeysAndPlainValues) {
  const OutcomeRecord record{{"status", std::int64_t{1}}, {"bundle", "/Applications/Tamo.app"}, {"ok", true}};
  EXPECT_EQ(receiptJson(record),
            "{\n  \"bundle\" : \"\\/Applications\\/Tamo.app\",\n  \"ok\" : true,\n  \"status\" : 1\n}");
}

class ReceiptWriterTest : public ::testing::Test {
 protected:
  ReceiptWriterTest() { fakes.clock.wallAtZero = std::chrono::system_clock::time_point(seconds(1794787509)); }

  void write() {
    const auto log = fakes.logSystem.logger("s", "c");
    ReceiptWriter({.bundles = fakes.bundles,
                   .kernelProcesses = fakes.kernelProcesses,
                   .clock = fakes.clock,
                   .user = fakes.user,
                   .files = fakes.files,
                   .log = *log})
        .write(record);
  }

  const std::string directory = "/Users/u/Library/Application Support/TamoPKG1/M2";
  fakes::FakePlatform fakes;
  OutcomeRecord record{{"ok", false}, {"operation", "sync"}, {"status", std::int64_t{3}}};
};

TEST_F(ReceiptWriterTest, AddsBundlePidAndTimestamp) {
  write();
  EXPECT_EQ(record.at("bundle"),
            OutcomeValue("/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app"));
  EXPECT_EQ(record.at("pid"), OutcomeValue(std::int64_t{900}));
  EXPECT_EQ(record.at("timestamp"), OutcomeValue("2026-11-16T00:05:09Z"));
}

TEST_F(ReceiptWriterTest, TheDirectoryIsMadeAndTheFileIsNamedByThePid) {
  write();
  EXPECT_EQ(fakes.ledger.textsOf({"files: "}), (Texts{"files: create directories " + directory,
                                                      "files: write " + directory + "/900-core.json"}));
  EXPECT_EQ(fakes.files.contents.at(directory + "/900-core.json"), receiptJson(record));
  EXPECT_EQ(fakes.ledger.count("log: "), 0U);
}

TEST_F(ReceiptWriterTest, TwoRunsLeaveTwoFilesSideBySide) {
  write();
  fakes.kernelProcesses.pid = 901;
  write();
  EXPECT_TRUE(fakes.files.contents.contains(directory + "/900-core.json"));
  EXPECT_TRUE(fakes.files.contents.contains(directory + "/901-core.json"));
}

TEST_F(ReceiptWriterTest, ADirectoryThatCannotBeMadeIsOneLogLine) {
  fakes.files.failsToCreateDirectories = true;
  write();
  EXPECT_EQ(fakes.ledger.textsOf({"log: "}), Texts{"log: error receipt failed"});
  EXPECT_TRUE(fakes.files.contents.empty());
}

TEST_F(ReceiptWriterTest, AFileThatCannotBeWrittenIsOneLogLine) {
  fakes.files.failsToWrite = true;
  write();
  EXPECT_EQ(fakes.ledger.textsOf({"log: "}), Texts{"log: error receipt failed"});
}

TEST_F(ReceiptWriterTest, ATextThatIsNoUtf8IsOneLogLineAndNoFile) {
  record["description"] = "\xFF";
  write();
  EXPECT_EQ(fakes.ledger.textsOf({"log: "}), Texts{"log: error receipt failed"});
  EXPECT_TRUE(fakes.files.contents.empty());
}

TEST_F(ReceiptWriterTest, WithoutAPasswordEntryTheProcessStops) {
  fakes.user.entry.reset();
  EXPECT_DEATH(write(), "fatal: the user has no password entry");
}

}  // namespace
}  // namespace tamo
