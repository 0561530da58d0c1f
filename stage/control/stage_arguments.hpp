#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// The words after a subcommand of tamo-stage, taken one by one. What is taken is gone; finish() refuses what
/// is left, so that nothing misspelt passes in silence. Pure.
namespace tamo::stage {

/// A wrong use of the command: one line for a person.
class UsageError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class StageArguments {
 public:
  explicit StageArguments(std::vector<std::string> words) : words_(std::move(words)) {}

  /// The next word. Raises UsageError, naming what is missing, when there is none.
  [[nodiscard]] std::string take(std::string_view what);
  /// The next word, when there is one.
  [[nodiscard]] std::optional<std::string> takeAny();
  /// The next word, which must be one of these: anything else raises UsageError.
  [[nodiscard]] std::string takeOneOf(std::string_view what, const std::vector<std::string>& choices);

  /// Whether the option stands anywhere among the words.
  [[nodiscard]] bool takeFlag(std::string_view name);
  /// The word after the option, wherever it stands; absent without the option. Raises UsageError for an
  /// option without its word.
  [[nodiscard]] std::optional<std::string> takeOption(std::string_view name);
  /// The same for an option that must come next, before any word that isn't one.
  [[nodiscard]] std::optional<std::string> takeNextOption(std::string_view name);
  /// Everything after the option, wherever it stands; absent without it.
  [[nodiscard]] std::optional<std::vector<std::string>> takeTail(std::string_view name);

  /// All that is left.
  [[nodiscard]] std::vector<std::string> takeRest();
  void finish() const;

 private:
  [[nodiscard]] std::vector<std::string>::iterator position(std::string_view name);
  [[nodiscard]] std::string takeValue(std::vector<std::string>::iterator option);

  std::vector<std::string> words_;
};

/// A whole number of at least zero. Raises UsageError, naming what it should be.
[[nodiscard]] std::int32_t wholeNumber(const std::string& text, std::string_view what);

}  // namespace tamo::stage
