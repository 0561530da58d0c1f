#include "launch/print_reading.hpp"

#include <gtest/gtest.h>

#include "unit/launch/print_corpus.hpp"

namespace tamo {
namespace {

bool runningByText(const std::string& text) {
  return jobRunning(PrintResult{.code = 0, .text = text});
}

TEST(PrintReadingTest, NoCaptureCountsAsRunning) {
  EXPECT_TRUE(jobRunning(std::nullopt));
}

TEST(PrintReadingTest, OnlyTheNotFoundStatusSaysThatNothingRuns) {
  struct Row {
    std::int32_t code;
    bool running;
  };
  for (const auto& [code, running] : {Row{113, false}, Row{-1, true}, Row{1, true}, Row{5, true},
                                      Row{112, true}, Row{114, true}, Row{125, true}, Row{-113, true}}) {
    EXPECT_EQ(jobRunning(PrintResult{.code = code, .text = "state = not running\n"}), running) << code;
    EXPECT_EQ(jobRunning(PrintResult{.code = code, .text = std::nullopt}), running) << code;
  }
}

TEST(PrintReadingTest, ANotFoundStatusOutweighsAPidLine) {
  EXPECT_FALSE(jobRunning(PrintResult{.code = 113, .text = "\tpid = 812\n"}));
}

TEST(PrintReadingTest, AnUnreadableTextCountsAsRunning) {
  EXPECT_TRUE(jobRunning(PrintResult{.code = 0, .text = std::nullopt}));
}

TEST(PrintReadingTest, APidLineIsFoundByItsBeginning) {
  struct Row {
    const char* text;
    bool running;
  };
  for (const auto& [text, running] : {
           Row{"", false},
           Row{"\n\n", false},
           Row{"job = {\n\tstate = running\n}\n", false},
           Row{"job = {\n\tpid = 812\n}\n", true},
           Row{"pid = 812", true},
           Row{"a\n\n\n  \t pid = 812  \nb", true},
           Row{"\u00A0\u3000pid = 812", true},
           Row{"xpid = 1", false},
           Row{"pid =1", false},
           Row{"pid= 1", false},
           Row{"Pid = 1", false},
           Row{"last pid = 1", false},
           Row{"a\rpid = 1", false},
           Row{"\rpid = 1", false},
       }) {
    EXPECT_EQ(runningByText(text), running) << text;
  }
}

TEST(PrintReadingTest, APidLineCountsAtAnyDepth) {
  EXPECT_TRUE(runningByText("job = {\n\tendpoints = {\n\t\tone = {\n\t\t\tpid = 7\n\t\t}\n\t}\n}\n"));
}

TEST(PrintReadingTest, APidLineCountsWhateverItsValue) {
  for (const auto* value : {"0", "-1", "none", "12x", "= {", "99999999999", "\r"})
    EXPECT_TRUE(runningByText(std::string("\tpid = ") + value + "\n")) << value;
}

// Stripping takes the last blank of such a line, and with it what the line has to begin with.
TEST(PrintReadingTest, APidLineThatEndsAtItsBlankDoesNotCount) {
  EXPECT_FALSE(runningByText("\tpid = \n"));
}

class RecordedPrints : public ::testing::TestWithParam<RecordedPrint> {};

TEST_P(RecordedPrints, HaveAPidLineAsListed) {
  EXPECT_EQ(runningByText(GetParam().text()), GetParam().anyPidLine);
}

INSTANTIATE_TEST_SUITE_P(PrintReading, RecordedPrints, ::testing::ValuesIn(recordedPrints()),
                         nameOfRecordedPrint);

}  // namespace
}  // namespace tamo
