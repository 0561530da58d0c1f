#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The three readings of a launchctl print a second time, and what is left out of one before, as descriptions
/// of what is meant: they know what each line is and look at the whole print at once, where the readers go
/// through a text with a state. They are slow and simple on purpose.
namespace tamo::exhaustion {

/// What a line of a print is. A line can be several of these at once.
struct Line {
  /// The line without blanks at its ends.
  std::string_view stripped = {};
  /// It ends in "= {".
  bool opens = false;
  /// It is nothing but "}".
  bool closes = false;
  /// It begins with a double quote and ends in `" => {`.
  bool opensQuoted = false;
  /// It ends in "{".
  bool opensAnything = false;
  /// It is nothing but "arguments = {".
  bool beginsArguments = false;
  /// It begins with "pid = ".
  bool namesPid = false;
  /// The number behind that, when it is one that a process of a job can have.
  std::optional<std::int32_t> pid = std::nullopt;
  /// It begins with "exit timeout = ".
  bool namesTimeout = false;
  /// The number behind that, when it is one.
  std::optional<std::int64_t> timeout = std::nullopt;
};
using Print = std::span<const Line>;

/// The lines that remain without the quoted blocks, by their places in the print.
[[nodiscard]] std::vector<std::size_t> describedKept(Print print);

[[nodiscard]] bool describedRunning(Print print);
[[nodiscard]] std::optional<std::int32_t> describedPid(Print print);

struct DescribedDefinition {
  std::vector<std::string_view> arguments = {};
  std::optional<std::int64_t> exitTimeout = std::nullopt;
};
[[nodiscard]] std::optional<DescribedDefinition> describedDefinition(Print print);

}  // namespace tamo::exhaustion
