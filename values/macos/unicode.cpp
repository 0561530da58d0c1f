#include "values/unicode.hpp"

#include "values/fatal.hpp"
#include "values/macos/cf_values.hpp"
#include "values/text.hpp"

namespace tamo::values {
namespace {

using macos::cfText;
using macos::Owned;
using macos::textOf;

/// A string of the system's that can be changed. `text` is UTF-8.
Owned<CFMutableStringRef> changeable(std::string_view text) {
  const auto fixed = cfText(text);
  auto copy = fixed ? CFStringCreateMutableCopy(nullptr, 0, fixed.get()) : nullptr;
  // Of a text that is UTF-8 only a lack of memory can be the reason.
  if (copy == nullptr) fatal("a text could not be handed to the system");
  return Owned<CFMutableStringRef>(copy);
}

/// A capital sigma is taken for the common small one beforehand: the system would look at what stands around
/// it. `text` is UTF-8.
std::string lowercasedText(std::string text) {
  constexpr std::string_view capitalSigma = "\u03A3";
  for (auto at = text.find(capitalSigma); at != std::string::npos; at = text.find(capitalSigma, at))
    text.replace(at, capitalSigma.size(), "\u03C3");
  const auto string = changeable(text);
  CFStringLowercase(string.get(), /*locale*/ nullptr);
  return textOf(string.get()).value_or("");
}

/// `text` is UTF-8.
std::string normalised(std::string_view text) {
  const auto string = changeable(text);
  CFStringNormalize(string.get(), kCFStringNormalizationFormD);
  return textOf(string.get()).value_or("");
}

std::string_view firstCharacter(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80)
    ++size;
  return text.substr(0, size);
}

}  // namespace

std::string lowercased(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const auto part = utf8Prefix(text);
    result += part.empty() ? std::string(text.substr(0, 1)) : lowercasedText(std::string(part));
    text.remove_prefix(part.empty() ? 1 : part.size());
  }
  return result;
}

/// The system does not sort the parts of a mark such as U+0F73 into the marks beside it, and loses marks with
/// parts in a long row of them. So each character is taken apart by itself, and what comes of it is sorted.
std::string decomposed(std::string_view text) {
  std::string parts;
  while (!text.empty()) {
    const auto character = firstCharacter(text);
    parts += character.size() == 1 ? std::string(character) : normalised(character);
    text.remove_prefix(character.size());
  }
  return normalised(parts);
}

}  // namespace tamo::values
