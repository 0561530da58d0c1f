#include <gtest/gtest.h>
#include <iostream>
#include <string>

#include "exhaustion/print_agreement.hpp"
#include "exhaustion/print_lines.hpp"
#include "hardstop/process_snapshot.hpp"
#include "launch/print_reading.hpp"

/// The three readers of a launchctl print beside their descriptions, over every text of a few telling lines.
namespace tamo::exhaustion {
namespace {

/// A line as it stands in a text, and what a person says that it is.
struct Letter {
  std::string text;
  Line meaning;
};
using Alphabet = std::vector<Letter>;

/// The lines that matter most, for long texts.
const Alphabet fewLines{
    {"gui/501/job = {", {.stripped = "gui/501/job = {", .opens = true, .opensAnything = true}},
    {"}", {.stripped = "}", .closes = true}},
    {"\targuments = {",
     {.stripped = "arguments = {", .opens = true, .opensAnything = true, .beginsArguments = true}},
    {"\tpid = 42", {.stripped = "pid = 42", .namesPid = true, .pid = 42}},
    {"pid = 1", {.stripped = "pid = 1", .namesPid = true}},
    {"\texit timeout = 5", {.stripped = "exit timeout = 5", .namesTimeout = true, .timeout = 5}},
    {"exit timeout = 5s", {.stripped = "exit timeout = 5s", .namesTimeout = true}},
    {"", {}},
    {"\"reqs\" => {", {.stripped = "\"reqs\" => {", .opensQuoted = true, .opensAnything = true}},
};

/// What stands near them.
const Alphabet nearLines{
    {" }\t", {.stripped = "}", .closes = true}},
    {"}\r", {.stripped = "}\r"}},
    {"\xE2\x80\x8B}", {.stripped = "\xE2\x80\x8B}"}},
    {"= {", {.stripped = "= {", .opens = true, .opensAnything = true}},
    {"a = {b", {.stripped = "a = {b"}},
    {"xarguments = {", {.stripped = "xarguments = {", .opens = true, .opensAnything = true}},
    {"pid =", {.stripped = "pid ="}},
    {"pid = ", {.stripped = "pid ="}},
    {"xpid = 9", {.stripped = "xpid = 9"}},
    {"pid = +2147483647\xC2\xA0", {.stripped = "pid = +2147483647", .namesPid = true, .pid = 2147483647}},
    {"pid = 2147483648", {.stripped = "pid = 2147483648", .namesPid = true}},
    {"pid =  7", {.stripped = "pid =  7", .namesPid = true}},
    {"pid = 8 = {", {.stripped = "pid = 8 = {", .opens = true, .opensAnything = true, .namesPid = true}},
    {"exit timeout = -90", {.stripped = "exit timeout = -90", .namesTimeout = true, .timeout = -90}},
    {"exit timeout = ", {.stripped = "exit timeout ="}},
    {"\t\"\" => {\xE3\x80\x80", {.stripped = "\"\" => {", .opensQuoted = true, .opensAnything = true}},
    {"\" => {", {.stripped = "\" => {", .opensQuoted = true, .opensAnything = true}},
    {"a => {", {.stripped = "a => {", .opensAnything = true}},
    {"\"a => {", {.stripped = "\"a => {", .opensAnything = true}},
    {"\"a\" => {\r", {.stripped = "\"a\" => {\r"}},
    {"\"$in\" => [", {.stripped = "\"$in\" => ["}},
    {"0 = \t\t]", {.stripped = "0 = \t\t]"}},
    {"\"b\" => \"{\"", {.stripped = "\"b\" => \"{\""}},
};

Alphabet allLines() {
  auto all = fewLines;
  all.insert(all.end(), nearLines.begin(), nearLines.end());
  return all;
}

/// What the texts came to.
struct Count {
  std::size_t texts = 0;
  std::size_t shortened = 0;
  std::size_t running = 0;
  std::size_t withPid = 0;
  std::size_t withDefinition = 0;
  std::size_t withTimeout = 0;
};

/// The texts of an alphabet, each read as soon as it stands.
class Texts {
 public:
  explicit Texts(const Alphabet& alphabet) : alphabet_(alphabet) {}

  /// Reads every text of one to `lines` lines. Ends with the first one that a reader and its description read
  /// in two ways.
  Count readAll(std::size_t lines) {
    extend(lines);
    return count_;
  }

 private:
  void extend(std::size_t lines) {
    const auto size = text_.size();
    for (const auto& letter : alphabet_) {
      begin_.push_back(text_.size());
      text_ += letter.text;
      meaning_.push_back(letter.meaning);
      read();
      text_ += '\n';
      if (lines > 1 && !::testing::Test::HasFailure()) extend(lines - 1);
      meaning_.pop_back();
      begin_.pop_back();
      text_.resize(size);
      if (::testing::Test::HasFailure()) return;
    }
  }

  void read() {
    print_.text = text_;
    const auto kept = withoutQuotedBlocks(text_);
    const bool running = jobRunning(print_);
    const auto pid = HardStop::pid(text_);
    const auto definition = LaunchJob::loaded(text_);
    ++count_.texts;
    count_.shortened += kept.size() < text_.size() ? 1U : 0U;
    count_.running += running ? 1U : 0U;
    count_.withPid += pid ? 1U : 0U;
    count_.withDefinition += definition ? 1U : 0U;
    count_.withTimeout += definition && definition->exitTimeout ? 1U : 0U;
    if (kept != described(describedKept(meaning_))) ADD_FAILURE() << "what is left out, of:\n" << text_;
    if (running != describedRunning(meaning_)) ADD_FAILURE() << "a pid line, in:\n" << text_;
    if (pid != describedPid(meaning_)) ADD_FAILURE() << "the pid, in:\n" << text_;
    if (!agree(definition, describedDefinition(meaning_))) ADD_FAILURE() << "the definition, in:\n" << text_;
  }

  /// The lines at these places, each with the line feed behind it, if it has one.
  [[nodiscard]] std::string described(const std::vector<std::size_t>& places) const {
    std::string lines;
    for (const auto place : places)
      lines.append(text_, begin_[place],
                   (place + 1 < begin_.size() ? begin_[place + 1] : text_.size()) - begin_[place]);
    return lines;
  }

  const Alphabet& alphabet_;
  std::string text_;
  /// Where each line of the text begins.
  std::vector<std::size_t> begin_;
  std::vector<Line> meaning_;
  PrintResult print_{.code = 0, .text = ""};
  Count count_;
};

void readAndReport(const Alphabet& alphabet, std::size_t lines) {
  const auto count = Texts(alphabet).readAll(lines);
  std::size_t expected = 0;
  for (std::size_t length = 0; length < lines; ++length)
    expected = (expected + 1) * alphabet.size();
  EXPECT_EQ(count.texts, expected);
  EXPECT_GT(count.shortened, 0U);
  EXPECT_GT(count.running, 0U);
  EXPECT_GT(count.withPid, 0U);
  EXPECT_GT(count.withDefinition, 0U);
  std::cout << "prints: " << count.texts << " texts of " << alphabet.size() << " lines; " << count.running
            << " say running, " << count.withPid << " have a pid, " << count.withDefinition
            << " a definition, " << count.withTimeout << " of those a timeout; " << count.shortened
            << " have a quoted block\n";
}

TEST(PrintExhaustionTest, ReadersAgreeWithTheirDescriptionsOnEveryTextOfFourLines) {
  readAndReport(allLines(), 4);
}

TEST(PrintExhaustionTest, ReadersAgreeWithTheirDescriptionsOnEveryTextOfSixOfTheMainLines) {
  readAndReport(fewLines, 6);
}

/// Half a minute and two minutes: they run only when --gtest_also_run_disabled_tests is given.
TEST(PrintExhaustionTest, DISABLED_ReadersAgreeWithTheirDescriptionsOnEveryTextOfFiveLines) {
  readAndReport(allLines(), 5);
}

TEST(PrintExhaustionTest, DISABLED_ReadersAgreeWithTheirDescriptionsOnEveryTextOfEightOfTheMainLines) {
  readAndReport(fewLines, 8);
}

bool sameMeaning(const Line& left, const Line& right) {
  return left.stripped == right.stripped && left.opens == right.opens && left.closes == right.closes &&
         left.opensQuoted == right.opensQuoted && left.opensAnything == right.opensAnything &&
         left.beginsArguments == right.beginsArguments && left.namesPid == right.namesPid &&
         left.pid == right.pid && left.namesTimeout == right.namesTimeout && left.timeout == right.timeout;
}

/// The lines of any text are told by a function; it has to tell these as a person does.
TEST(PrintExhaustionTest, LinesAreToldAsAPersonTellsThem) {
  for (const auto& letter : allLines()) {
    const auto lines = linesOf(letter.text);
    ASSERT_EQ(lines.size(), 1U) << letter.text;
    EXPECT_TRUE(sameMeaning(lines.front(), letter.meaning)) << letter.text;
  }
}

}  // namespace
}  // namespace tamo::exhaustion
