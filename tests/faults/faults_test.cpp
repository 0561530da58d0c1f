#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "faults/outcomes.hpp"
#include "faults/sweep.hpp"
#include "faults/take_check.hpp"

/// Every call of every action made to fail, and the companion killed at every one. The build says how many of
/// these its check can bear; `prove/faults` plays them all.
namespace tamo::faults {
namespace {

using Kind = void (Sweep::*)(const Scene&, By);

/// Every so-manieth scene, so that the processors share them.
class SweepTest : public testing::TestWithParam<std::size_t> {
 public:
  static constexpr std::size_t shares = 8;

 protected:
  static Tally swept(Kind kind, std::uint64_t stride) {
    Sweep sweep({.stride = stride, .firsts = TAMO_SINGLES_STRIDE});
    for (std::size_t scene = GetParam(); scene < scenes().size(); scene += shares) {
      for (const auto by : {By::Switch, By::Url})
        (sweep.*kind)(scenes()[scene], by);
    }
    return sweep.tally();
  }
};

void expectSound(const Tally& tally) {
  EXPECT_EQ(tally.broken, 0U) << tally.wrong.front() << "\nshown by: prove/faults play TAKE";
  EXPECT_EQ(tally.missed, 0U);
  EXPECT_GT(tally.takes, 0U);
}

TEST_P(SweepTest, EveryInvariantHoldsWhenACallFails) {
  expectSound(swept(&Sweep::singles, TAMO_SINGLES_STRIDE));
}

TEST_P(SweepTest, EveryInvariantHoldsWhenTwoCallsFail) {
  expectSound(swept(&Sweep::pairs, TAMO_PAIRS_STRIDE));
}

TEST_P(SweepTest, ACompanionKilledAnywhereLeavesTheNextACleanRun) {
  expectSound(swept(&Sweep::deaths, TAMO_DEATHS_STRIDE));
}

TEST_P(SweepTest, ACompanionKilledAfterAFailureLeavesTheNextACleanRun) {
  expectSound(swept(&Sweep::deathsAfterFaults, TAMO_PAIRS_STRIDE));
}

INSTANTIATE_TEST_SUITE_P(Scenes, SweepTest, testing::Range(std::size_t{0}, SweepTest::shares));

/// A change of the file is a change of how a failure is answered: read it, line by line, before it is kept.
TEST(OutcomesTest, EverySingleFailureIsAnsweredAsItIsWritten) {
  std::ifstream file(TAMO_SOURCE_DIR "/tests/faults/expected_outcomes.txt");
  std::ostringstream expected;
  expected << file.rdbuf();
  const auto due = expected.str();
  std::size_t size = 0;
  for (std::size_t scene = 0; scene < scenes().size(); scene += TAMO_SINGLES_STRIDE) {
    for (const auto by : {By::Switch, By::Url}) {
      const auto found = outcomesOf(scenes()[scene], by, simulation::Plant::None);
      size += found.size();
      EXPECT_NE(due.find(found), std::string::npos) << found << "\ncompare: prove/faults outcomes";
    }
  }
  EXPECT_EQ(size, TAMO_SINGLES_STRIDE == 1 ? due.size() : size) << "answers of no scene";
}

/// A call that no scene reaches is never made to fail.
TEST(ScenesTest, EveryCallThatMayFailIsMet) {
  std::set<std::string_view> met;
  Player player;
  for (const auto& scene : scenes()) {
    const auto played = player.play({.scene = &scene, .by = By::Url}, {});
    for (std::size_t call = 0; call < played.calls.size(); ++call) {
      if (!played.ways[call].empty()) met.insert(nameOf(played.calls[call].call));
    }
  }
  const std::set<std::string_view> due{"accepts",
                                       "agentStatus",
                                       "createDirectories",
                                       "detach",
                                       "exists",
                                       "isWritable",
                                       "kill",
                                       "moveToTrash",
                                       "openApplication",
                                       "openForWriting",
                                       "openLock",
                                       "originalLocation",
                                       "passwordEntry",
                                       "processInfo",
                                       "readWhole",
                                       "registerAgent",
                                       "remove",
                                       "resolvedPath",
                                       "runningApplications",
                                       "startTool",
                                       "temporaryDirectory",
                                       "toolErrors",
                                       "toolWait",
                                       "tryLock",
                                       "unlock",
                                       "unregisterAgent",
                                       "writeAtomically"};
  EXPECT_EQ(met, due);
}

TEST(TakeNameTest, ATakeIsReadBackFromItsName) {
  for (const std::string name :
       {"restart switch", "sync-changed url 57:Torn 80:Exits!", "reseat switch before 12",
        "restart url after 3 tools-die again then register", "register url at 250 again"}) {
    const auto take = takeNamed(name);
    ASSERT_TRUE(take) << name;
    EXPECT_EQ(nameOf(*take), name);
  }
}

std::string whyNot(const std::string& words) {
  Player player;
  const auto take = takeNamed(words);
  return take ? whyNotPlayed(player, *take) : "no take";
}

/// The calls of a restart that nothing disturbs are 67; the 16th starts a print, and the 41st the kickstart, which a
/// print that is torn makes the 43rd.
struct Restart {
  const char* words;
  /// Empty for one that is played.
  const char* whyNot;
};

constexpr std::array restarts{Restart{"16:Torn", ""},
                              Restart{"43:Exits 16:Torn", ""},
                              Restart{"before 67", ""},
                              Restart{"1:Fails", "call 1, becomeAccessory, has no way to fail"},
                              Restart{"36:Torn", "call 36, processInfo core, fails only so: Fails"},
                              Restart{"500:Fails", "there is no call 500: the run has 67"},
                              Restart{"0:Fails", "there is no call 0: the run has 67"},
                              Restart{"16:Torn 16:Exits", "a call has two faults"},
                              Restart{"41:Exits before 20", "not every fault is reached before the death"},
                              Restart{"before 68", "the death is not reached"},
                              Restart{"at 3600000", "the death is not reached"}};

TEST(TakeCheckTest, ATakeOfWhichSomethingWouldNotHappenIsToldOf) {
  for (const auto& [words, due] : restarts)
    EXPECT_EQ(whyNot(std::string("restart switch ") + words), due) << words;
}

/// What a reader is shown has to be a take, and one of which everything happens.
TEST(TakeCheckTest, TheExamplesThatAreToldOfArePlayed) {
  const std::regex example("faults play '([^']+)'");
  for (const auto* name : {"/prove/faults", "/docs/proof.md"}) {
    std::ifstream file(TAMO_SOURCE_DIR + std::string(name));
    const std::string text(std::istreambuf_iterator<char>(file), {});
    std::sregex_iterator found(text.begin(), text.end(), example);
    ASSERT_NE(found, std::sregex_iterator()) << name;
    for (; found != std::sregex_iterator(); ++found)
      EXPECT_EQ(whyNot((*found)[1]), "") << name;
  }
}

TEST(TakeNameTest, OtherWordsAreNoTake) {
  for (const auto* name : {"", "restart", "restart fax", "bogus url", "restart url 5", "restart url x:Torn",
                           "restart url 5:Worn", "restart url before", "restart url before x",
                           "restart url again", "restart url tools-die", "restart url before 5 then x"}) {
    EXPECT_FALSE(takeNamed(name)) << name;
  }
}

}  // namespace
}  // namespace tamo::faults
