#include "platform/stage/url_inbox.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <poll.h>

#include "contract/temporary_stage.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/stage/stream_sockets.hpp"

namespace tamo::stage {
namespace {

using Texts = std::vector<std::string>;
using Deliveries = std::vector<Texts>;

class UrlInboxTest : public ::testing::Test {
 protected:
  [[nodiscard]] platform::Descriptor sending(std::string_view bytes) const {
    auto connection = connectedTo(inbox.path());
    EXPECT_TRUE(connection && platform::writeAll(connection.get(), bytes));
    return connection;
  }
  [[nodiscard]] bool readable() const {
    std::vector<pollfd> sources;
    for (const int descriptor : inbox.descriptors())
      sources.push_back({.fd = descriptor, .events = POLLIN, .revents = 0});
    return ::poll(sources.data(), sources.size(), 0) > 0;
  }

  contract::TemporaryStage stage;
  UrlInbox inbox{stage.root()};
};

TEST(UrlsInTest, OneIsALine) {
  EXPECT_EQ(urlsIn("a\nb\n"), (Texts{"a", "b"}));
  EXPECT_EQ(urlsIn("a\n\n b"), (Texts{"a", " b"}));
  EXPECT_EQ(urlsIn("\n\n"), Texts{});
  EXPECT_EQ(urlsIn(""), Texts{});
}

TEST_F(UrlInboxTest, ADeliveryIsCompleteWhenItsSenderCloses) {
  EXPECT_FALSE(readable());
  auto sender = sending("first\nsec");
  EXPECT_TRUE(readable());
  EXPECT_EQ(inbox.receive(), Deliveries{});
  EXPECT_FALSE(readable());
  EXPECT_TRUE(platform::writeAll(sender.get(), "ond\n"));
  sender.close();
  EXPECT_TRUE(readable());
  EXPECT_EQ(inbox.receive(), (Deliveries{{"first", "second"}}));
  EXPECT_FALSE(readable());
}

TEST_F(UrlInboxTest, SendersDoNotMix) {
  auto slow = sending("slow");
  sending("fast").close();
  EXPECT_EQ(inbox.receive(), (Deliveries{{"fast"}}));
  slow.close();
  EXPECT_EQ(inbox.receive(), (Deliveries{{"slow"}}));
}

TEST_F(UrlInboxTest, ALongListArrivesWhole) {
  const std::string url(30'000, 'u');
  sending(url + "\nlast").close();
  EXPECT_EQ(inbox.receive(), (Deliveries{{url, "last"}}));
}

TEST_F(UrlInboxTest, AnEmptyDeliveryIsNone) {
  sending("\n").close();
  sending("").close();
  EXPECT_EQ(inbox.receive(), Deliveries{});
  EXPECT_EQ(inbox.descriptors().size(), 1U);
}

TEST_F(UrlInboxTest, TheSocketGoesWithTheInbox) {
  std::string path;
  {
    const contract::TemporaryStage other;
    path = UrlInbox(other.root()).path();
    EXPECT_FALSE(std::filesystem::exists(path));
  }
  EXPECT_TRUE(std::filesystem::exists(inbox.path()));
}

TEST_F(UrlInboxTest, WithoutAPlaceForTheSocketTheProcessStops) {
  const contract::TemporaryStage other;
  other.file("/.stage/companions", "in the way");
  EXPECT_DEATH(UrlInbox(other.root()), "fatal: no URLs can be received at .*/companions/");
}

}  // namespace
}  // namespace tamo::stage
