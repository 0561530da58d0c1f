#include "contract/backend.hpp"

namespace tamo::contract {
namespace {

class LocalSocketsContract : public Contract {
 protected:
  platform::LocalSockets& sockets = platform.localSockets;
};

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

TAMO_CONTRACT(LocalSocketsContract);

}  // namespace
}  // namespace tamo::contract
