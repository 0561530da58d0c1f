#include "values/fatal.hpp"

#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace tamo::values {
namespace {

const auto aborted = ::testing::KilledBySignal(SIGABRT);

void say(std::string_view reason) noexcept {
  std::fprintf(stderr, "last words: %s\n", std::string(reason).c_str());
}

void stumble(std::string_view reason) noexcept {
  say(reason);
  fatal("no last words");
}

[[noreturn]] void fatalWith(LastWords words) {
  setLastWords(words);
  fatal("no such thing");
}

TEST(FatalDeathTest, TheReasonIsSaidAndTheProcessAborts) {
  EXPECT_EXIT(fatal("no such thing"), aborted, "^fatal: no such thing\n$");
}

TEST(FatalDeathTest, TheLastWordsAreSaidOnceBeforeTheAbort) {
  EXPECT_EXIT(fatalWith(&say), aborted, "^fatal: no such thing\nlast words: no such thing\n$");
}

TEST(FatalDeathTest, LastWordsThatAreFatalThemselvesAreNotSaidAgain) {
  EXPECT_EXIT(fatalWith(&stumble), aborted,
              "^fatal: no such thing\nlast words: no such thing\nfatal: no last words\n$");
}

TEST(FatalDeathTest, LastWordsThatWereTakenAwayAreNotSaid) {
  setLastWords(&say);
  EXPECT_EXIT(fatalWith(nullptr), aborted, "^fatal: no such thing\n$");
  setLastWords(nullptr);
}

}  // namespace
}  // namespace tamo::values
