#include "stage/launchd/job_definition.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

using std::chrono::seconds;
using values::PropertyList;

constexpr auto bundledPath = "/A/Core.app/Contents/Library/LaunchAgents/x.plist";

PropertyList text(const std::string& value) {
  return {.value = value};
}

PropertyList::Dictionary shippedList() {
  return {{"Label", text("a.b")},
          {"BundleProgram", text("Contents/MacOS/agent")},
          {"ProgramArguments", {.value = PropertyList::Array{text("/elsewhere/agent"), text("-x")}}}};
}

std::optional<JobDefinition> definitionOf(PropertyList::Dictionary list,
                                          const std::string& path = bundledPath) {
  return jobDefinition({.value = std::move(list)}, path);
}

TEST(JobDefinitionTest, ABundledProgramIsTakenFromTheBundleThatHoldsTheList) {
  const auto definition = definitionOf(shippedList());
  ASSERT_TRUE(definition);
  EXPECT_EQ(definition->program, "/A/Core.app/Contents/MacOS/agent");
  EXPECT_EQ(definition->arguments, (std::vector<std::string>{"/elsewhere/agent", "-x"}));
}

TEST(JobDefinitionTest, ABundledProgramOutsideAnyBundleIsNone) {
  EXPECT_FALSE(definitionOf(shippedList(), "/Library/LaunchAgents/x.plist"));
}

TEST(JobDefinitionTest, WithoutAnyProgramTheFirstArgumentIsIt) {
  auto list = shippedList();
  list.erase("BundleProgram");
  EXPECT_EQ(definitionOf(list)->program, "/elsewhere/agent");
  list["Program"] = text("/bin/true");
  EXPECT_EQ(definitionOf(list)->program, "/bin/true");
}

TEST(JobDefinitionTest, AProgramWithoutArgumentsGetsItselfAsTheFirst) {
  auto list = shippedList();
  list.erase("ProgramArguments");
  EXPECT_EQ(definitionOf(list)->arguments, std::vector<std::string>{"/A/Core.app/Contents/MacOS/agent"});
}

TEST(JobDefinitionTest, WhatIsNotStatedIsAsLaunchdHasIt) {
  const auto definition = definitionOf(shippedList());
  EXPECT_EQ(definition->exitTimeout, seconds(5));
  EXPECT_EQ(definition->throttle, seconds(10));
  EXPECT_FALSE(definition->keepAlive || definition->runAtLoad || definition->abandonProcessGroup);
}

TEST(JobDefinitionTest, WhatIsStatedIsTaken) {
  auto list = shippedList();
  list["ExitTimeOut"] = {.value = std::int64_t{20}};
  list["ThrottleInterval"] = {.value = std::int64_t{3}};
  for (const auto* flag : {"KeepAlive", "RunAtLoad", "AbandonProcessGroup"})
    list[flag] = {.value = true};
  list["EnvironmentVariables"] = {.value = PropertyList::Dictionary{{"A", text("b")}}};
  const auto definition = definitionOf(list);
  EXPECT_EQ(definition->exitTimeout, seconds(20));
  EXPECT_EQ(definition->throttle, seconds(3));
  EXPECT_TRUE(definition->keepAlive && definition->runAtLoad && definition->abandonProcessGroup);
  EXPECT_EQ(definition->environment.at("A"), "b");
}

TEST(JobDefinitionTest, ATimeThatIsNoneIsAsIfNotStated) {
  for (const PropertyList& wrong :
       {text("20"), PropertyList{.value = std::int64_t{-1}}, PropertyList{.value = 0.5},
        PropertyList{.value = std::numeric_limits<std::int64_t>::max()}}) {
    auto list = shippedList();
    list["ExitTimeOut"] = wrong;
    EXPECT_EQ(definitionOf(list)->exitTimeout, seconds(5));
  }
}

TEST(JobDefinitionTest, ConditionsForKeepingAliveAreNotPlayed) {
  auto list = shippedList();
  list["KeepAlive"] = {.value = PropertyList::Dictionary{{"SuccessfulExit", {.value = false}}}};
  EXPECT_FALSE(definitionOf(list)->keepAlive);
}

TEST(JobDefinitionTest, AListWithoutALabelOrWithOtherArgumentsThanTextsDefinesNothing) {
  auto unlabelled = shippedList();
  unlabelled.erase("Label");
  EXPECT_FALSE(definitionOf(unlabelled));
  auto odd = shippedList();
  odd["ProgramArguments"] = {.value = PropertyList::Array{text("a"), {.value = std::int64_t{1}}}};
  EXPECT_FALSE(definitionOf(odd));
  EXPECT_FALSE(jobDefinition(text("a list?"), bundledPath));
}

}  // namespace
}  // namespace tamo::stage
