#include "stage/control/stage_arguments.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include "stage/common/words.hpp"
#include "values/text.hpp"

namespace tamo::stage {

std::string StageArguments::take(std::string_view what) {
  auto word = takeAny();
  if (!word) throw UsageError("missing " + std::string(what));
  return *std::move(word);
}

std::optional<std::string> StageArguments::takeAny() {
  if (words_.empty()) return std::nullopt;
  auto word = std::move(words_.front());
  words_.erase(words_.begin());
  return word;
}

/// The choices are part of the message: who mistyped one needs no other page.
std::string StageArguments::takeOneOf(std::string_view what, const std::vector<std::string>& choices) {
  auto word = take(what);
  if (std::ranges::find(choices, word) != choices.end()) return word;
  throw UsageError("\"" + word + "\" is no " + std::string(what) + ": " + joinedWords(choices));
}

bool StageArguments::takeFlag(std::string_view name) {
  const auto found = position(name);
  if (found == words_.end()) return false;
  words_.erase(found);
  return true;
}

std::optional<std::string> StageArguments::takeOption(std::string_view name) {
  const auto found = position(name);
  if (found == words_.end()) return std::nullopt;
  return takeValue(found);
}

/// Only where it stands in front: what follows may be the arguments of another program.
std::optional<std::string> StageArguments::takeNextOption(std::string_view name) {
  if (words_.empty() || words_.front() != name) return std::nullopt;
  return takeValue(words_.begin());
}

/// What stands behind may look like any option of this command and is none.
std::optional<std::vector<std::string>> StageArguments::takeTail(std::string_view name) {
  const auto found = position(name);
  if (found == words_.end()) return std::nullopt;
  std::vector<std::string> tail(found + 1, words_.end());
  words_.erase(found, words_.end());
  return tail;
}

std::vector<std::string> StageArguments::takeRest() {
  return std::exchange(words_, {});
}

/// A word that is left over is a slip that would otherwise be obeyed in silence.
void StageArguments::finish() const {
  if (!words_.empty()) throw UsageError("\"" + words_.front() + "\" is not understood here");
}

std::vector<std::string>::iterator StageArguments::position(std::string_view name) {
  return std::ranges::find(words_, name);
}

std::string StageArguments::takeValue(std::vector<std::string>::iterator option) {
  const auto after = std::next(option);
  if (after == words_.end()) throw UsageError(*option + " needs a word after it");
  auto value = std::move(*after);
  words_.erase(option, std::next(after));
  return value;
}

std::int32_t wholeNumber(const std::string& text, std::string_view what) {
  const auto number = values::decimalInt32(text);
  if (!number || *number < 0) throw UsageError("\"" + text + "\" is no " + std::string(what));
  return *number;
}

}  // namespace tamo::stage
