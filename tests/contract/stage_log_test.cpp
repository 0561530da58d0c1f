#include "platform/stage/stage_log.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include "contract/temporary_stage.hpp"
#include "fakes/fake_clock.hpp"

namespace tamo::stage {
namespace {

using namespace std::chrono_literals;
using platform::LogFormat;
using platform::LogLine;

LogLine outcome(const std::string& description) {
  return {LogFormat::outcome,
          {std::string("sync"), std::int64_t{1}, std::string("Optional(false)"), std::string(" D"),
           std::string(" 5 "), description}};
}

class StageLogTest : public ::testing::Test {
 protected:
  /// Writes one line; gives what came to standard error.
  std::string written(const LogLine& line) {
    const auto logger = log.logger("studio.pell.Tamo.Core", "lifecycle");
    ::testing::internal::CaptureStderr();
    logger->write(line);
    return ::testing::internal::GetCapturedStderr();
  }
  [[nodiscard]] std::string file() const { return contract::hostBytes(stage.root().control("log")); }

  contract::TemporaryStage stage;
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  StageLog log{stage.root(), clock};
};

TEST(LogTimeTest, ItIsTruncatedTowardsThePast) {
  const std::chrono::system_clock::time_point epoch{};
  EXPECT_EQ(logTime(epoch), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(logTime(epoch + 1'709'210'096'789'999us), "2024-02-29T12:34:56.789Z");
  EXPECT_EQ(logTime(epoch - 1us), "1969-12-31T23:59:59.999Z");
}

TEST(MarkedColumnTest, EveryArgumentCarriesItsMark) {
  const LogLine line{LogFormat::refused, {std::string("sy{nc"), std::string("/a\tb")}};
  EXPECT_EQ(markedColumn(line, PrivateTexts::Hidden), "{public:sy\\{nc} refused: {public:/a\\tb}");
  EXPECT_EQ(shownColumn(line, PrivateTexts::Hidden), "sy{nc refused: /a\\tb");
}

TEST(MarkedColumnTest, APrivateTextIsHiddenUntilToldOtherwise) {
  const auto marks = "{public:sync} -> status {public:1} ok {public:Optional(false)}{public: D}{public: 5 }";
  EXPECT_EQ(markedColumn(outcome("why"), PrivateTexts::Hidden), std::string(marks) + "{private}");
  EXPECT_EQ(markedColumn(outcome("w}"), PrivateTexts::Shown), std::string(marks) + "{private:w\\}}");
  EXPECT_EQ(shownColumn(outcome("why"), PrivateTexts::Hidden),
            "sync -> status 1 ok Optional(false) D 5 <private>");
  EXPECT_EQ(shownColumn(outcome("why"), PrivateTexts::Shown), "sync -> status 1 ok Optional(false) D 5 why");
}

TEST_F(StageLogTest, ALineHasSevenColumns) {
  clock.wallAtZero += 1500ms;
  EXPECT_EQ(written({LogFormat::hardStop, {std::int64_t{42}, std::string("exited")}}),
            "default hardstop pid 42: exited\n");
  EXPECT_EQ(file(), "1970-01-01T00:00:01.500Z\t" + std::to_string(::getpid()) +
                        "\tdefault\tstudio.pell.Tamo.Core\tlifecycle\thardstop pid 42: exited\t"
                        "hardstop pid {public:42}: {public:exited}\n");
}

TEST_F(StageLogTest, LinesAreAddedAtTheEnd) {
  stage.file("/.stage/log", "before\n");
  EXPECT_EQ(written({LogFormat::receiptFailed, {}}), "error receipt failed\n");
  EXPECT_TRUE(file().starts_with("before\n1970"));
  EXPECT_TRUE(file().ends_with("\treceipt failed\treceipt failed\n"));
}

TEST_F(StageLogTest, TheSettingShowsPrivateTexts) {
  EXPECT_EQ(written(outcome("why")), "default sync -> status 1 ok Optional(false) D 5 <private>\n");
  EXPECT_EQ(file().find("why"), std::string::npos);
  stage.root().set("log-private", "shown");
  EXPECT_EQ(written(outcome("why")), "default sync -> status 1 ok Optional(false) D 5 why\n");
  EXPECT_NE(file().find("{private:why}"), std::string::npos);
}

TEST_F(StageLogTest, ALineThatCannotBeKeptIsStillShown) {
  stage.folder("/.stage/log");
  EXPECT_EQ(written({LogFormat::receiptFailed, {}}), "error receipt failed\n");
}

}  // namespace
}  // namespace tamo::stage
