#include "platform/unicode.hpp"

#include <algorithm>
#include <numeric>
#include <vector>

#include "platform/fatal.hpp"
#include "platform/macos/values/cf_values.hpp"
#include "platform/text.hpp"

namespace tamo::platform {
namespace {

using macos::cfText;
using macos::Owned;
using macos::textOf;

/// Hands `onText` each part of a text that is UTF-8, and `onByte` each byte between them.
template <class OnText, class OnByte>
void eachPart(std::string_view text, const OnText& onText, const OnByte& onByte) {
  while (!text.empty()) {
    const auto part = utf8Prefix(text);
    if (!part.empty()) onText(part);
    text.remove_prefix(part.size());
    if (text.empty()) return;
    onByte(text.front());
    text.remove_prefix(1);
  }
}

/// A string of the system's that can be changed. `text` is UTF-8.
Owned<CFMutableStringRef> changeable(std::string_view text) {
  const auto fixed = cfText(text);
  auto copy = fixed ? CFStringCreateMutableCopy(nullptr, 0, fixed.get()) : nullptr;
  if (copy == nullptr) fatal("a text could not be handed to the system");
  return Owned<CFMutableStringRef>(copy);
}

std::string decomposed(std::string_view text) {
  const auto string = changeable(text);
  CFStringNormalize(string.get(), kCFStringNormalizationFormD);
  return textOf(string.get()).value_or("");
}

/// Where the character that begins at `start` ends. The system counts a carriage return and a line feed as
/// two; a person sees one line end.
CFIndex endOfCharacter(CFStringRef string, CFIndex start) {
  const auto range = CFStringGetRangeOfComposedCharactersAtIndex(string, start);
  auto end = range.location + range.length;
  if (end <= start) fatal("a character without an end");
  const bool isLineEnd = end < CFStringGetLength(string) &&
                         CFStringGetCharacterAtIndex(string, end - 1) == '\r' &&
                         CFStringGetCharacterAtIndex(string, end) == '\n';
  return isLineEnd ? end + 1 : end;
}

std::size_t utf8Size(CFStringRef string, CFRange range) {
  CFIndex size = 0;
  CFStringGetBytes(string, range, kCFStringEncodingUTF8, 0, /*isExternal*/ false, nullptr, 0, &size);
  return static_cast<std::size_t>(size);
}

/// The sizes in bytes of the characters of a text, which together are the size of the text.
std::vector<std::size_t> characterSizes(std::string_view text) {
  std::vector<std::size_t> sizes;
  const auto onText = [&sizes](std::string_view part) {
    const auto string = changeable(part);
    const auto length = CFStringGetLength(string.get());
    for (CFIndex start = 0; start < length;) {
      const auto end = endOfCharacter(string.get(), start);
      sizes.push_back(utf8Size(string.get(), CFRangeMake(start, end - start)));
      start = end;
    }
  };
  eachPart(text, onText, [&sizes](char /*byte*/) { sizes.push_back(1); });
  return sizes;
}

}  // namespace

std::string lowercased(std::string_view text) {
  std::string result;
  const auto onText = [&result](std::string_view part) {
    const auto string = changeable(part);
    CFStringLowercase(string.get(), /*locale*/ nullptr);
    result += textOf(string.get()).value_or("");
  };
  eachPart(text, onText, [&result](char byte) { result += byte; });
  return result;
}

bool canonicallyEqual(std::string_view left, std::string_view right) {
  if (left == right) return true;
  if (!isUtf8(left) || !isUtf8(right)) return false;
  return decomposed(left) == decomposed(right);
}

std::size_t characterCount(std::string_view text) {
  return characterSizes(text).size();
}

std::string_view droppingCharacters(std::string_view text, std::size_t count) {
  const auto sizes = characterSizes(text);
  const auto dropped = sizes.begin() + static_cast<std::ptrdiff_t>(std::min(count, sizes.size()));
  return text.substr(std::accumulate(sizes.begin(), dropped, std::size_t{0}));
}

}  // namespace tamo::platform
