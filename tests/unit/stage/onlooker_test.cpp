#include "platform/stage/onlooker.hpp"

#include <array>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"

namespace tamo::stage {
namespace {

/// A pipe that somebody may read without having to wait.
class OnlookerTest : public ::testing::Test {
 protected:
  OnlookerTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    reading = platform::Descriptor(ends[0]);
    writing = platform::Descriptor(ends[1]);
    ::fcntl(reading.get(), F_SETFL, O_NONBLOCK);
  }
  [[nodiscard]] std::string seen(std::size_t most) const {
    std::string text(most, '\0');
    const auto size = ::read(reading.get(), text.data(), text.size());
    text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return text;
  }
  void fill() const {
    ::fcntl(writing.get(), F_SETFL, O_NONBLOCK);
    while (::write(writing.get(), "x", 1) == 1) {
    }
    ::fcntl(writing.get(), F_SETFL, 0);
  }
  static bool brokenPipeIsPending() {
    sigset_t pending;
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGPIPE) == 1;
  }
  static bool brokenPipeIsBlocked() {
    sigset_t blocked;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    return ::sigismember(&blocked, SIGPIPE) == 1;
  }

  platform::Descriptor reading;
  platform::Descriptor writing;
};

TEST_F(OnlookerTest, WhoReadsSeesEveryByte) {
  const std::string text = std::string(20'000, 'a') + "\n";
  showTo(writing.get(), text);
  EXPECT_EQ(seen(30'000), text);
}

TEST_F(OnlookerTest, WhoHasGoneCostsNothing) {
  reading.close();
  showTo(writing.get(), "nobody sees this\n");
  EXPECT_FALSE(brokenPipeIsPending());
  EXPECT_FALSE(brokenPipeIsBlocked());
}

TEST_F(OnlookerTest, WhoDoesNotReadMissesWhatComesThen) {
  fill();
  showTo(writing.get(), "missed\n");
  while (seen(65'536).size() == 65'536U) {
  }
  showTo(writing.get(), "seen\n");
  EXPECT_EQ(seen(100), "seen\n");
}

TEST_F(OnlookerTest, OneWhoWasNeverThereCostsNothing) {
  const int gone = writing.get();
  writing.close();
  showTo(gone, "nobody sees this\n");
  showTo(-1, "nobody sees this\n");
  EXPECT_FALSE(brokenPipeIsPending());
}

TEST_F(OnlookerTest, ASignalThatWasUnderWayBeforeIsLeftAlone) {
  sigset_t signal;
  sigset_t before;
  ::sigemptyset(&signal);
  ::sigaddset(&signal, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &signal, &before);
  ::raise(SIGPIPE);
  reading.close();
  showTo(writing.get(), "nobody sees this\n");
  EXPECT_TRUE(brokenPipeIsPending());
  EXPECT_TRUE(brokenPipeIsBlocked());
  constexpr timespec atOnce{};
  EXPECT_EQ(::sigtimedwait(&signal, nullptr, &atOnce), SIGPIPE);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
}  // namespace tamo::stage
