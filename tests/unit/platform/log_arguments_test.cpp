#include "platform/log_arguments.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/log_text.hpp"

namespace tamo::platform {
namespace {

using enum LogTakes;

std::vector<LogTakes> listed(const LogPlaceholders& placeholders) {
  return {placeholders.takes.begin(), placeholders.takes.begin() + static_cast<long>(placeholders.count)};
}

TEST(LogArgumentsTest, EachPlaceholderTakesItsType) {
  EXPECT_EQ(listed(logPlaceholders("receipt failed")), std::vector<LogTakes>{});
  EXPECT_EQ(listed(logPlaceholders("%{private}s")), std::vector<LogTakes>{Text});
  EXPECT_EQ(listed(logPlaceholders("%{public}s -> status %{public}ld ok %{public}d%{bool,public}d!")),
            (std::vector<LogTakes>{Text, Long, Int, Truth}));
}

/// A format as an argument of a template.
template <std::size_t size>
struct Literal {
  consteval Literal(const char (&text)[size]) { std::ranges::copy(text, characters.begin()); }
  std::array<char, size> characters{};
};

template <Literal text>
concept Compiles = requires { std::bool_constant<(logPlaceholders(text.characters.data()), true)>(); };

TEST(LogArgumentsTest, AFormatThatIsNotUnderstoodDoesNotCompile) {
  EXPECT_TRUE(Compiles<"%{public}s">);
  EXPECT_FALSE(Compiles<"%s">);
  EXPECT_FALSE(Compiles<"%{public}s 100%">);
  EXPECT_FALSE(Compiles<"%{public}s%{public}lu">);
}

TEST(LogArgumentsTest, AFormatOfMoreThanEightPlaceholdersDoesNotCompile) {
  EXPECT_TRUE(Compiles<"%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d">);
  EXPECT_FALSE(
      (Compiles<
          "%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d%{public}d">));
}

LogLine fitting(LogFormat format, const LogPlaceholders& placeholders) {
  LogLine line{.format = format, .arguments = {}};
  for (const auto takes : listed(placeholders)) {
    if (takes == Text) line.arguments.emplace_back(std::string("t"));
    if (takes == Int || takes == Long) line.arguments.emplace_back(std::int64_t{1});
    if (takes == Truth) line.arguments.emplace_back(true);
  }
  return line;
}

/// Both ways to read a format agree on it: the portable rendering would stop at a line that does not fit.
TEST(LogArgumentsTest, EveryLineOfTheSystemIsUnderstood) {
#define TAMO_CHECK_LINE(name, level, text) \
  EXPECT_FALSE(shownText(fitting(LogFormat::name, logPlaceholders(text))).contains('%'));
  TAMO_LOG_LINES(TAMO_CHECK_LINE)
#undef TAMO_CHECK_LINE
}

constexpr auto mixed = logPlaceholders("%{public}s %{public}ld %{public}d %{bool,public}d");

LogLine mixedLine() {
  return {.format = LogFormat::receiptFailed,
          .arguments = {std::string("text"), std::int64_t{1} << 40U, std::int64_t{-7}, true}};
}

TEST(LogArgumentsTest, TheArgumentsArriveInOrderAndType) {
  std::string seen;
  withLogArguments<mixed>(mixedLine(), [&seen](auto... arguments) {
    static_assert(std::is_same_v<void(decltype(arguments)...), void(const char*, long, int, int)>);
    const auto shown = [](const auto& argument) {
      if constexpr (std::is_same_v<std::decay_t<decltype(argument)>, const char*>)
        return std::string(argument);
      else
        return std::to_string(argument);
    };
    ((seen += shown(arguments) + ";"), ...);
  });
  EXPECT_EQ(seen, "text;1099511627776;-7;1;");
}

TEST(LogArgumentsTest, ALineWithoutArgumentsStillCalls) {
  int calls = 0;
  withLogArguments<LogPlaceholders{}>({.format = LogFormat::receiptFailed, .arguments = {}},
                                      [&calls](auto... arguments) {
                                        static_assert(sizeof...(arguments) == 0);
                                        ++calls;
                                      });
  EXPECT_EQ(calls, 1);
}

TEST(LogArgumentsTest, ATruthIsOneOrNought) {
  const LogLine line{.format = LogFormat::receiptFailed, .arguments = {true, false}};
  EXPECT_EQ(logTruth(line, 0), 1);
  EXPECT_EQ(logTruth(line, 1), 0);
}

TEST(LogArgumentsTest, TheOutermostIntsFit) {
  using Limits = std::numeric_limits<int>;
  const LogLine line{.format = LogFormat::receiptFailed,
                     .arguments = {std::int64_t{Limits::min()}, std::int64_t{Limits::max()}}};
  EXPECT_EQ(logInt(line, 0), Limits::min());
  EXPECT_EQ(logInt(line, 1), Limits::max());
}

TEST(LogArgumentsDeathTest, ALineThatDoesNotFitStopsTheProcess) {
  const auto ignoring = [](auto... /*arguments*/) {};
  auto line = mixedLine();
  line.arguments.pop_back();
  EXPECT_DEATH(withLogArguments<mixed>(line, ignoring), "fatal: a log line does not fit");
  line.arguments.emplace_back(std::int64_t{1});
  EXPECT_DEATH(withLogArguments<mixed>(line, ignoring), "fatal: a log argument does not fit its format");
  EXPECT_DEATH(static_cast<void>(logText(line, 4)), "fatal: a log argument does not fit its format");
}

TEST(LogArgumentsDeathTest, AnIntThatWouldBeCutStopsTheProcess) {
  const LogLine line{.format = LogFormat::hardStop, .arguments = {std::int64_t{1} << 31U}};
  EXPECT_EQ(logLong(line, 0), std::int64_t{1} << 31U);
  EXPECT_DEATH(static_cast<void>(logInt(line, 0)), "fatal: a log argument does not fit its placeholder");
  const LogLine low{.format = LogFormat::hardStop, .arguments = {-(std::int64_t{1} << 31U) - 1}};
  EXPECT_DEATH(static_cast<void>(logInt(low, 0)), "fatal: a log argument does not fit its placeholder");
}

}  // namespace
}  // namespace tamo::platform
