#include <sys/socket.h>
#include <sys/un.h>

#include "contract/backend.hpp"
#include "contract/callers.hpp"

namespace tamo::contract {
namespace {

class LocalSocketsContract : public Contract {
 protected:
  platform::LocalSockets& sockets = platform.localSockets;
};

/// What a Core sees of the question: one caller, who says nothing and has hung up already.
TEST_P(LocalSocketsContract, TheListenerSeesOneCallerWhoSaysNothingAndHasGone) {
  const auto listener = backend->listen(path("core.sock"));
  ASSERT_TRUE(sockets.accepts(path("core.sock")));
  expectOneSilentCaller(listener);
}

/// A mailbox for datagrams is no line that somebody takes up.
TEST_P(LocalSocketsContract, ASocketForDatagramsRefuses) {
  const platform::Descriptor mailbox(::socket(AF_UNIX, SOCK_DGRAM, 0));
  const auto place = host("mail.sock");
  sockaddr_un address{};
  ASSERT_LT(place.size(), sizeof address.sun_path);
  address.sun_family = AF_UNIX;
  place.copy(address.sun_path, place.size());
  ASSERT_EQ(::bind(mailbox.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_FALSE(sockets.accepts(path("mail.sock")));
}

TEST_P(LocalSocketsContract, TheNextQuestionIsAskedAnew) {
  const auto name = path("core.sock");
  EXPECT_FALSE(sockets.accepts(name));
  auto listener = backend->listen(name);
  EXPECT_TRUE(sockets.accepts(name));
  listener.close();
  EXPECT_FALSE(sockets.accepts(name));
}

TEST_P(LocalSocketsContract, AListenerAccepts) {
  const auto listener = backend->listen(path("core.sock"));
  ASSERT_TRUE(listener);
  EXPECT_TRUE(sockets.accepts(path("core.sock")));
  EXPECT_TRUE(sockets.accepts(path("core.sock")));
}

TEST_P(LocalSocketsContract, NothingAcceptsWhereNoSocketIs) {
  lay("file", "");
  EXPECT_FALSE(sockets.accepts(path("missing")));
  EXPECT_FALSE(sockets.accepts(path("missing/core.sock")));
  EXPECT_FALSE(sockets.accepts(path("file")));
  EXPECT_FALSE(sockets.accepts(backend->folder()));
}

TEST_P(LocalSocketsContract, ASocketWithoutAListenerRefuses) {
  backend->listen(path("core.sock")).close();
  EXPECT_TRUE(platform.files.exists(path("core.sock")));
  EXPECT_FALSE(sockets.accepts(path("core.sock")));
}

TEST_P(LocalSocketsContract, TheLongestPathThatFitsIsConnected) {
  const auto start = path("");
  const auto longest = start + std::string(103 - start.size(), 's');
  const auto listener = backend->listen(longest);
  ASSERT_TRUE(listener);
  EXPECT_TRUE(sockets.accepts(longest));
}

/// Its callers pile up until there is room for no more: the next one is sent away at once, and nobody waits.
TEST_P(LocalSocketsContract, AListenerThatNeverTakesACallIsNotWaitedFor) {
  const platform::Descriptor deaf(::socket(AF_UNIX, SOCK_STREAM, 0));
  const auto place = host("deaf.sock");
  sockaddr_un address{};
  ASSERT_LT(place.size(), sizeof address.sun_path);
  address.sun_family = AF_UNIX;
  place.copy(address.sun_path, place.size());
  ASSERT_EQ(::bind(deaf.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(deaf.get(), 1), 0);
  int taken = 0;
  while (taken < 100 && sockets.accepts(path("deaf.sock")))
    ++taken;
  EXPECT_GE(taken, 1);
  EXPECT_LT(taken, 100);
}

TAMO_CONTRACT(LocalSocketsContract);

}  // namespace
}  // namespace tamo::contract
