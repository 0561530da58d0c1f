#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "soak/bystander.hpp"
#include "soak/destination.hpp"
#include "soak/overlaps.hpp"
#include "soak/stop_rounds.hpp"
#include "soak/tally.hpp"

/// What the soak's account stands on.
namespace tamo::soak {
namespace {

TEST(CrowdAccountTest, OneAfterAnotherDoesNotOverlap) {
  const auto account = crowdAccount("begin 7 1\nend 7 2\nbegin 7 3\nend 7 4\nbegin 8 5\nend 8 6\n", {});
  EXPECT_EQ(account.worked, 2);
  EXPECT_EQ(account.overlaps, 0);
}

TEST(CrowdAccountTest, OneBetweenAnothersFirstAndLastOverlaps) {
  EXPECT_EQ(crowdAccount("begin 7 1\nbegin 8 2\nend 7 3\nend 8 4\n", {}).overlaps, 1);
  EXPECT_EQ(crowdAccount("begin 7 1\nend 7 2\nbegin 8 3\nend 8 4\nbegin 7 5\n", {}).overlaps, 1);
}

TEST(CrowdAccountTest, WhatComesAfterADeathIsNotTheDeadOnes) {
  const std::string notes = "begin 7 1\nbegin 8 5\nbegin 7 6\nend 8 7\n";
  EXPECT_EQ(crowdAccount(notes, {{7, 4}}).overlaps, 0);
  EXPECT_EQ(crowdAccount(notes, {{7, 6}}).overlaps, 1) << "it lived when the other began";
}

TEST(CrowdAccountTest, WhatCannotBeReadIsNoGoodAccount) {
  EXPECT_GT(crowdAccount("begin 7 1\nbegin\n", {}).overlaps, 0);
}

TEST(TallyTest, FiguresAddUpAndWrongsAreKept) {
  const auto account = accountOf("count\ta\t2\ngreatest\tb\t5\ncount\ta\t3\ngreatest\tb\t4\nwrong\tc\t1\n");
  EXPECT_EQ(account.counts.at("a"), 5);
  EXPECT_EQ(account.greatest.at("b"), 5);
  EXPECT_EQ(account.wrongs, std::vector<std::string>{"c"});
}

TEST(SignalsTest, OnlyTheKillThatWasReportedIsRight) {
  struct Case {
    const char* outcome;
    std::vector<Sent> sent;
    bool right;
  };
  const Sent group{.by = 2, .target = -9, .signal = SIGKILL};
  const Sent process{.by = 2, .target = 9, .signal = SIGKILL};
  const Sent request{.by = 2, .target = 9, .signal = SIGTERM};
  for (const auto& [outcome, sent, right] :
       {Case{"exited", {}, true}, Case{"exited", {process}, false},
        Case{"killedGroup(9, gone: true)", {group}, true},
        Case{"killedGroup(9, gone: true)", {process}, false}, Case{"killedGroup(9, gone: true)", {}, false},
        Case{"killedGroup(9, gone: true)", {group, group}, false},
        Case{"killedProcess(9, gone: true)", {process}, true},
        Case{"killedProcess(9, gone: true)", {request}, false},
        Case{"killedProcess(9, gone: true)", {group}, false}})
    EXPECT_EQ(wrongInSignals(outcome, 9, sent).empty(), right) << outcome;
}

TEST(DestinationTest, OnlyAWholeTreeIsACopy) {
  const scenario::Tree moved{{"Contents", "folder"}, {"Contents/a", "5000"}};
  const scenario::Tree older{{"Contents", "folder"}, {"Contents/a", "4999"}};
  const scenario::Tree part{{"Contents", "folder"}};
  EXPECT_EQ(destinationOf(std::nullopt, moved, older), Destination::Absent);
  EXPECT_EQ(destinationOf(moved, moved, older), Destination::Whole);
  EXPECT_EQ(destinationOf(older, moved, older), Destination::Old);
  EXPECT_EQ(destinationOf(part, moved, older), Destination::Unfinished);
}

/// A tool that is killed early leaves the folder with nothing in it, which was taken for the old build's tree.
TEST(DestinationTest, AnEmptyFolderIsUnfinishedWhereNothingWasToBeReplaced) {
  EXPECT_EQ(destinationOf(scenario::Tree(), {{"a", "5000"}}, std::nullopt), Destination::Unfinished);
  EXPECT_EQ(destinationOf(scenario::Tree(), {{"a", "5000"}}, scenario::Tree{{"a", "4999"}}),
            Destination::Unfinished);
}

TEST(BystanderTest, WhateverIsDoneToItShows) {
  for (const int signal : {SIGTERM, SIGUSR1, SIGSTOP, SIGKILL}) {
    auto one = Bystander::start({});
    ASSERT_TRUE(one);
    EXPECT_EQ(one->harm(), "");
    ::kill(one->pid(), signal);
    for (int attempt = 0; attempt < 500 && one->harm().empty(); ++attempt)
      ::usleep(1000);
    EXPECT_NE(one->harm(), "") << signal;
  }
}

TEST(BystanderTest, AZombieIsOverThoughItAnswersSignalZero) {
  auto one = Bystander::start({});
  ASSERT_TRUE(one);
  EXPECT_FALSE(one->over());
  one->kill();
  for (int attempt = 0; attempt < 500 && !one->over(); ++attempt)
    ::usleep(1000);
  EXPECT_TRUE(one->over());
  EXPECT_EQ(::kill(one->pid(), 0), 0);
}

TEST(HeldTest, AProcessIsOverWhoeverHasItsPid) {
  auto one = Bystander::start({});
  const Held held(one->pid());
  EXPECT_FALSE(held.ended());
  one->kill();
  one->reap();
  EXPECT_TRUE(held.ended());
}

}  // namespace
}  // namespace tamo::soak
