#include <sys/socket.h>
#include <sys/un.h>

#include "contract/backend.hpp"
#include "contract/callers.hpp"

namespace tamo::contract {
namespace {

class LocalSocketsContract : public Contract {
 protected:
  /// A socket of a kind at a place, where nobody listens yet; owns nothing when it could not be had.
  [[nodiscard]] platform::Descriptor bound(int kind, const std::string& name) const {
    platform::Descriptor made(::socket(AF_UNIX, kind, 0));
    const auto place = host(name);
    sockaddr_un address{};
    if (place.size() >= sizeof address.sun_path) return {};
    address.sun_family = AF_UNIX;
    place.copy(address.sun_path, place.size());
    const auto failure = ::bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return failure == 0 ? std::move(made) : platform::Descriptor();
  }

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
  const auto mailbox = bound(SOCK_DGRAM, "mail.sock");
  ASSERT_TRUE(mailbox);
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
  const auto deaf = bound(SOCK_STREAM, "deaf.sock");
  ASSERT_TRUE(deaf);
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
