#include "platform/log_text.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tamo::platform {
namespace {

std::string marked(const LogLine& line) {
  std::string text;
  for (const auto& piece : pieces(line)) {
    if (piece.part == LogPart::Fixed) text += piece.text;
    if (piece.part == LogPart::Public) text += "{" + piece.text + "}";
    if (piece.part == LogPart::Private) text += "[" + piece.text + "]";
  }
  return text;
}

LogLine outcome(std::string description) {
  return {LogFormat::outcome, {"restart", std::int64_t{1}, "false", " a", " b", std::move(description)}};
}

TEST(LogTest, ALineIsCutAtItsPlaceholders) {
  EXPECT_EQ(marked(outcome("secret")), "{restart} -> status {1} ok {false}{ a}{ b}[secret]");
}

TEST(LogTest, NoPieceIsEmptyButAnArgumentThatIs) {
  const auto cut = pieces({LogFormat::outcome, {"sync", std::int64_t{1}, "true", "", " b", "c"}});
  std::vector<std::string> texts;
  for (const auto& piece : cut)
    texts.push_back(piece.text);
  EXPECT_EQ(texts, (std::vector<std::string>{"sync", " -> status ", "1", " ok ", "true", "", " b", "c"}));
}

TEST(LogTest, APrivateArgumentIsNotShown) {
  EXPECT_EQ(shownText(outcome("secret")), "restart -> status 1 ok false a b<private>");
}

TEST(LogTest, ATruthValueShowsAsAWord) {
  const auto line = [](bool changed) {
    return LogLine{LogFormat::definition, {"2", "45", "2", "20", changed}};
  };
  EXPECT_EQ(shownText(line(true)), "definition: loaded 2 exit 45 · bundled 2 exit 20 · changed true");
  EXPECT_EQ(shownText(line(false)), "definition: loaded 2 exit 45 · bundled 2 exit 20 · changed false");
}

TEST(LogTest, AnArgumentIsNeverReadAsAFormat) {
  EXPECT_EQ(shownText({LogFormat::refused, {"%{public}s", "100%"}}), "%{public}s refused: 100%");
}

TEST(LogTest, ALineWithoutPlaceholdersIsItself) {
  EXPECT_EQ(shownText({LogFormat::receiptFailed, {}}), "receipt failed");
}

TEST(LogTest, OutcomesAreOrdinaryAndRefusalsAreErrors) {
  EXPECT_EQ(levelOf(LogFormat::outcome), LogLevel::Default);
  EXPECT_EQ(levelOf(LogFormat::definition), LogLevel::Default);
  EXPECT_EQ(levelOf(LogFormat::hardStop), LogLevel::Default);
  EXPECT_EQ(levelOf(LogFormat::refused), LogLevel::Error);
  EXPECT_EQ(levelOf(LogFormat::receiptFailed), LogLevel::Error);
  EXPECT_EQ(levelOf(LogFormat::moveResult), LogLevel::Default);
  EXPECT_EQ(levelOf(LogFormat::moveRefused), LogLevel::Error);
}

TEST(LogTest, TheMoveTellsItsCodeToEverybody) {
  EXPECT_EQ(marked({LogFormat::moveResult, {"not_writable"}}), "move-to-applications -> {not_writable}");
  EXPECT_EQ(marked({LogFormat::moveRefused, {}}), "move refused: this Tamo doesn't need moving");
}

TEST(LogDeathTest, ArgumentsThatDoNotFitStopTheProcess) {
  EXPECT_DEATH(static_cast<void>(shownText({LogFormat::refused, {"one"}})),
               "fatal: a log line does not fit its format");
  EXPECT_DEATH(static_cast<void>(shownText({LogFormat::receiptFailed, {"one"}})),
               "fatal: a log line does not fit its format");
  EXPECT_DEATH(static_cast<void>(shownText({LogFormat::hardStop, {"12", "text"}})),
               "fatal: a log argument does not fit its format");
  EXPECT_DEATH(static_cast<void>(shownText({LogFormat::refused, {std::int64_t{1}, "why"}})),
               "fatal: a log argument does not fit its format");
  EXPECT_DEATH(static_cast<void>(shownText({LogFormat::refused, {true, "why"}})),
               "fatal: a log argument does not fit its format");
}

}  // namespace
}  // namespace tamo::platform
