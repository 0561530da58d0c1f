#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Text rules that are the same on every backend. Pure functions, any thread.
namespace tamo::values {

/// The same as `trimmed`, for a text that begins or ends with a character beyond ASCII.
[[nodiscard]] std::string_view trimmedOfWideSpaces(std::string_view text);

[[nodiscard]] constexpr bool isBlank(char character) {
  return character == ' ' || character == '\t';
}
[[nodiscard]] constexpr bool isAscii(char character) {
  return static_cast<unsigned char>(character) < 0x80;
}

/// `text` without the spaces and tabs at both ends: the tab and Unicode's space separators (category Zs).
/// Line breaks stay, a carriage return among them. Every line of every print passes here, and most begin and end with a
/// character of ASCII.
[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  if (text.empty() || (isAscii(text.front()) && isAscii(text.back()))) return text;
  return trimmedOfWideSpaces(text);
}

/// `text` without every leading and trailing `character`.
[[nodiscard]] std::string_view trimmed(std::string_view text, char character);

/// Takes the next line off the front of `rest`, without its "\n", and leaves `rest` absent after the last
/// one. `rest` is present. A text that ends in "\n" has an empty last line. No other character ends a line.
[[nodiscard]] inline std::string_view takeLine(std::optional<std::string_view>& rest) {
  const auto text = rest.value_or("");
  const auto end = text.find('\n');
  if (end == std::string_view::npos) {
    rest.reset();
    return text;
  }
  rest = text.substr(end + 1);
  return text.substr(0, end);
}

/// A decimal integer: an optional single "+" or "-", then one or more digits 0-9 and nothing else. Absent
/// otherwise, and when the value is out of range.
[[nodiscard]] std::optional<std::int64_t> decimalInt64(std::string_view text);
[[nodiscard]] std::optional<std::int32_t> decimalInt32(std::string_view text);

/// The longest front part of `bytes` that is well-formed UTF-8: all of it, or what stands before the first
/// byte that begins no character.
[[nodiscard]] std::string_view utf8Prefix(std::string_view bytes);

/// Whether `bytes` are well-formed UTF-8 throughout.
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// `bytes` as UTF-8, with U+FFFD in place of each maximal invalid part: a character cut off at the end
/// becomes one.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

}  // namespace tamo::values
