#include "fuzz/utf8_description.hpp"

#include <algorithm>
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
  for (std::size_t more = 1; bytes.size() + more <= 4; ++more)
    for (const char filling : {'\x80', '\xBF'})
      if (isCharacter(std::string(bytes) + std::string(more, filling))) return true;
  return false;
}

}  // namespace

std::string describedRepair(std::string_view bytes) {
  std::string repaired;
  while (!bytes.empty()) {
    std::size_t size = std::min<std::size_t>(bytes.size(), 4);
    while (size > 1 && !isCharacter(bytes.substr(0, size)) && !beginsCharacter(bytes.substr(0, size)))
      --size;
    const auto part = bytes.substr(0, size);
    repaired += isCharacter(part) ? part : "\uFFFD";
    bytes.remove_prefix(size);
  }
  return repaired;
}

}  // namespace tamo::fuzz
