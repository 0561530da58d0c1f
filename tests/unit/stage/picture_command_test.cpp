#include <algorithm>
#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <pty.h>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "journal_builder.hpp"
#include "stage/picture/picture_words.hpp"
#include "stage_command_test.hpp"
#include "svg_form.hpp"

/// tamo-stage picture, with whatever lies where the journal should be.
namespace tamo::stage {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class PictureCommandTest : public StageCommandTest {
 protected:
  int draw(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"picture", stage.path};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
  }
  void journalIs(const std::string& bytes) const { stage.write("/.stage/journal", bytes); }
  [[nodiscard]] std::string journal() const { return stage.root.control("journal"); }
};

TEST_F(PictureCommandTest, NoStageIsOneLine) {
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(runTamoStage({"picture", "/tmp"}), 1);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "tamo-stage picture: /tmp is no stage\n");
}

TEST_F(PictureCommandTest, AJournalThatHasNothingToDrawIsOneLine) {
  EXPECT_EQ(draw(), 1);
  EXPECT_EQ(errors, "tamo-stage picture: no journal can be read at " + journal() + "\n");
  journalIs("");
  EXPECT_EQ(draw(), 1);
  EXPECT_EQ(errors, "tamo-stage picture: the journal " + journal() +
                        " is empty: nothing has happened that could be drawn\n");
  journalIs(
      "Jan 02 03:04:05 host kernel: something else\n\x7F"
      "ELF\n");
  EXPECT_EQ(draw(), 1);
  EXPECT_EQ(errors, "tamo-stage picture: " + journal() + " is no journal of a stage\n");
  journalIs("12\t34\tlaunchd\n");
  EXPECT_EQ(draw(), 1);
  EXPECT_EQ(errors, "tamo-stage picture: no action has begun on " + stage.root.directory() + " so far\n");
  EXPECT_EQ(output, "");
}

TEST_F(PictureCommandTest, AFolderInTheJournalsPlaceIsOneLine) {
  stage.write("/.stage/journal/in-the-way", "");
  EXPECT_EQ(draw(), 1);
  EXPECT_EQ(errors, "tamo-stage picture: no journal can be read at " + journal() + "\n");
}

TEST_F(PictureCommandTest, AJournalThatIsCutAnywhereIsDrawnOrTellsWhyNot) {
  const auto whole = hangingRestart().bytes();
  for (std::size_t size = 0; size < whole.size(); size += 7) {
    journalIs(whole.substr(0, size));
    const int status = draw();
    ASSERT_TRUE(status == 0 || std::ranges::count(errors, '\n') == 1) << size;
    if (status == 0 && whole[size - 1] != '\n') {
      ASSERT_THAT(output, HasSubstr("cut off in the middle")) << size;
    }
  }
}

TEST_F(PictureCommandTest, WhereNobodyLooksOnTheTextHasTheUsualWidth) {
  journalIs(hangingRestart().bytes());
  EXPECT_EQ(draw(), 0);
  EXPECT_THAT(output, StartsWith("restart by companion 100, 2.52 s\n"));
  EXPECT_THAT(output, HasSubstr("asked at 0.46 s, alive at 2.46 s, group killed at 2.46 s, gone at 2.47 s"));
  EXPECT_EQ(errors, "");
}

TEST_F(PictureCommandTest, AFileGetsThePictureAndTheTerminalNothing) {
  journalIs(hangingRestart().bytes());
  EXPECT_EQ(draw({stage.path + "/a.svg"}), 0);
  EXPECT_EQ(output, "");
  EXPECT_EQ(wrongInXml(stage.read("/a.svg")), "");
}

TEST_F(PictureCommandTest, AFileThatCannotBeWrittenIsOneLine) {
  journalIs(hangingRestart().bytes());
  EXPECT_EQ(draw({stage.path + "/nowhere/a.svg"}), 1);
  EXPECT_EQ(errors, "tamo-stage picture: cannot write " + stage.path + "/nowhere/a.svg\n");
}

TEST_F(PictureCommandTest, AWrongUseDrawsNothing) {
  journalIs(hangingRestart().bytes());
  EXPECT_EQ(draw({stage.path + "/a.png"}), 2);
  EXPECT_EQ(draw({stage.path + "/a.svg", "more"}), 2);
  EXPECT_FALSE(std::filesystem::exists(stage.path + "/a.svg"));
  EXPECT_EQ(output, "");
}

/// Draws on a terminal of so many columns and gives the status and what the terminal was shown.
std::pair<int, std::string> drawnOnTerminal(const std::string& stage, unsigned short columns) {
  int controlling = -1;
  winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
  const auto child = ::forkpty(&controlling, nullptr, nullptr, &size);
  if (child == 0) {
    const int drawn = runTamoStage({"picture", stage});
    std::cout.flush();
    ::_exit(drawn);
  }
  std::string shown;
  std::array<char, 4096> bytes;
  // The end of a terminal whose last user has gone is an error.
  for (ssize_t count = 0; (count = ::read(controlling, bytes.data(), bytes.size())) > 0;)
    shown.append(bytes.data(), static_cast<std::size_t>(count));
  int status = -1;
  ::waitpid(child, &status, 0);
  ::close(controlling);
  std::erase(shown, '\r');
  return {WEXITSTATUS(status), shown};
}

std::size_t longestLine(const std::string& text) {
  std::size_t longest = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    longest = std::max(longest, columnsOf(line));
  return longest;
}

TEST_F(PictureCommandTest, ATerminalGetsWhatItHasRoomFor) {
  journalIs(hangingRestart().bytes());
  for (const auto columns : std::vector<unsigned short>{40, 80, 250}) {
    const auto [status, shown] = drawnOnTerminal(stage.path, columns);
    EXPECT_EQ(status, 0);
    EXPECT_THAT(shown, HasSubstr("new Core"));
    EXPECT_LE(longestLine(shown), std::min<std::size_t>(columns, 100)) << columns;
    EXPECT_GT(longestLine(shown), std::min<std::size_t>(columns, 100) * 9 / 10) << columns;
  }
}

TEST_F(PictureCommandTest, ATerminalThatIsTooNarrowIsToldSoInOneLine) {
  journalIs(hangingRestart().bytes());
  const auto [status, shown] = drawnOnTerminal(stage.path, 23);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(shown, "tamo-stage picture: a terminal of 23 columns is too narrow; name a FILE.svg\n");
}

}  // namespace
}  // namespace tamo::stage
