#include "values/macos/cf_values.hpp"

#include <cstdint>
#include <vector>

#include "values/text.hpp"

namespace tamo::values::macos {
namespace {

/// Takes the first code point off a text that is UTF-8 and not empty.
std::uint32_t takeCodePoint(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  std::uint32_t point = size == 1 ? lead : lead & (0x7FU >> size);
  for (const char follower : text.substr(1, size - 1))
    point = point << 6U | (static_cast<unsigned char>(follower) & 0x3FU);
  text.remove_prefix(size);
  return point;
}

/// Beyond the basic plane a character is two units.
std::vector<UniChar> utf16(std::string_view text) {
  std::vector<UniChar> units;
  while (!text.empty()) {
    const auto point = takeCodePoint(text);
    const auto beyond = point - 0x10000;
    if (point >= 0x10000) units.push_back(static_cast<UniChar>(0xD800 + (beyond >> 10U)));
    units.push_back(static_cast<UniChar>(point < 0x10000 ? point : 0xDC00 + (beyond & 0x3FFU)));
  }
  return units;
}

}  // namespace

Owned<CFStringRef> cfText(std::string_view text) {
  // The system's own reading of UTF-8 loses a byte order mark in front and takes a byte A9 for a character.
  if (!isUtf8(text)) return nullptr;
  const auto units = utf16(text);
  return Owned<CFStringRef>(
      CFStringCreateWithCharacters(nullptr, units.data(), static_cast<CFIndex>(units.size())));
}

std::optional<std::string> textOf(CFStringRef string) {
  if (string == nullptr) return std::nullopt;
  const auto whole = CFRangeMake(0, CFStringGetLength(string));
  // Asked twice, for the size and for the bytes.
  const auto write = [&](UInt8* bytes, CFIndex room) {
    CFIndex size = 0;
    CFStringGetBytes(string, whole, kCFStringEncodingUTF8, '?', /*isExternal*/ false, bytes, room, &size);
    return size;
  };
  std::string text(static_cast<std::size_t>(write(nullptr, 0)), '\0');
  write(static_cast<UInt8*>(static_cast<void*>(text.data())), static_cast<CFIndex>(text.size()));
  return text;
}

Owned<CFURLRef> cfFileURL(std::string_view path) {
  const auto text = cfText(path);
  if (!text || path.empty()) return nullptr;
  return Owned<CFURLRef>(
      CFURLCreateWithFileSystemPath(nullptr, text.get(), kCFURLPOSIXPathStyle, /*isDirectory*/ false));
}

std::optional<std::string> pathOf(CFURLRef url) {
  if (url == nullptr) return std::nullopt;
  const Owned<CFURLRef> absolute(CFURLCopyAbsoluteURL(url));
  if (!absolute) return std::nullopt;
  const Owned<CFStringRef> path(CFURLCopyFileSystemPath(absolute.get(), kCFURLPOSIXPathStyle));
  return textOf(path.get());
}

}  // namespace tamo::values::macos
