#include "values/unicode.hpp"

#include <cstdlib>
#include <memory>
#include <optional>
#include <utf8proc.h>

#include "values/fatal.hpp"
#include "values/text.hpp"

namespace tamo::values {
namespace {

/// The first code point of a text, and its size in bytes. A byte that begins no character has no code point.
struct Scalar {
  std::optional<utf8proc_int32_t> codePoint;
  std::size_t size;
};

const utf8proc_uint8_t* bytesOf(std::string_view text) {
  return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

Scalar firstScalar(std::string_view text) {
  utf8proc_int32_t codePoint = 0;
  const auto size = utf8proc_iterate(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  if (size < 0) return {std::nullopt, 1};
  return {codePoint, static_cast<std::size_t>(size)};
}

void append(std::string& text, utf8proc_int32_t codePoint) {
  utf8proc_uint8_t bytes[4];
  const auto size = utf8proc_encode_char(codePoint, bytes);
  for (utf8proc_ssize_t at = 0; at < size; ++at)
    text += static_cast<char>(bytes[at]);
}

char lowercasedAscii(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

void appendLowercased(std::string& text, utf8proc_int32_t codePoint) {
  // The one character whose lower case is two; the library maps it to its first, which would lose the dot.
  constexpr utf8proc_int32_t capitalDottedI = 0x130;
  if (codePoint == capitalDottedI) {
    text += "i\u0307";
  } else {
    append(text, utf8proc_tolower(codePoint));
  }
}

}  // namespace

/// Byte by byte where there is no character: a path need not be UTF-8 to be looked at. Nearly every path is ASCII, and
/// is answered without the library's tables, which are larger than all that a process has in memory besides.
std::string lowercased(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    if (isAscii(text.front())) {
      result += lowercasedAscii(text.front());
      text.remove_prefix(1);
      continue;
    }
    const auto scalar = firstScalar(text);
    if (scalar.codePoint) {
      appendLowercased(result, *scalar.codePoint);
    } else {
      result += text.front();
    }
    text.remove_prefix(scalar.size);
  }
  return result;
}

std::string decomposed(std::string_view text) {
  utf8proc_uint8_t* raw = nullptr;
  const auto options = static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_STABLE);
  const auto size = utf8proc_map(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &raw, options);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owned(raw, &std::free);
  // Of a text that is UTF-8 only a lack of memory can be the reason.
  if (size < 0) fatal("a text could not be decomposed");
  return {owned.get(), owned.get() + size};
}

}  // namespace tamo::values
