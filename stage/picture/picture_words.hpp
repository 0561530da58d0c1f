#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "stage/picture/picture.hpp"

/// What both drawings call things, and how they break texts into lines. Pure.
namespace tamo::stage {

[[nodiscard]] std::string_view nameOf(RowKind kind);
[[nodiscard]] std::string_view nameOf(SpanKind kind);
[[nodiscard]] std::string_view nameOf(MarkKind kind);

/// How many columns a UTF-8 text takes: one a character.
[[nodiscard]] std::size_t columnsOf(std::string_view text);

/// The front of a text that takes so many columns at most, with "…" for what is left out.
[[nodiscard]] std::string cutTo(std::string_view text, std::size_t columns);

/// The text in lines of so many columns at most, broken at blanks where that is possible. At least one line; `columns`
/// is at least 1.
[[nodiscard]] std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

}  // namespace tamo::stage
