#include <gtest/gtest.h>
#include <set>

#include "launch/launch_job.hpp"
#include "unit/launch/print_corpus.hpp"

namespace tamo {
namespace {

std::string asList(const std::vector<std::string>& texts) {
  std::string list;
  for (const auto& text : texts)
    list.append(list.empty() ? "[\"" : ", \"").append(text).append("\"");
  return list + "]";
}

/// Prints in which the line rule sees something else than a careful reader does; each has a test of its own.
bool readOtherwise(const std::string& name) {
  return std::set<std::string>{"037"}.contains(name);
}

std::optional<LaunchJob::Definition> loadedFrom(const std::string& name) {
  return LaunchJob::loaded(recorded::wholeFile(name + ".txt"));
}

class RecordedDefinitions : public ::testing::TestWithParam<RecordedPrint> {};

TEST_P(RecordedDefinitions, AreReadAsListed) {
  const auto& print = GetParam();
  ASSERT_FALSE(print.text.empty());
  const auto definition = LaunchJob::loaded(print.text);
  ASSERT_EQ(definition.has_value(), print.arguments != "-");
  if (!definition) return;
  EXPECT_EQ(asList(definition->arguments), print.arguments);
  const auto& timeout = definition->exitTimeout;
  if (!readOtherwise(print.name)) {
    EXPECT_EQ(timeout ? std::to_string(*timeout) : "-", print.exitTimeout);
  }
}

INSTANTIATE_TEST_SUITE_P(LaunchJob, RecordedDefinitions, ::testing::ValuesIn(recordedPrints()),
                         nameOfRecordedPrint);

TEST(RecordedPrintsTest, TheTableListsThemAll) {
  EXPECT_EQ(recordedPrints().size(), 32U);
}

TEST(RecordedPrintsTest, ArrowedBlocksHideTheExitTimeoutBehindThem) {
  const auto definition = loadedFrom("037");
  EXPECT_EQ(asList(definition.value().arguments), R"(["/Users/sglavoie/.local/bin/ddc-brightnessd"])");
  EXPECT_EQ(definition.value().exitTimeout, std::nullopt);
}

TEST(RecordedPrintsTest, ArrowedBlocksBehindTheExitTimeoutHideNothing) {
  const auto definition = loadedFrom("001");
  EXPECT_EQ(definition.value().arguments.size(), 1U);
  EXPECT_EQ(definition.value().exitTimeout, 5);
}

TEST(RecordedPrintsTest, LinesWithoutAnOuterBlockDefineNothing) {
  EXPECT_EQ(loadedFrom("031"), std::nullopt);
}

TEST(RecordedPrintsTest, ALineOfDotsInTheJobsBlockIsPassedOver) {
  EXPECT_EQ(loadedFrom("047").value().exitTimeout, 5);
}

TEST(RecordedPrintsTest, AnArgumentsBlockThatIsItselfTheOutermostDefinesNothing) {
  EXPECT_EQ(loadedFrom("051"), std::nullopt);
}

}  // namespace
}  // namespace tamo
