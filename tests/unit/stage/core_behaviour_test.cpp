#include "stage/core/core_behaviour.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using namespace std::chrono_literals;
using Term = CoreBehaviour::Term;

TEST(CoreBehaviourTest, WithoutAWordTheCoreBehaves) {
  const auto behaviour = coreBehaviour("");
  ASSERT_TRUE(behaviour);
  EXPECT_EQ(behaviour->term, Term::Obey);
  EXPECT_EQ(behaviour->children, 0);
  EXPECT_TRUE(behaviour->leadsGroup && behaviour->coreSocket && behaviour->talkSocket);
  EXPECT_FALSE(behaviour->stopsItself || behaviour->diesAfter);
}

TEST(CoreBehaviourTest, EachWayToMindSigtermIsRead) {
  EXPECT_EQ(coreBehaviour("term=ignore")->term, Term::Ignore);
  EXPECT_EQ(coreBehaviour("term=late:3000")->term, Term::Late);
  EXPECT_EQ(coreBehaviour("term=late:3000")->termDelay, 3s);
  EXPECT_EQ(coreBehaviour("term=revert:20")->term, Term::Revert);
  EXPECT_EQ(coreBehaviour("term=revert:20")->termDelay, 20ms);
}

TEST(CoreBehaviourTest, HelpersStayLeaveOrAreOrphans) {
  EXPECT_EQ(coreBehaviour("children=2")->children, 2);
  EXPECT_FALSE(coreBehaviour("children=2")->childrenLeave);
  EXPECT_TRUE(coreBehaviour("children=3:leave")->childrenLeave);
  EXPECT_FALSE(coreBehaviour("children=3:leave")->childrenAreOrphans);
  EXPECT_TRUE(coreBehaviour("children=2:orphan")->childrenAreOrphans);
  EXPECT_FALSE(coreBehaviour("children=2:orphan")->childrenLeave);
}

TEST(CoreBehaviourTest, TheSocketsAreChosen) {
  struct Case {
    const char* word;
    bool core;
    bool talk;
  };
  for (const auto& [word, core, talk] :
       {Case{"sockets=both", true, true}, Case{"sockets=core", true, false},
        Case{"sockets=talk", false, true}, Case{"sockets=none", false, false}}) {
    EXPECT_EQ(coreBehaviour(word)->coreSocket, core) << word;
    EXPECT_EQ(coreBehaviour(word)->talkSocket, talk) << word;
  }
}

TEST(CoreBehaviourTest, ADeathHasATimeAndPerhapsACode) {
  EXPECT_EQ(coreBehaviour("dies-after:200")->diesAfter, 200ms);
  EXPECT_EQ(coreBehaviour("dies-after:200")->diesWith, 1);
  EXPECT_EQ(coreBehaviour("dies-after:0:42")->diesWith, 42);
}

TEST(CoreBehaviourTest, SeveralWordsAddUp) {
  const auto behaviour = coreBehaviour("group=parent  stops-itself starts-slowly:50 term=ignore");
  EXPECT_FALSE(behaviour->leadsGroup);
  EXPECT_TRUE(behaviour->stopsItself);
  EXPECT_EQ(behaviour->startsSlowly, 50ms);
  EXPECT_EQ(behaviour->term, Term::Ignore);
}

TEST(CoreBehaviourTest, TheFirstWordThatOrdersNothingIsNamed) {
  for (const auto* word :
       {"term=never", "term=late", "term=late:x", "term=obey:5", "children=", "children=65", "children=2:go",
        "group=", "sockets=all", "dies-after:", "dies-after:5:256", "starts-slowly:-1", "stops",
        "stops-itself=1"}) {
    const auto behaviour = coreBehaviour(std::string("term=obey ") + word + " sulks");
    ASSERT_FALSE(behaviour) << word;
    EXPECT_EQ(behaviour.error(), word);
  }
}

}  // namespace
}  // namespace tamo::stage
