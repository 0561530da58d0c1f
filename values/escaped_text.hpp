#pragma once

#include <string>
#include <string_view>

/// A text within a line of a log whose columns are separated by tabs, as a stage writes it. Pure functions, any thread.
namespace tamo::values {

/// `text` with a backslash before each of "\", tab and line break (as "\\", "\t", "\n") and before each
/// character of `more`; another control character, which a terminal would obey, is its number ("\x1b").
[[nodiscard]] std::string escaped(std::string_view text, std::string_view more = {});

/// What was escaped, as it was; what is no escape behind a backslash stands for itself, and so does a backslash at the
/// end.
[[nodiscard]] std::string unescaped(std::string_view text);

}  // namespace tamo::values
