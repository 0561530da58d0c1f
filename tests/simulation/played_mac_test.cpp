#include <gtest/gtest.h>
#include <string>

#include "launch/launch_job.hpp"
#include "launch/print_reading.hpp"
#include "simulation/clocks.hpp"
#include "simulation/file_tree.hpp"
#include "simulation/job_texts.hpp"
#include "simulation/process_table.hpp"
#include "simulation/receipt_text.hpp"

/// Tests of the pieces that the simulated Mac is made of.
namespace tamo::simulation {
namespace {

TEST(FileTreeTest, AFolderIsThereByWhatItHolds) {
  FileTree files;
  files.write("/a/b/c", "bytes");
  EXPECT_TRUE(files.exists("/a/b"));
  EXPECT_FALSE(files.exists("/a/bb"));
  EXPECT_FALSE(files.exists("/a/b/c/d"));
}

TEST(FileTreeTest, RemovingAFolderLeavesNamesThatOnlyBeginAlike) {
  FileTree files;
  files.write("/a/Tamo.app/x", "");
  files.write("/a/Tamo.app 2/x", "");
  EXPECT_TRUE(files.remove("/a/Tamo.app"));
  EXPECT_FALSE(files.exists("/a/Tamo.app"));
  EXPECT_TRUE(files.exists("/a/Tamo.app 2"));
  EXPECT_FALSE(files.remove("/a/Tamo.app"));
}

TEST(FileTreeTest, ALinkLeadsToItsFolderAndIsRemovedAlone) {
  FileTree files;
  files.write("/real/x", "bytes");
  files.link("/link", "/real");
  EXPECT_EQ(files.resolved("/link"), "/real");
  ASSERT_NE(files.read("/link/x"), nullptr);
  EXPECT_TRUE(files.remove("/link"));
  EXPECT_TRUE(files.exists("/real/x"));
  EXPECT_FALSE(files.exists("/link"));
}

TEST(ProcessTableTest, NoTwoProcessesStartAtTheSameTime) {
  Dice dice(1);
  ProcessTable processes(dice);
  const auto first = processes.spawn(ProcessKind::Core, Time(0)).startMicros;
  EXPECT_LT(first, processes.spawn(ProcessKind::Core, Time(0)).startMicros);
}

/// As on a Mac, where a process is stamped with what the wall clock shows when it starts.
TEST(ProcessTableTest, AClockThatIsSetBackMakesAYoungerProcessLookOlder) {
  Dice dice(1);
  ProcessTable processes(dice);
  const Process first = processes.spawn(ProcessKind::Companion, std::chrono::seconds(10));
  const Process second = processes.spawn(ProcessKind::Core, std::chrono::seconds(4));
  EXPECT_GT(first.startMicros, second.startMicros);
  EXPECT_LT(first.number, second.number);
}

TEST(ClocksTest, OnlyTheAwakeTimeStandsStillWhileTheMachineSleeps) {
  Timeline awake;
  Clocks clocks(awake);
  clocks.sleep(std::chrono::seconds(5));
  EXPECT_EQ(clocks.now().awake, Time(0));
  EXPECT_EQ(clocks.now().monotonic, std::chrono::seconds(5));
  EXPECT_EQ(clocks.wallNow(), std::chrono::seconds(5));
}

TEST(ClocksTest, OnlyTheWallClockIsSet) {
  Timeline awake;
  Clocks clocks(awake);
  EXPECT_FALSE(clocks.wasSet());
  clocks.setWall(std::chrono::seconds(7));
  clocks.setWall(std::chrono::seconds(-9));
  EXPECT_TRUE(clocks.wasSet());
  EXPECT_EQ(clocks.monotonicNow(), Time(0));
  EXPECT_EQ(clocks.wallNow(), std::chrono::seconds(-2));
  EXPECT_EQ(clocks.setBack(), std::chrono::seconds(9));
}

TEST(ProcessTableTest, APidIsUsedAgainButNotWhileAGroupHasItsName) {
  Dice dice(1);
  ProcessTable processes(dice);
  const auto leader = processes.spawn(ProcessKind::Core, Time(0)).pid;
  const auto helper = processes.spawn(ProcessKind::Helper, Time(0), leader).pid;
  processes.remove(leader);
  EXPECT_FALSE(processes.isFree(leader));
  processes.remove(helper);
  EXPECT_TRUE(processes.isFree(leader));
  bool again = false;
  for (int time = 0; time < 50; ++time) {
    const auto pid = processes.spawn(ProcessKind::Stranger, Time(0)).pid;
    again = again || pid == helper;
    processes.remove(pid);
  }
  EXPECT_TRUE(again);
}

/// The referee's own idea of a changed definition against the companion's.
TEST(JobTextsTest, TheTextsAreReadAsTheDefinitionsThatTheyTell) {
  const auto count = jobDefinitions().size();
  for (std::size_t loaded = 0; loaded < count; ++loaded) {
    const auto read = LaunchJob::loaded(jobPrint(loaded, 100));
    ASSERT_TRUE(read);
    EXPECT_EQ(LaunchJob::loaded(withoutQuotedBlocks(jobPrint(loaded, 100, PrintForm::Managed))), read);
    EXPECT_EQ(read->arguments, jobDefinitions()[loaded].arguments);
    EXPECT_EQ(read->exitTimeout, jobDefinitions()[loaded].exitTimeout);
    EXPECT_EQ(definitionOf(agentPlist(loaded)), loaded);
    EXPECT_EQ(LaunchJob::bundled(agentPlist(loaded)), read);
  }
}

TEST(JobTextsTest, OnlyAWholePrintTellsSomething) {
  for (const auto form : {PrintForm::Plain, PrintForm::Managed}) {
    const auto print = jobPrint(1, 100, form);
    ASSERT_TRUE(toldBy(print));
    EXPECT_EQ(toldBy(print)->definition, 1U);
    EXPECT_EQ(toldBy(print)->pid, 100);
    EXPECT_FALSE(toldBy(print.substr(0, print.size() - 1)));
  }
  ASSERT_TRUE(toldBy(jobPrint(2, std::nullopt)));
  EXPECT_FALSE(toldBy(jobPrint(2, std::nullopt))->pid);
  EXPECT_FALSE(toldBy("\tpid = 100\n"));
}

TEST(JobTextsTest, AnInfoListGivesItsValuesBack) {
  const auto list = infoPlist("studio.pell.Tamo", "1.4.2");
  EXPECT_EQ(valueOf("CFBundleIdentifier", list), "studio.pell.Tamo");
  EXPECT_EQ(valueOf("CFBundleVersion", list), "1.4.2");
  EXPECT_EQ(valueOf("CFBundleName", list), std::nullopt);
}

TEST(ReceiptTextTest, AReceiptIsReadByItsForm) {
  const auto members = receiptMembers("{\n  \"code\" : 64,\n  \"ok\" : false,\n  \"pid\" : 1\n}");
  ASSERT_TRUE(members);
  EXPECT_EQ(*members, (ReceiptMembers{{"code", "64"}, {"ok", "false"}, {"pid", "1"}}));
  EXPECT_EQ(receiptMembers("{\n  \"a\" : \"b\\/\\\"c\\\\\"\n}")->at("a"), "b/\"c\\");
}

TEST(ReceiptTextTest, AnotherFormIsNoReceipt) {
  EXPECT_FALSE(receiptMembers("{\"ok\":true}"));
  EXPECT_FALSE(receiptMembers("{\n  \"pid\" : 1,\n  \"ok\" : true\n}"));
  EXPECT_FALSE(receiptMembers("{\n \"ok\" : true\n}"));
}

}  // namespace
}  // namespace tamo::simulation
