#include "values/json_text.hpp"

namespace tamo::values {
namespace {

/// The letter after the backslash; 0 for a character that has no short escape.
char shortEscape(char character) {
  switch (character) {
    case '"':
    case '\\':
    case '/':
      return character;
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    default:
      return 0;
  }
}

/// As the Mac's own serialiser writes: a "/" is escaped, and what lies beyond ASCII stands as it is. The character 7F
/// stands as it is too, because JSON asks for an escape below the blank alone.
void append(std::string& json, char character) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(character);
  if (const auto letter = shortEscape(character); letter != 0) {
    json += '\\';
    json += letter;
  } else if (byte < 0x20) {
    json += "\\u00";
    json += digits[byte / 16];
    json += digits[byte % 16];
  } else {
    json += character;
  }
}

}  // namespace

std::string jsonString(std::string_view text) {
  std::string json = "\"";
  for (const char character : text)
    append(json, character);
  return json + '"';
}

}  // namespace tamo::values
