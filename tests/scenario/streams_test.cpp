#include <array>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"
#include "scenario/move_stage.hpp"

/// Companions whose outputs nobody reads. A Mac's log asks nobody to read; so what they do, record and report is
/// the same.
namespace tamo::scenario {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A pipe, and what may have become of its reader.
class Outputs {
 public:
  Outputs() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    reading_ = platform::Descriptor(ends[0]);
    writing_ = platform::Descriptor(ends[1]);
  }
  void lose() { reading_.close(); }
  void fill() const {
    ::fcntl(writing_.get(), F_SETFL, O_NONBLOCK);
    while (::write(writing_.get(), "x", 1) == 1) {
    }
    ::fcntl(writing_.get(), F_SETFL, 0);
  }
  [[nodiscard]] int get() const { return writing_.get(); }

 private:
  platform::Descriptor reading_;
  platform::Descriptor writing_;
};

class StreamScenario : public ::testing::Test {
 protected:
  static void expectARestartIsReported(const Outputs& outputs) {
    const Stage stage({.core = "term=obey", .companion = stage::Companion::Receipts});
    const auto before = stage.corePid();
    const auto ended = Stage::finish(stage.startWith(outputs.get(), {"--core-action", "restart"}));
    EXPECT_EQ(ended.status, 0);
    EXPECT_NE(stage.corePid(), before);
    ASSERT_EQ(stage.lines().size(), 3U);
    EXPECT_THAT(stage.lines().back(), StartsWith("default {public:restart} -> status {public:1} ok"));
    const auto receipt = stage.file(stage.root().home() + "/Library/Application Support/TamoPKG1/M2/" +
                                    std::to_string(ended.pid) + "-core.json");
    EXPECT_THAT(receipt.value_or("no receipt"), HasSubstr("\"operation\" : \"restart\""));
  }
  static void expectAMoveIsMade(const Outputs& outputs) {
    const MoveStage stage;
    const auto companion =
        stage.stage().startWith(outputs.get(), {"--core-action", "move-to-applications"}, "downloaded");
    EXPECT_EQ(Stage::finish(companion).status, 0);
    EXPECT_EQ(stage.stage().lines(), std::vector<std::string>{moveLine("moved")});
    EXPECT_EQ(stage.result(), resultOf("moved"));
    EXPECT_EQ(stage.front(), installedPath);
  }

  Outputs outputs;
};

TEST_F(StreamScenario, ARestartWhoseReaderHasGoneIsReported) {
  outputs.lose();
  expectARestartIsReported(outputs);
}

TEST_F(StreamScenario, ARestartWhoseReaderDoesNotReadIsReported) {
  outputs.fill();
  expectARestartIsReported(outputs);
}

TEST_F(StreamScenario, AMoveWhoseReaderHasGoneIsMade) {
  outputs.lose();
  expectAMoveIsMade(outputs);
}

TEST_F(StreamScenario, AMoveWhoseReaderDoesNotReadIsMade) {
  outputs.fill();
  expectAMoveIsMade(outputs);
}

}  // namespace
}  // namespace tamo::scenario
