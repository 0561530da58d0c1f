#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// docs/troubleshooting.md, as it was when the program was built. Pure.
namespace tamo::support {

/// All of the page, in Markdown.
[[nodiscard]] std::string_view troubleshootingPage();

/// What stands under a heading of the second level, up to the next; `name` is the heading without "## ". Absent where
/// the page has no such heading.
[[nodiscard]] std::optional<std::string_view> section(std::string_view page, std::string_view name);

/// A section set for reading in a terminal: without the marks of Markdown that say nothing there, the rows of a table as
/// lines, commands in lines of their own. `margin` stands in front of each line.
[[nodiscard]] std::string typeset(std::string_view markdown, std::string_view margin, std::size_t width);

}  // namespace tamo::support
