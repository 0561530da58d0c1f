#include "stage/launchd/launchd_clients.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "platform/posix/byte_stream.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

class LaunchdClientsTest : public ::testing::Test {
 protected:
  platform::Descriptor asker(const std::vector<std::string>& words) {
    auto socket = connectedTo(path);
    EXPECT_TRUE(platform::writeAll(socket.get(), bytesOf(words)));
    return socket;
  }

  /// As many turns as it takes to hear and answer, with nothing left to wait for.
  void turns() {
    for (int i = 0; i < 5; ++i) {
      std::vector<pollfd> polled;
      clients.addTo(polled);
      ::poll(polled.data(), polled.size(), 0);
      clients.serve(polled);
    }
  }

  static std::string answerTo(const platform::Descriptor& socket) {
    const auto bytes = platform::readToEnd(socket.get(), 100'000'000);
    const auto answer = answerOf(bytes.value_or(""));
    return answer ? answer->output : "(none)";
  }

  TemporaryStage stage;
  const std::string path = stage.path + "/sock";
  std::vector<std::vector<std::string>> asked;
  std::vector<LaunchdClients::Reply> replies;
  LaunchdClients clients{listeningAt(path), [this](const auto& words, const auto& reply) {
                           asked.push_back(words);
                           replies.push_back(reply);
                         }};
};

TEST_F(LaunchdClientsTest, AQuestionIsHeardWhenItIsComplete) {
  const auto socket = connectedTo(path);
  const auto question = bytesOf({"print", "gui/501"});
  EXPECT_TRUE(platform::writeAll(socket.get(), std::string_view(question).substr(0, question.size() - 1)));
  turns();
  EXPECT_TRUE(asked.empty());
  EXPECT_TRUE(platform::writeAll(socket.get(), std::string_view(question).substr(question.size() - 1)));
  turns();
  EXPECT_THAT(asked, ::testing::ElementsAre(::testing::ElementsAre("print", "gui/501")));
}

TEST_F(LaunchdClientsTest, AQuestionThatIsCutOffIsNotAsked) {
  {
    const auto socket = connectedTo(path);
    EXPECT_TRUE(
        platform::writeAll(socket.get(), "2" + std::string(1, '\0') + "shutdown" + std::string(1, '\0')));
  }
  turns();
  EXPECT_TRUE(asked.empty());
  const auto next = asker({"next"});
  turns();
  replies.at(0)({.output = "for next"});
  turns();
  EXPECT_EQ(answerTo(next), "for next");
}

TEST_F(LaunchdClientsTest, ALateAnswerKeepsNobodyElseWaiting) {
  const auto slow = asker({"slow"});
  turns();
  const auto quick = asker({"quick"});
  turns();
  ASSERT_EQ(replies.size(), 2U);
  replies[1]({.output = "for quick"});
  turns();
  EXPECT_EQ(answerTo(quick), "for quick");
  replies[0]({.output = "for slow"});
  turns();
  EXPECT_EQ(answerTo(slow), "for slow");
}

TEST_F(LaunchdClientsTest, AnAnswerAfterTheHangUpReachesNobody) {
  {
    const auto gone = asker({"gone"});
    turns();
  }
  turns();
  const auto next = asker({"next"});
  turns();
  ASSERT_EQ(replies.size(), 2U);
  replies[0]({.output = "for gone"});
  turns();
  replies[1]({.output = "for next"});
  turns();
  EXPECT_EQ(answerTo(next), "for next");
}

TEST_F(LaunchdClientsTest, AnAnswerLargerThanASocketHoldsIsGivenPieceByPiece) {
  const auto socket = asker({"print"});
  turns();
  const LaunchdAnswer large{.output = std::string(5'000'000, 'x')};
  replies.at(0)(large);
  std::string received;
  std::string piece(1'000'000, '\0');
  for (int i = 0; i < 1000 && received.size() < bytesOf(large).size(); ++i) {
    turns();
    const auto size = ::recv(socket.get(), piece.data(), piece.size(), MSG_DONTWAIT);
    if (size > 0) received.append(piece, 0, static_cast<std::size_t>(size));
  }
  EXPECT_EQ(received, bytesOf(large));
}

TEST_F(LaunchdClientsTest, AFinishedLaunchdHearsNobody) {
  const auto socket = asker({"shutdown"});
  turns();
  replies.at(0)({.output = "good bye"});
  clients.finish();
  EXPECT_EQ(answerTo(socket), "good bye");
  EXPECT_FALSE(connectedTo(path));
}

TEST_F(LaunchdClientsTest, ASocketsPathMayBeLong) {
  const auto folder = stage.path + "/" + std::string(200, 'd');
  std::filesystem::create_directory(folder);
  const auto listening = listeningAt(folder + "/sock");
  EXPECT_TRUE(listening);
  EXPECT_TRUE(connectedTo(folder + "/sock"));
}

}  // namespace
}  // namespace tamo::stage
