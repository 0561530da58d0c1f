#include "fuzz/utf8_description.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tamo::fuzz {
namespace {

std::uint32_t byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

/// How many bytes a character of that number takes.
std::size_t sizeOf(std::uint32_t number) {
  if (number < 0x80) return 1;
  if (number < 0x800) return 2;
  return number < 0x10000 ? 3 : 4;
}

/// Whether the bytes are one character and nothing else.
bool isCharacter(std::string_view bytes) {
  if (bytes.empty() || bytes.size() > 4) return false;
  const auto first = byteAt(bytes, 0);
  if (bytes.size() == 1) return first < 0x80;
  // The first byte has as many ones in front as there are bytes, then a zero.
  const auto size = static_cast<std::uint32_t>(bytes.size());
  if (first >> (7 - size) != (1U << (size + 1)) - 2) return false;
  std::uint32_t number = first & ((1U << (7 - size)) - 1);
  for (std::size_t at = 1; at < bytes.size(); ++at) {
    if (byteAt(bytes, at) >> 6U != 2) return false;
    number = number << 6U | (byteAt(bytes, at) & 0x3FU);
  }
  const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
  return number <= 0x10FFFF && !isSurrogate && sizeOf(number) == bytes.size();
}

/// Whether a character begins so. When any bytes complete it, then the lowest or the highest do.
bool beginsCharacter(std::string_view bytes) {
  std::array<char, 4> whole{};
  const std::string_view filled(whole.data(), whole.size());
  for (const char filling : {'\x80', '\xBF'}) {
    whole.fill(filling);
    std::ranges::copy(bytes, whole.begin());
    for (std::size_t size = bytes.size() + 1; size <= whole.size(); ++size)
      if (isCharacter(filled.substr(0, size))) return true;
  }
  return false;
}

/// The longest front that is a character or begins one, or a byte that is neither. Nothing longer begins with a
/// character of one byte.
std::string_view firstPart(std::string_view bytes) {
  if (isCharacter(bytes.substr(0, 1))) return bytes.substr(0, 1);
  auto part = bytes.substr(0, 4);
  while (part.size() > 1 && !isCharacter(part) && !beginsCharacter(part))
    part.remove_suffix(1);
  return part;
}

}  // namespace

std::string describedRepair(std::string_view bytes) {
  std::string repaired;
  while (!bytes.empty()) {
    const auto part = firstPart(bytes);
    repaired += isCharacter(part) ? part : "\uFFFD";
    bytes.remove_prefix(part.size());
  }
  return repaired;
}

}  // namespace tamo::fuzz
