#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text for a terminal. Pure.
namespace tamo::support {

/// The narrowest and the widest that text is set in.
inline constexpr std::size_t narrowest = 40;
inline constexpr std::size_t widest = 100;

/// The text with whatever could act on a terminal made visible: control characters and marks that turn the direction of
/// writing as "\x1B" or "\u202E", bytes that are no UTF-8 as U+FFFD.
[[nodiscard]] std::string visible(std::string_view text);

/// How a paragraph is set: what stands in front of its first line and of the others.
struct Margins {
  std::string_view first{};
  std::string_view others{};
};

/// The text, made visible, in lines of at most `width` characters, each with a line break. A word that is longer than a
/// line is cut in pieces. Characters that take two columns count as one.
[[nodiscard]] std::string paragraph(std::string_view text, const Margins& margins, std::size_t width);

/// The same, cut only where a line is full: for what has to stay as it is.
[[nodiscard]] std::string verbatim(std::string_view text, const Margins& margins, std::size_t width);

}  // namespace tamo::support
