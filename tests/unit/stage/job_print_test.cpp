#include "stage/launchd/job_print.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_process_control.hpp"

namespace tamo::stage {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

Job runningJob() {
  Job job;
  job.definition.label = "a.b";
  job.definition.program = "/bin/core";
  job.definition.arguments = {"/bin/core", "", "two words"};
  job.definition.path = "/x.plist";
  job.definition.keepAlive = true;
  job.state = Job::State::Running;
  job.pid = 4242;
  job.reason = "speculative";
  job.runs = 3;
  return job;
}

std::string older(const Job& job) {
  return printedJob(job, 501, PrintStyle::Older);
}

std::string newest(const Job& job) {
  return printedJob(job, 501, PrintStyle::Newest);
}

TEST(JobPrintTest, ARunningJobIsPrintedAsLaunchdDoes) {
  EXPECT_EQ(older(runningJob()),
            "gui/501/a.b = {\n"
            "\tactive count = 1\n"
            "\tpath = /x.plist\n"
            "\ttype = LaunchAgent\n"
            "\tstate = running\n"
            "\n"
            "\tprogram = /bin/core\n"
            "\targuments = {\n"
            "\t\t/bin/core\n"
            "\t\t\n"
            "\t\ttwo words\n"
            "\t}\n"
            "\n"
            "\tdefault environment = {\n"
            "\t\tPATH => /usr/bin:/bin:/usr/sbin:/sbin\n"
            "\t}\n"
            "\n"
            "\tenvironment = {\n"
            "\t\tXPC_SERVICE_NAME => a.b\n"
            "\t}\n"
            "\n"
            "\tdomain = gui/501 [100000]\n"
            "\tasid = 100000\n"
            "\tminimum runtime = 10\n"
            "\texit timeout = 5\n"
            "\truns = 3\n"
            "\tpid = 4242\n"
            "\timmediate reason = speculative\n"
            "\tlast exit code = (never exited)\n"
            "\n"
            "\tspawn type = daemon (3)\n"
            "\n"
            "\tproperties = keepalive | inferred program\n"
            "}\n");
}

TEST(JobPrintTest, AJobWithoutAProcessHasNoPid) {
  auto job = runningJob();
  job.pid.reset();
  job.state = Job::State::Waiting;
  EXPECT_THAT(older(job), HasSubstr("\tstate = not running\n"));
  EXPECT_THAT(older(job), Not(HasSubstr("pid = ")));
  job.state = Job::State::Scheduled;
  EXPECT_THAT(older(job), HasSubstr("\tstate = spawn scheduled\n"));
}

TEST(JobPrintTest, AJobThatIsBeingStoppedStillRuns) {
  auto job = runningJob();
  job.state = Job::State::Stopping;
  EXPECT_THAT(older(job), HasSubstr("\tstate = running\n"));
}

TEST(JobPrintTest, TheLastEndIsToldByItsKind) {
  auto job = runningJob();
  job.lastEnding = Ending{.signalled = true, .number = 15};
  EXPECT_THAT(older(job), HasSubstr("\tlast terminating signal = Terminated: 15\n"));
  job.lastEnding = Ending{.number = 3};
  EXPECT_THAT(older(job), HasSubstr("\tlast exit code = 3\n"));
  job.lastEnding = Ending{.number = 78};
  EXPECT_THAT(older(job), HasSubstr("\tlast exit code = 78: EX_CONFIG\n"));
}

TEST(JobPrintTest, TheNewestStyleHasAConstraintBeforeTheTimeoutAndThePid) {
  EXPECT_THAT(newest(runningJob()), HasSubstr("\t}\n"
                                              "\n"
                                              "\tLWCR = {\n"
                                              "\t\t\"reqs\" => {\n"
                                              "\t\t\t\"cdhash\" => {\n"
                                              "\t\t\t\t\"$in\" => [\n"
                                              "\t\t\t\t\t0 = \t\t\t\t]\n"
                                              "\t\t\t}\n"
                                              "\t\t}\n"
                                              "\t\t\"vers\" => 1\n"
                                              "\t\t\"comp\" => 1\n"
                                              "\t\t\"ccat\" => 0\n"
                                              "\t}\n"
                                              "\n"
                                              "\tdomain = gui/501 [100000]\n"));
  EXPECT_THAT(newest(runningJob()), EndsWith(" | managed LWCR | has LWCR\n}\n"));
}

TEST(JobPrintTest, AJobOfServiceManagementIsPrintedAsHandedIn) {
  auto job = runningJob();
  job.definition.submitted = true;
  job.definition.bundleProgram = "Contents/MacOS/core";
  const auto text = newest(job);
  EXPECT_THAT(text, StartsWith("gui/501/a.b = {\n"
                               "\tactive count = 1\n"
                               "\tpath = (submitted by smd.1)\n"
                               "\ttype = Submitted\n"
                               "\tmanaged_by = com.apple.xpc.ServiceManagement\n"
                               "\tstate = running\n"
                               "\n"
                               "\tprogram identifier = Contents/MacOS/core (mode: 2)\n"
                               "\targuments = {\n"));
  EXPECT_THAT(text, HasSubstr("\t\t\"reqs\" => {\n"
                              "\t\t\t\"signing-identifier\" => \"a.b\"\n"
                              "\t\t\t\"validation-category\" => 6\n"
                              "\t\t\t\"team-identifier\" => \"STAGE00000\"\n"
                              "\t\t}\n"));
  EXPECT_THAT(older(job), Not(HasSubstr("Submitted")));
  job.definition.bundleProgram.reset();
  EXPECT_THAT(newest(job), HasSubstr("\tprogram = /bin/core\n"));
}

TEST(JobPrintTest, TheDomainListsItsJobs) {
  FakeProcessControl processes;
  JobTable table(processes);
  Answered answer;
  auto definition = runningJob().definition;
  table.bootstrap(definition, {}, answer.reply);
  definition.label = "idle";
  definition.keepAlive = false;
  table.bootstrap(definition, {}, answer.reply);
  const auto text = printedDomain(table, 501);
  EXPECT_THAT(text, StartsWith("gui/501 = {\n"));
  EXPECT_THAT(text, HasSubstr("\t\t100\t-\ta.b\n\t\t0\t-\tidle\n"));
}

}  // namespace
}  // namespace tamo::stage
