#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "contract/callers.hpp"
#include "contract/temporary_stage.hpp"
#include "platform/posix/posix_local_sockets.hpp"

/// The sockets that a Mac uses, on this host: the stage has its own, and the contract reaches only those.
namespace tamo::platform {
namespace {

class PosixSocketsTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return folder.root().host("/" + name); }
  [[nodiscard]] Descriptor bound(const std::string& name, int type) const {
    Descriptor made(::socket(AF_UNIX, type, 0));
    const auto address = socketAddress(path(name));
    EXPECT_TRUE(address);
    EXPECT_EQ(::bind(made.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address), 0);
    return made;
  }

  contract::TemporaryStage folder;
  PosixLocalSockets sockets;
};

TEST_F(PosixSocketsTest, TheListenerSeesOneCallerWhoSaysNothingAndHasGone) {
  const auto listener = bound("core.sock", SOCK_STREAM);
  ASSERT_EQ(::listen(listener.get(), 5), 0);
  EXPECT_TRUE(sockets.accepts(path("core.sock")));
  contract::expectOneSilentCaller(listener);
}

TEST_F(PosixSocketsTest, ASocketForDatagramsRefuses) {
  const auto mailbox = bound("mail.sock", SOCK_DGRAM);
  EXPECT_FALSE(sockets.accepts(path("mail.sock")));
}

}  // namespace
}  // namespace tamo::platform
