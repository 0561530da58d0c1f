#include "app/core_sockets.hpp"

#include <gtest/gtest.h>

#include "fakes/fake_surroundings.hpp"

namespace tamo {
namespace {

using Texts = std::vector<std::string>;

class CoreSocketsTest : public ::testing::Test {
 protected:
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};
  fakes::FakeLocalSockets sockets{ledger, clock};
};

TEST_F(CoreSocketsTest, TheFirstSocketThatAcceptsEndsTheProbe) {
  sockets.accepting = {"/d/core.sock", "/d/talk.sock"};
  EXPECT_TRUE(coreAnswers(sockets, "/d/"));
  EXPECT_EQ(ledger.texts(), Texts{"sockets: connect /d/core.sock"});
}

TEST_F(CoreSocketsTest, TheSecondSocketIsTriedAfterTheFirst) {
  sockets.accepting = {"/d/talk.sock"};
  EXPECT_TRUE(coreAnswers(sockets, "/d/"));
  EXPECT_EQ(ledger.texts(), (Texts{"sockets: connect /d/core.sock", "sockets: connect /d/talk.sock"}));
}

TEST_F(CoreSocketsTest, NoSocketThatAcceptsIsNoAnswer) {
  EXPECT_FALSE(coreAnswers(sockets, "/d/"));
  EXPECT_EQ(ledger.count("sockets: "), 2U);
}

TEST_F(CoreSocketsTest, WithoutADataDirectoryNothingIsTried) {
  EXPECT_FALSE(coreAnswers(sockets, std::nullopt));
  EXPECT_TRUE(ledger.entries().empty());
}

/// The path with its zero byte may fill the 104 bytes of the address, and no more.
TEST_F(CoreSocketsTest, APathOf104BytesWithItsZeroByteIsTriedAndALongerOneSkipped) {
  const std::string fits = "/" + std::string(92, 'd') + "/";
  sockets.accepting = {fits + "core.sock"};
  EXPECT_EQ((fits + "core.sock").size() + 1, 104U);
  EXPECT_TRUE(coreAnswers(sockets, fits));
  ledger.clear();
  const std::string tooLong = "/" + std::string(93, 'd') + "/";
  sockets.accepting = {tooLong + "core.sock"};
  EXPECT_FALSE(coreAnswers(sockets, tooLong));
  EXPECT_TRUE(ledger.entries().empty());
}

/// Bytes count, not characters: the accents of a name take two each.
TEST_F(CoreSocketsTest, APathIsMeasuredInBytes) {
  std::string accents = "/";
  for (int count = 0; count < 46; ++count)
    accents += "é";
  EXPECT_FALSE(coreAnswers(sockets, accents + "d/"));
  EXPECT_TRUE(ledger.entries().empty());
  EXPECT_FALSE(coreAnswers(sockets, accents + "/"));
  EXPECT_EQ(ledger.count("sockets: connect " + accents + "/core.sock"), 1U);
}

TEST_F(CoreSocketsTest, ThePathIsTheDirectoryAsItIsWithTheNameBehindIt) {
  EXPECT_FALSE(coreAnswers(sockets, "/a//b/../É/"));
  EXPECT_FALSE(coreAnswers(sockets, "/d"));
  EXPECT_EQ(ledger.texts(),
            (Texts{"sockets: connect /a//b/../É/core.sock", "sockets: connect /a//b/../É/talk.sock",
                   "sockets: connect /dcore.sock", "sockets: connect /dtalk.sock"}));
}

}  // namespace
}  // namespace tamo
