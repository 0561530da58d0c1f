#include <gtest/gtest.h>
#include <set>

#include "hardstop/process_snapshot.hpp"
#include "launch/launch_job.hpp"
#include "launch/print_reading.hpp"
#include "unit/launch/print_corpus.hpp"

namespace tamo {
namespace {

std::string asList(const std::vector<std::string>& texts) {
  std::string list;
  for (const auto& text : texts)
    list.append(list.empty() ? "[\"" : ", \"").append(text).append("\"");
  return list + "]";
}

/// A number, if there is one, as the table writes it.
template <class Number>
std::string asField(const std::optional<Number>& number) {
  return number ? std::to_string(*number) : "-";
}

std::optional<LaunchJob::Definition> loadedFromFile(const std::string& name) {
  return LaunchJob::loaded(recorded::wholeFile(name + ".txt"));
}

class RecordedDefinitions : public ::testing::TestWithParam<RecordedPrint> {};

TEST_P(RecordedDefinitions, AreReadAsListed) {
  const auto& print = GetParam();
  ASSERT_FALSE(print.text().empty());
  const auto definition = LaunchJob::loaded(withoutQuotedBlocks(print.text()));
  ASSERT_EQ(definition.has_value(), print.arguments != "-");
  if (!definition) return;
  EXPECT_EQ(asList(definition->arguments), print.arguments);
  EXPECT_EQ(asField(definition->exitTimeout), print.exitTimeout);
}

/// A print without arguments defines nothing, so its timeout is read with arguments that are given to it.
TEST_P(RecordedDefinitions, HaveTheirTimeoutAsListedWhateverTheirArguments) {
  auto print = withoutQuotedBlocks(GetParam().text());
  const auto header = print.find("= {\n");
  if (header == std::string::npos || GetParam().arguments != "-") return;
  print.insert(header + 4, "arguments = {\n/core\n}\n");
  const auto definition = LaunchJob::loaded(print);
  ASSERT_TRUE(definition.has_value());
  EXPECT_EQ(asField(definition->exitTimeout), GetParam().exitTimeout);
}

TEST_P(RecordedDefinitions, HaveTheirPidAsListed) {
  EXPECT_EQ(asField(HardStop::pid(withoutQuotedBlocks(GetParam().text()))), GetParam().pid);
}

INSTANTIATE_TEST_SUITE_P(LaunchJob, RecordedDefinitions, ::testing::ValuesIn(recordedPrints()),
                         nameOfRecordedPrint);

TEST(RecordedPrintsTest, TheTableListsThemAll) {
  EXPECT_EQ(recordedPrints().size(), 32U);
}

TEST(RecordedPrintsTest, QuotedBlocksThatAreLeftInHideTheExitTimeoutBehindThem) {
  const auto definition = loadedFromFile("037");
  EXPECT_EQ(asList(definition.value().arguments), R"(["/Users/sglavoie/.local/bin/ddc-brightnessd"])");
  EXPECT_EQ(definition.value().exitTimeout, std::nullopt);
}

TEST(RecordedPrintsTest, ArrowedBlocksBehindTheExitTimeoutHideNothing) {
  const auto definition = loadedFromFile("001");
  EXPECT_EQ(definition.value().arguments.size(), 1U);
  EXPECT_EQ(definition.value().exitTimeout, 5);
}

TEST(RecordedPrintsTest, LinesWithoutAnOuterBlockDefineNothing) {
  EXPECT_EQ(loadedFromFile("031"), std::nullopt);
}

TEST(RecordedPrintsTest, ALineOfDotsInTheJobsBlockIsPassedOver) {
  EXPECT_EQ(loadedFromFile("047").value().exitTimeout, 5);
}

TEST(RecordedPrintsTest, AnArgumentsBlockThatIsItselfTheOutermostDefinesNothing) {
  EXPECT_EQ(loadedFromFile("051"), std::nullopt);
}

}  // namespace
}  // namespace tamo
