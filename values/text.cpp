#include "values/text.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace tamo::values {
namespace {

/// The space separators beyond ASCII, in UTF-8. U+200B is none of them today, although older tables list it.
constexpr auto wideSpaces = std::to_array<std::string_view>(
    {"\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007",
     "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"});

/// How long the wide space is that fits, which is 0 when none does.
template <class Fits>
std::size_t sizeOfWideSpace(Fits fits) {
  const auto* found = std::ranges::find_if(wideSpaces, fits);
  return found == wideSpaces.end() ? 0 : found->size();
}

std::size_t blankAtFront(std::string_view text) {
  if (isAscii(text.front())) return isBlank(text.front()) ? 1 : 0;
  return sizeOfWideSpace([text](std::string_view space) { return text.starts_with(space); });
}

/// By whole spaces from this side as well: the last byte of a wide space is also the last byte of other characters.
std::size_t blankAtBack(std::string_view text) {
  if (isAscii(text.back())) return isBlank(text.back()) ? 1 : 0;
  return sizeOfWideSpace([text](std::string_view space) { return text.ends_with(space); });
}

template <class Integer>
std::optional<Integer> decimal(std::string_view text) {
  // The library reads a minus and no plus. Behind a plus, a minus would be a second sign.
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  Integer value{};
  const auto* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return value;
}

/// How the bytes after a lead byte must look: how many there are, and the range of the first of them, which
/// is what keeps out overlong forms, surrogates and values above U+10FFFF.
struct Sequence {
  std::size_t followers;
  unsigned char low;
  unsigned char high;
};

/// As Unicode's table of well-formed sequences has them. C0, C1 and whatever is above F4 begin none: they could only
/// spell a character at greater length than it needs, or one that doesn't exist.
std::optional<Sequence> sequenceOf(unsigned char lead) {
  if (lead < 0x80) return Sequence{};
  if (lead >= 0xC2 && lead <= 0xDF) return Sequence{1, 0x80, 0xBF};
  if (lead == 0xE0) return Sequence{2, 0xA0, 0xBF};
  if (lead == 0xED) return Sequence{2, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return Sequence{2, 0x80, 0xBF};
  if (lead == 0xF0) return Sequence{3, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return Sequence{3, 0x80, 0xBF};
  if (lead == 0xF4) return Sequence{3, 0x80, 0x8F};
  return std::nullopt;
}

/// The first part of a text that is one character, or the longest piece of one. How long a piece is decides how many
/// characters take its place: one for a character that is cut off, and not one for each of its bytes.
struct Part {
  std::size_t size;
  bool valid;
};

Part firstPart(std::string_view bytes) {
  const auto sequence = sequenceOf(static_cast<unsigned char>(bytes.front()));
  if (!sequence) return {1, false};
  auto low = sequence->low;
  auto high = sequence->high;
  for (std::size_t follower = 1; follower <= sequence->followers; ++follower) {
    // A byte that is missing is in nobody's range.
    const auto byte = follower < bytes.size() ? static_cast<unsigned char>(bytes[follower]) : 0;
    if (byte < low || byte > high) return {follower, false};
    // Only the first follower has a range of its own.
    low = 0x80;
    high = 0xBF;
  }
  return {sequence->followers + 1, true};
}

}  // namespace

std::string_view trimmedOfWideSpaces(std::string_view text) {
  while (!text.empty()) {
    const auto size = blankAtFront(text);
    if (size == 0) break;
    text.remove_prefix(size);
  }
  while (!text.empty()) {
    const auto size = blankAtBack(text);
    if (size == 0) break;
    text.remove_suffix(size);
  }
  return text;
}

std::string_view trimmed(std::string_view text, char character) {
  const auto first = text.find_first_not_of(character);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(character) - first + 1);
}

std::optional<std::int64_t> decimalInt64(std::string_view text) {
  return decimal<std::int64_t>(text);
}
std::optional<std::int32_t> decimalInt32(std::string_view text) {
  return decimal<std::int32_t>(text);
}

std::string_view utf8Prefix(std::string_view bytes) {
  std::size_t size = 0;
  while (size < bytes.size()) {
    const auto part = firstPart(bytes.substr(size));
    if (!part.valid) break;
    size += part.size;
  }
  return bytes.substr(0, size);
}

/// Strict, as a Mac reads a file as a text: one wrong byte, and there is none.
bool isUtf8(std::string_view bytes) {
  return utf8Prefix(bytes).size() == bytes.size();
}

std::string repairedUtf8(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto part = firstPart(bytes);
    result += part.valid ? bytes.substr(0, part.size) : "\uFFFD";
    bytes.remove_prefix(part.size);
  }
  return result;
}

}  // namespace tamo::values
