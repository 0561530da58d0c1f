#include "values/escaped_text.hpp"

#include <array>
#include <charconv>
#include <cstdio>
#include <optional>

namespace tamo::values {
namespace {

/// What a terminal would obey instead of showing it. Compared as unsigned, because a byte beyond ASCII is part of a
/// character, and as a char it would lie below the blank.
bool isControl(char character) {
  const auto code = static_cast<unsigned char>(character);
  return code < 0x20 || code == 0x7f;
}

std::string hexadecimal(char character) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "x%02x", static_cast<unsigned char>(character));
  return text.data();
}

std::string escapedCharacter(char character, std::string_view more) {
  if (character == '\t') return "\\t";
  if (character == '\n') return "\\n";
  if (isControl(character)) return "\\" + hexadecimal(character);
  const bool marked = character == '\\' || more.contains(character);
  return std::string(marked ? "\\" : "") + character;
}

/// The byte that the two digits behind "x" name; absent for anything else. Two digits or none, so that the text behind
/// an escape is never taken for a part of it.
std::optional<char> namedByte(std::string_view name) {
  unsigned char code = 0;
  if (name.size() < 3 || name[0] != 'x') return std::nullopt;
  const auto read = std::from_chars(name.data() + 1, name.data() + 3, code, 16);
  return read.ptr == name.data() + 3 ? std::optional(static_cast<char>(code)) : std::nullopt;
}

/// Takes what stands behind a backslash off the front.
char takeEscaped(std::string_view& rest) {
  const char letter = rest.front();
  const auto byte = namedByte(rest);
  rest.remove_prefix(byte ? 3 : 1);
  if (byte) return *byte;
  if (letter == 't') return '\t';
  return letter == 'n' ? '\n' : letter;
}

}  // namespace

/// A line stays a line and a column a column, whatever the text holds.
std::string escaped(std::string_view text, std::string_view more) {
  std::string result;
  for (const char character : text)
    result += escapedCharacter(character, more);
  return result;
}

/// By the runs between the backslashes, because a log may have a gigabyte and hardly one of them.
std::string unescaped(std::string_view text) {
  std::string plain;
  for (auto at = text.find('\\'); at != std::string_view::npos && at + 1 < text.size();
       at = text.find('\\')) {
    plain.append(text.substr(0, at));
    text.remove_prefix(at + 1);
    plain += takeEscaped(text);
  }
  return plain.append(text);
}

}  // namespace tamo::values
