#include "hardstop/process_snapshot.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <sstream>

#include "fakes/fake_kernel_processes.hpp"

namespace tamo::HardStop {
namespace {

constexpr auto largest = std::numeric_limits<std::uint64_t>::max();

class KernelTest : public ::testing::Test {
 protected:
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeKernelProcesses processes{ledger, clock};

  void coreStartedAt(std::uint64_t seconds, std::uint64_t microseconds) {
    processes.processes[4242] = {.startSeconds = seconds, .startMicroseconds = microseconds};
  }
};

TEST_F(KernelTest, AProcessIsSeenAsTheKernelRecordsIt) {
  processes.processes[4242] = {
      .startSeconds = 1700000000, .startMicroseconds = 123456, .group = 4200, .zombie = false};
  const Seen expected{4242, 1700000000123456, 4200, false};
  EXPECT_EQ(kernel(processes, 4242), expected);
  EXPECT_EQ(ledger.texts(), std::vector<std::string>{"kernel: look 4242"});
}

TEST_F(KernelTest, AProcessThatWaitsToBeReapedIsAZombie) {
  processes.processes[4242] = {.zombie = true};
  const auto seen = kernel(processes, 4242);
  ASSERT_TRUE(seen);
  EXPECT_TRUE(seen->zombie);
}

TEST_F(KernelTest, AMissingProcessIsAbsent) {
  EXPECT_EQ(kernel(processes, 4242), std::nullopt);
}

TEST_F(KernelTest, TheLargestStartTimeThatFitsIsKept) {
  coreStartedAt(largest / 1'000'000, largest % 1'000'000);
  const auto seen = kernel(processes, 4242);
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->startMicros, largest);
}

TEST_F(KernelTest, OneMicrosecondMoreThanFitsIsFatal) {
  coreStartedAt(largest / 1'000'000, largest % 1'000'000 + 1);
  EXPECT_DEATH(static_cast<void>(kernel(processes, 4242)), "fatal: a start time overflows");
}

TEST_F(KernelTest, SecondsThatOverflowAsMicrosecondsAreFatal) {
  coreStartedAt(largest / 1'000'000 + 1, 0);
  EXPECT_DEATH(static_cast<void>(kernel(processes, 4242)), "fatal: the seconds of a start time overflow");
}

TEST_F(KernelTest, ThePidIsTheOneThatWasAskedAbout) {
  for (const std::int32_t pid : {0, 1, -7, 2147483647}) {
    processes.processes[pid] = {.startSeconds = 5, .group = 9};
    EXPECT_EQ(kernel(processes, pid), (Seen{pid, 5'000'000, 9, false}));
  }
}

TEST_F(KernelTest, EveryLookIsAFreshOne) {
  coreStartedAt(5, 0);
  EXPECT_TRUE(kernel(processes, 4242));
  processes.processes.clear();
  EXPECT_FALSE(kernel(processes, 4242));
  coreStartedAt(6, 1);
  EXPECT_EQ(kernel(processes, 4242), (Seen{4242, 6'000'001, 0, false}));
}

TEST_F(KernelTest, MicrosecondsOfMoreThanASecondAreAddedUp) {
  coreStartedAt(5, 2'000'003);
  EXPECT_EQ(kernel(processes, 4242), (Seen{4242, 7'000'003, 0, false}));
}

TEST(SeenTest, EveryFieldCountsForEquality) {
  const Seen seen{4242, 1000, 4200, false};
  EXPECT_EQ(seen, (Seen{4242, 1000, 4200, false}));
  EXPECT_NE(seen, (Seen{4243, 1000, 4200, false}));
  EXPECT_NE(seen, (Seen{4242, 1001, 4200, false}));
  EXPECT_NE(seen, (Seen{4242, 1000, 4201, false}));
  EXPECT_NE(seen, (Seen{4242, 1000, 4200, true}));
}

class AliveTest : public ::testing::Test {
 protected:
  const Seen earlier{4242, 1000, 4242, false};
};

TEST_F(AliveTest, TheSameProcessLives) {
  EXPECT_TRUE(alive(earlier, earlier));
}

TEST_F(AliveTest, AVanishedProcessIsGone) {
  EXPECT_FALSE(alive(earlier, std::nullopt));
}

TEST_F(AliveTest, AZombieIsGone) {
  EXPECT_FALSE(alive(earlier, Seen{4242, 1000, 4242, true}));
}

TEST_F(AliveTest, AReusedPidIsGone) {
  EXPECT_FALSE(alive(earlier, Seen{4242, 1001, 4242, false}));
  EXPECT_FALSE(alive(earlier, Seen{4242, 999, 4242, false}));
}

TEST_F(AliveTest, AChangedGroupIsTheSameProcess) {
  EXPECT_TRUE(alive(earlier, Seen{4242, 1000, 1, false}));
}

TEST_F(AliveTest, ThePidsAreNotCompared) {
  EXPECT_TRUE(alive(earlier, Seen{7, 1000, 4242, false}));
}

TEST_F(AliveTest, WhetherTheEarlierLookSawAZombieDoesNotMatter) {
  EXPECT_TRUE(alive(Seen{4242, 1000, 4242, true}, earlier));
}

struct PrintCase {
  const char* name;
  std::string print;
  std::optional<std::int32_t> pid;
};

void PrintTo(const PrintCase& one, std::ostream* out) {
  *out << one.name;
}

std::string named(const ::testing::TestParamInfo<PrintCase>& one) {
  return one.param.name;
}

/// A job's block with these lines in it, one tab deep.
std::string job(const std::vector<std::string>& lines) {
  std::string print = "gui/501/studio.pell.tamo.core = {\n";
  for (const auto& line : lines)
    print += "\t" + line + "\n";
  return print + "}\n";
}

class PidTest : public ::testing::TestWithParam<PrintCase> {};

TEST_P(PidTest, IsReadByTheLineRule) {
  EXPECT_EQ(pid(GetParam().print), GetParam().pid);
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, PidTest,
    ::testing::Values(
        PrintCase{"TopLevelLine", job({"pid = 4242"}), 4242},
        PrintCase{"InsideANestedBlock", job({"endpoints = {", "\tpid = 4242", "}"}), std::nullopt},
        PrintCase{"AfterANestedBlock", job({"endpoints = {", "\tpid = 9", "}", "pid = 4242"}), 4242},
        PrintCase{"AfterAnEmptyBlock", job({"sockets = {", "}", "pid = 4242"}), 4242},
        PrintCase{"TwoBlocksDeep", job({"a = {", "b = {", "}", "pid = 9", "}"}), std::nullopt},
        PrintCase{"OutsideAnyBlock", "pid = 4242\n", std::nullopt},
        PrintCase{"AfterTheOuterBlock", job({}) + "pid = 4242\n", std::nullopt},
        PrintCase{"InASecondOuterBlock", job({}) + job({"pid = 4242"}), 4242},
        PrintCase{"AfterACloserTooMany", "}\n" + job({"pid = 4242"}), std::nullopt},
        PrintCase{"ACloserTooManyMadeGood", "}\n= {\n" + job({"pid = 4242"}), 4242},
        PrintCase{"FirstOfTwo", job({"pid = 4242", "pid = 77"}), 4242},
        PrintCase{"WithoutLastNewline", "job = {\n\tpid = 4242", 4242},
        PrintCase{"WithEmptyLines", "\n\njob = {\n\n\n\tpid = 4242\n\n}", 4242},
        PrintCase{"NoText", "", std::nullopt},
        PrintCase{"AnOpenerIndentedAndTrailed", "\u00A0job = {\t \npid = 4242\n", 4242},
        PrintCase{"AnOpenerOfNothingElse", "= {\npid = 4242\n", 4242},
        PrintCase{"AnOpenerThatBeginsAsAPid", job({"pid = 5 = {", "}", "pid = 4242"}), 4242},
        PrintCase{"InABlockThatBeginsAsAPid", job({"pid = 5 = {", "pid = 4242", "}"}), std::nullopt},
        PrintCase{"AnOpenerAtDepthZeroThatBeginsAsAPid", "pid = 5 = {\npid = 4242\n", 4242},
        PrintCase{"AnArrowOpensNothingButIsClosed", job({"a => {", "}", "pid = 4242"}), std::nullopt},
        PrintCase{"InsideAnArrowsBlock", job({"a => {", "pid = 4242"}), 4242},
        PrintCase{"ABraceWithoutBlankOpensNothing", job({"a ={", "pid = 4242"}), 4242},
        PrintCase{"ABraceWithASemicolonClosesNothing", job({"a = {", "};", "pid = 4242"}), std::nullopt},
        PrintCase{"AmongTheArguments", job({"arguments = {", "pid = 9", "}", "pid = 4242"}), 4242},
        PrintCase{"AClosingBraceAmongTheArguments", job({"arguments = {", "}", "}", "pid = 4242"}),
                  std::nullopt},
        PrintCase{"AnOpenerWithoutABlankBeforeItsSign", job({"a= {", "pid = 9", "}", "pid = 4242"}), 4242},
        PrintCase{"ABraceBesideOtherWordsClosesNothing", job({"a = {", "}}", "{}", "x }", "pid = 4242"}),
                  std::nullopt},
        PrintCase{"AnyHeaderOpens", "= {\n\tpid = 4242\n}\n", 4242},
        PrintCase{"WordsBehindTheHeader", "Could not find service\n\n" + job({"pid = 4242"}), 4242},
        PrintCase{"ACarriageReturnHidesTheOpener", "job = {\r\npid = 4242\n", std::nullopt},
        PrintCase{"ACarriageReturnHidesTheCloser", job({"a = {", "}\r", "pid = 4242"}), std::nullopt}),
    named);

INSTANTIATE_TEST_SUITE_P(
    Values, PidTest,
    ::testing::Values(
        PrintCase{"OneAndZeroAreSkipped", job({"pid = 1", "pid = 0", "pid = 77"}), 77},
        PrintCase{"TwoIsTheLowest", job({"pid = 2"}), 2},
        PrintCase{"NothingIsSkipped", job({"pid = ", "pid = 77"}), 77},
        PrintCase{"LettersAreSkipped", job({"pid = 12x", "pid = x12", "pid = 77"}), 77},
        PrintCase{"OutOfRangeIsSkipped", job({"pid = 99999999999", "pid = 77"}), 77},
        PrintCase{"LargestInRange", job({"pid = 2147483647"}), 2147483647},
        PrintCase{"OneAboveRangeIsSkipped", job({"pid = 2147483648", "pid = 77"}), 77},
        PrintCase{"PlusIsRead", job({"pid = +15"}), 15},
        PrintCase{"MinusIsSkipped", job({"pid = -15", "pid = 77"}), 77},
        PrintCase{"TwoSignsAreSkipped", job({"pid = ++15", "pid = +-15", "pid = -+15", "pid = 77"}), 77},
        PrintCase{"ASignAloneIsSkipped", job({"pid = +", "pid = -", "pid = 77"}), 77},
        PrintCase{"LeadingZerosAreDecimal", job({"pid = 0017"}), 17},
        PrintCase{"HexadecimalIsSkipped", job({"pid = 0x11", "pid = 77"}), 77},
        PrintCase{"NoBlanksIsNoPid", job({"pid=15"}), std::nullopt},
        PrintCase{"UpperCaseIsNoPid", job({"PID = 15"}), std::nullopt},
        PrintCase{"LongerKeyIsNoPid", job({"xpid = 15", "pid x = 15"}), std::nullopt},
        PrintCase{"TwoBlanksAreSkipped", job({"pid =  15", "pid = 77"}), 77},
        PrintCase{"WrappedInto32BitsIsSkipped", job({"pid = 4294967298", "pid = 77"}), 77},
        PrintCase{"ATabAfterTheSignIsNoPid", job({"pid =\t15", "pid\t= 15"}), std::nullopt},
        PrintCase{"AFractionIsSkipped", job({"pid = 15.0", "pid = 1e3", "pid = 77"}), 77},
        PrintCase{"TwoNumbersAreSkipped", job({"pid = 15 16", "pid = 77"}), 77},
        PrintCase{"AQuotedNumberIsSkipped", job({"pid = \"15\"", "pid = (15)", "pid = 77"}), 77},
        PrintCase{"OtherBreaksStayInTheLine",
                  job({"x\vpid = 15", "x\u2028pid = 16", "pid = 17\f", "pid = 77"}), 77},
        PrintCase{"AZeroWidthBlankIsNotStripped",
                  job({"\u200Bpid = 15", "pid = 16\u200B", "\uFEFFpid = 17", "pid = 77"}), 77},
        PrintCase{"TrailingBlanksAreHarmless", job({"pid = 15 \t \u00A0\u3000"}), 15},
        PrintCase{"WideBlanksInFrontAreHarmless", job({"\u00A0\u2003 pid = 15"}), 15},
        PrintCase{"CarriageReturnIsSkipped", job({"pid = 15\r", "pid = 77"}), 77},
        PrintCase{"WideDigitsAreSkipped", job({"pid = \uFF11\uFF15", "pid = 77"}), 77}),
    named);

/// A print that a real system gave.
std::string realPrint(const std::string& name) {
  std::ifstream file(TAMO_SOURCE_DIR "/tests/data/launchctl/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

struct Indexed {
  std::string file;
  std::string pid;
};

/// The files of the index with the pids that a careful reader sees in them; "-" where there is none.
std::vector<Indexed> indexedPrints() {
  std::istringstream index(realPrint("index.tsv"));
  std::vector<Indexed> prints;
  std::string line;
  std::getline(index, line);
  while (std::getline(index, line)) {
    std::istringstream columns(line);
    std::string file;
    std::string skipped;
    std::string pid;
    std::getline(columns, file, '\t');
    std::getline(columns, skipped, '\t');
    std::getline(columns, skipped, '\t');
    std::getline(columns, pid, '\t');
    prints.push_back({file, pid});
  }
  return prints;
}

TEST(RealPrintTest, EveryIndexedPrintGivesThePidThatAReaderSees) {
  const auto prints = indexedPrints();
  EXPECT_EQ(prints.size(), 32U);
  for (const auto& print : prints) {
    if (print.file == "037.txt") continue;
    const auto found = pid(realPrint(print.file));
    EXPECT_EQ(found ? std::to_string(*found) : "-", print.pid) << print.file;
  }
}

TEST(RealPrintTest, BlocksThatOpenWithAnArrowHideThePidBehindThem) {
  const auto print = realPrint("037.txt");
  EXPECT_TRUE(print.contains("\n\tpid = 1076\n"));
  EXPECT_EQ(pid(print), std::nullopt);
}

TEST(RealPrintTest, TheJobsBlockIsReadBeforeTheProcesssOwn) {
  auto print = realPrint("001.txt");
  EXPECT_EQ(pid(print), 518);
  // Without the job's own line the process's block cannot stand in for it: the arrow in the job's block has
  // closed one block too many by then.
  print.erase(print.find("        pid = 518\n"), 18);
  EXPECT_TRUE(print.contains("        pid = 518\n"));
  EXPECT_EQ(pid(print), std::nullopt);
}

TEST(RealPrintTest, AnExcerptWithoutItsHeaderHasNothingAtTheTopLevel) {
  EXPECT_EQ(pid(realPrint("031.txt") + "\n\tpid = 812\n"), std::nullopt);
}

TEST(RealPrintTest, PiecesWithoutTheirOpenersLeaveTheTopLevelForGood) {
  const auto print = realPrint("051.txt");
  EXPECT_EQ(pid(print + "pid = 812\n"), std::nullopt);
  // Four closers and two openers: it takes three openers to be at the top level again.
  EXPECT_EQ(pid(print + "= {\n= {\n= {\npid = 812\n"), 812);
}

}  // namespace
}  // namespace tamo::HardStop
