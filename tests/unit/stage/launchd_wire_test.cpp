#include "platform/stage/launchd_wire.hpp"

#include <gtest/gtest.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(LaunchdWireTest, WordsSurviveTheWay) {
  const std::vector<std::vector<std::string>> questions = {
      {}, {"print", "gui/501/a b"}, {"", ""}, {"line\nbreak", "tab\t"}};
  for (const auto& words : questions)
    EXPECT_EQ(wordsOf(bytesOf(words)), words);
}

TEST(LaunchdWireTest, AQuestionThatIsNotWholeIsNone) {
  using std::string_literals::operator""s;
  for (const auto& bytes : {""s, "2"s, "2\0print\0"s, "2\0print\0gui"s, "x\0print\0"s, "\0"s})
    EXPECT_FALSE(wordsOf(bytes));
}

TEST(LaunchdWireTest, AnAnswerSurvivesTheWay) {
  const LaunchdAnswer answer{.status = -5, .output = "a\nb", .errors = "Bad request.\n"};
  const auto read = answerOf(bytesOf(answer));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->status, -5);
  EXPECT_EQ(read->output, "a\nb");
  EXPECT_EQ(read->errors, "Bad request.\n");
}

TEST(LaunchdWireTest, AnAnswerThatWasCutOffIsNone) {
  using std::string_literals::operator""s;
  for (const auto& bytes : {""s, "0"s, "0\0half"s, "0\0whole\0half"s, "x\0\0\0"s})
    EXPECT_FALSE(answerOf(bytes));
}

TEST(LaunchdWireTest, WithoutALaunchdThereIsNoAnswer) {
  const TemporaryStage stage;
  EXPECT_FALSE(askLaunchd(stage.root, {"print", "gui/501"}));
}

}  // namespace
}  // namespace tamo::stage
