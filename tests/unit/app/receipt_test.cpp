#include "app/receipt.hpp"

#include <cstdlib>
#include <ctime>
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

/// Where the tests run, the user's zone is mostly UTC itself.
TEST(InternetDateTimeTest, TheZoneOfTheUserPlaysNoPart) {
  const char* zone = std::getenv("TZ");
  const auto before = zone == nullptr ? std::nullopt : std::optional<std::string>(zone);
  ::setenv("TZ", "XXX-05:45", 1);
  ::tzset();
  const auto text = internetDateTime(std::chrono::system_clock::time_point(seconds(1794787509)));
  before ? ::setenv("TZ", before->c_str(), 1) : ::unsetenv("TZ");
  ::tzset();
  EXPECT_EQ(text, "2026-11-16T00:05:09Z");
}

TEST(ReceiptJsonTest, HasItsThirteenKeysInTheOrderOfTheirBytes) {
  OutcomeRecord record;
  for (const auto* key : {"timestamp", "status", "reseated", "pid", "operation", "needsApproval", "kickstart",
                          "hardStop", "domain", "description", "code", "bundle"})
    record[key] = std::int64_t{1};
  record["ok"] = false;
  EXPECT_EQ(receiptJson(record),
            "{\n  \"bundle\" : 1,\n  \"code\" : 1,\n  \"description\" : 1,\n  \"domain\" : 1,\n"
            "  \"hardStop\" : 1,\n  \"kickstart\" : 1,\n  \"needsApproval\" : 1,\n  \"ok\" : false,\n"
            "  \"operation\" : 1,\n  \"pid\" : 1,\n  \"reseated\" : 1,\n  \"status\" : 1,\n"
            "  \"timestamp\" : 1\n}");
}

TEST(ReceiptJsonTest, NumbersAreWrittenWhole) {
  EXPECT_EQ(receiptJson({{"code", std::int64_t{9007199254740993}}, {"status", std::int64_t{-1}}}),
            "{\n  \"code\" : 9007199254740993,\n  \"status\" : -1\n}");
}

TEST(ReceiptJsonTest, IsPrettyWithSortedKeysAndPlainValues) {
  const OutcomeRecord record{{"status", std::int64_t{1}}, {"bundle", "/Applications/Tamo.app"}, {"ok", true}};
  EXPECT_EQ(receiptJson(record),
            "{\n  \"bundle\" : \"\\/Applications\\/Tamo.app\",\n  \"ok\" : true,\n  \"status\" : 1\n}");
}

class ReceiptWriterTest : public ::testing::Test {
 protected:
  ReceiptWriterTest() {
    fakes.clock.wallAtZero = std::chrono::system_clock::time_point(seconds(1794787509));
    fakes.kernelProcesses.group = 899;
  }

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
  EXPECT_EQ(fakes.ledger.textsOf({"files: ", "log: "}),
            (Texts{"files: create directories " + directory, "log: error receipt failed"}));
  EXPECT_TRUE(fakes.files.contents.empty());
}

/// Nothing is tried again and nothing cleared away.
TEST_F(ReceiptWriterTest, AFileThatCannotBeWrittenIsOneLogLine) {
  fakes.files.failsToWrite = true;
  write();
  EXPECT_EQ(fakes.ledger.textsOf({"files: ", "log: "}),
            (Texts{"files: create directories " + directory, "files: write " + directory + "/900-core.json",
                   "log: error receipt failed"}));
}

TEST_F(ReceiptWriterTest, AFileOfAnEarlierRunUnderTheSamePidIsReplaced) {
  fakes.files.contents[directory + "/900-core.json"] = "old";
  fakes.files.contents[directory + "/7-core.json"] = "another's";
  write();
  EXPECT_EQ(fakes.files.contents.at(directory + "/900-core.json"), receiptJson(record));
  EXPECT_EQ(fakes.files.contents.at(directory + "/7-core.json"), "another's");
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

TEST_F(ReceiptWriterTest, WithoutAHomeInTheEntryTheProcessStops) {
  fakes.user.entry->home.reset();
  EXPECT_DEATH(write(), "fatal: the user's password entry has no home directory");
}

}  // namespace
}  // namespace tamo
