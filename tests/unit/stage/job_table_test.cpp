#include "stage/launchd/job_table.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_process_control.hpp"

namespace tamo::stage {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::chrono_literals;

constexpr Ending exitedWell = {.signalled = false, .number = 0};
constexpr Ending killed = {.signalled = true, .number = 9};

class JobTableTest : public ::testing::Test {
 protected:
  static JobDefinition kept() {
    JobDefinition definition;
    definition.label = "core";
    definition.program = "/bin/core";
    definition.arguments = {"/bin/core"};
    definition.exitTimeout = 20s;
    definition.keepAlive = true;
    return definition;
  }

  static JobDefinition onDemand() {
    auto definition = kept();
    definition.keepAlive = false;
    return definition;
  }

  /// Loads the job and forgets how that went.
  void load(const JobDefinition& definition) {
    table.bootstrap(definition, now, [](const LaunchdAnswer&) {});
    processes.ledger.clear();
  }

  void end(pid_t pid, Ending ending = exitedWell) {
    table.dying(pid);
    table.ended(pid, ending, now);
  }

  void pass(std::chrono::milliseconds time) {
    now += time;
    table.tick(now);
  }

  FakeProcessControl processes;
  JobTable table{processes};
  JobTable::Time now{1000s};
  Answered answer;
};

TEST_F(JobTableTest, AKeptJobStartsWhenItIsLoaded) {
  table.bootstrap(kept(), now, answer.reply);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(table.find("core")->pid, 100);
  EXPECT_EQ(table.find("core")->runs, 1);
}

TEST_F(JobTableTest, AJobOnDemandWaits) {
  load(onDemand());
  EXPECT_FALSE(table.find("core")->pid);
  EXPECT_EQ(table.find("core")->state, Job::State::Waiting);
}

TEST_F(JobTableTest, ALabelIsLoadedOnce) {
  load(kept());
  table.bootstrap(kept(), now, answer.reply);
  EXPECT_EQ(answer.status(), 5);
  EXPECT_THAT(processes.ledger, IsEmpty());
}

TEST_F(JobTableTest, AKickstartLeavesARunningJobAloneAndSucceeds) {
  load(kept());
  table.kickstart("core", false, now, answer.reply);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_THAT(processes.ledger, IsEmpty());
}

TEST_F(JobTableTest, AKickstartStartsAWaitingJob) {
  load(onDemand());
  table.kickstart("core", false, now, answer.reply);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(table.find("core")->pid, 100);
  EXPECT_EQ(table.find("core")->reason, "non-ipc demand");
}

TEST_F(JobTableTest, AKickstartWithKillAnswersWhenTheNewProcessRuns) {
  load(kept());
  table.kickstart("core", true, now, answer.reply);
  EXPECT_THAT(processes.ledger, ElementsAre("terminate 100"));
  EXPECT_EQ(answer.status(), std::nullopt);
  end(100);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(table.find("core")->pid, 101);
}

TEST_F(JobTableTest, ARestartIsNotThrottled) {
  load(kept());
  table.kickstart("core", true, now, answer.reply);
  end(100);
  EXPECT_THAT(processes.ledger, ElementsAre("terminate 100", "kill group 100", "start core"));
}

TEST_F(JobTableTest, AProcessThatDoesNotMindIsKilledAtTheExitTimeoutAndOnlyOnce) {
  load(kept());
  table.kickstart("core", true, now, answer.reply);
  processes.ledger.clear();
  pass(19'999ms);
  EXPECT_THAT(processes.ledger, IsEmpty());
  pass(1ms);
  EXPECT_THAT(processes.ledger, ElementsAre("kill 100"));
  pass(60s);
  EXPECT_THAT(processes.ledger, ElementsAre("kill 100"));
  EXPECT_FALSE(table.nextDeadline());
}

TEST_F(JobTableTest, AnExitTimeoutOfZeroWaitsForEver) {
  auto patient = kept();
  patient.exitTimeout = 0s;
  load(patient);
  table.bootout("core", now, answer.reply);
  EXPECT_FALSE(table.nextDeadline());
}

TEST_F(JobTableTest, ASecondKickstartWithKillJoinsTheFirst) {
  load(kept());
  Answered second;
  table.kickstart("core", true, now, answer.reply);
  table.kickstart("core", true, now, second.reply);
  EXPECT_THAT(processes.ledger, ElementsAre("terminate 100"));
  end(100);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(second.status(), 0);
}

TEST_F(JobTableTest, ABootoutAnswersWhenTheJobIsGone) {
  load(kept());
  table.bootout("core", now, answer.reply);
  EXPECT_THAT(processes.ledger, ElementsAre("terminate 100"));
  EXPECT_NE(table.find("core"), nullptr);
  EXPECT_EQ(answer.status(), std::nullopt);
  end(100);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(table.find("core"), nullptr);
}

TEST_F(JobTableTest, ABootoutOfAJobWithoutAProcessIsDoneAtOnce) {
  load(onDemand());
  table.bootout("core", now, answer.reply);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(table.find("core"), nullptr);
}

TEST_F(JobTableTest, ABootoutOfAnUnknownLabelSaysSo) {
  table.bootout("nobody", now, answer.reply);
  EXPECT_EQ(answer.status(), 3);
}

TEST_F(JobTableTest, ABootoutWinsOverARestart) {
  load(kept());
  Answered restart;
  table.kickstart("core", true, now, restart.reply);
  table.bootout("core", now, answer.reply);
  EXPECT_EQ(restart.status(), 3);
  end(100);
  EXPECT_EQ(answer.status(), 0);
  EXPECT_EQ(table.find("core"), nullptr);
  EXPECT_THAT(processes.ledger, ElementsAre("terminate 100", "kill group 100"));
}

TEST_F(JobTableTest, AKickstartDuringABootoutIsRefused) {
  load(kept());
  Answered bootout;
  table.bootout("core", now, bootout.reply);
  table.kickstart("core", true, now, answer.reply);
  EXPECT_EQ(answer.status(), 37);
  EXPECT_EQ(bootout.status(), std::nullopt);
}

TEST_F(JobTableTest, AKeptJobThatDiesSoonWaitsForItsThrottle) {
  load(kept());
  now += 4s;
  end(100);
  EXPECT_EQ(table.find("core")->state, Job::State::Scheduled);
  EXPECT_EQ(table.nextDeadline(), JobTable::Time{1010s});
  pass(5'999ms);
  EXPECT_FALSE(table.find("core")->pid);
  pass(1ms);
  EXPECT_EQ(table.find("core")->pid, 101);
}

TEST_F(JobTableTest, AKeptJobThatRanLongIsStartedAnewAtOnce) {
  load(kept());
  now += 11s;
  end(100);
  pass(0ms);
  EXPECT_EQ(table.find("core")->pid, 101);
}

TEST_F(JobTableTest, AKickstartDoesNotWaitForTheThrottle) {
  load(kept());
  end(100);
  table.kickstart("core", false, now, answer.reply);
  EXPECT_EQ(table.find("core")->pid, 101);
  EXPECT_FALSE(table.nextDeadline());
}

TEST_F(JobTableTest, AJobOnDemandStaysDown) {
  load(onDemand());
  table.kickstart("core", false, now, answer.reply);
  end(100, killed);
  EXPECT_EQ(table.find("core")->state, Job::State::Waiting);
  EXPECT_TRUE(table.find("core")->lastEnding->signalled);
  EXPECT_FALSE(table.nextDeadline());
}

TEST_F(JobTableTest, TheEndOfAProcessTakesItsGroupUnlessThatIsAbandoned) {
  load(kept());
  table.dying(100);
  EXPECT_THAT(processes.ledger, ElementsAre("kill group 100"));

  auto abandoning = kept();
  abandoning.label = "abandoning";
  abandoning.abandonProcessGroup = true;
  load(abandoning);
  table.dying(101);
  EXPECT_THAT(processes.ledger, IsEmpty());
}

TEST_F(JobTableTest, AnOrphansEndConcernsNoJob) {
  load(kept());
  end(4711, killed);
  EXPECT_EQ(table.find("core")->pid, 100);
  EXPECT_THAT(processes.ledger, IsEmpty());
}

TEST_F(JobTableTest, AProgramThatCannotBeStartedIsTriedAgainAtTheThrottle) {
  processes.startable = false;
  load(kept());
  EXPECT_EQ(table.find("core")->lastEnding->number, 78);
  EXPECT_EQ(table.nextDeadline(), now + 10s);
  processes.startable = true;
  pass(10s);
  EXPECT_TRUE(table.find("core")->pid);
}

TEST_F(JobTableTest, AKickstartOfAProgramThatCannotBeStartedFails) {
  processes.startable = false;
  load(onDemand());
  table.kickstart("core", true, now, answer.reply);
  EXPECT_EQ(answer.status(), 78);
}

TEST_F(JobTableTest, TheNextDeadlineIsTheEarliest) {
  auto quick = kept();
  quick.label = "quick";
  quick.throttle = 2s;
  load(kept());
  load(quick);
  end(100);
  end(101);
  EXPECT_EQ(table.nextDeadline(), now + 2s);
}

}  // namespace
}  // namespace tamo::stage
