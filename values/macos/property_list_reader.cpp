#include <charconv>
#include <cstdint>
#include <limits>
#include <utility>

#include "values/macos/cf_values.hpp"
#include "values/property_list.hpp"
#include "values/property_list_limits.hpp"

namespace tamo::values {
namespace {

using macos::Owned;
using macos::textOf;

/// Whether the first character of a document's piece is a byte order mark, as it is or as a reference.
bool beginsWithMark(std::string_view piece) {
  if (piece.starts_with("\uFEFF")) return true;
  if (!piece.starts_with("&#")) return false;
  const bool isHexadecimal = piece.substr(2).starts_with('x');
  piece.remove_prefix(isHexadecimal ? 3 : 2);
  std::uint32_t point = 0;
  std::from_chars(piece.data(), piece.data() + piece.size(), point, isHexadecimal ? 16 : 10);
  return point == 0xFEFF;
}

bool isXml(std::string_view list) {
  const auto first = list.find_first_not_of("\uFEFF \t\r\n");
  return first != std::string_view::npos && list[first] == '<';
}

/// The system takes a byte order mark in front of a text of an XML list for none of that text, and an
/// identifier would equal another. So each text that begins with one gets one more, which is the one it takes.
/// A list in UTF-16 stays as it is.
std::string withMarksKept(std::string_view list) {
  std::string kept;
  for (std::size_t at = 0; at < list.size(); ++at) {
    kept += list[at];
    const bool mayEndATag = list[at] == '>' || list[at] == '[';
    if (mayEndATag && beginsWithMark(list.substr(at + 1))) kept += "\uFEFF";
  }
  return kept;
}

Owned<CFPropertyListRef> systemList(std::string_view bytes) {
  const auto* start = static_cast<const UInt8*>(static_cast<const void*>(bytes.data()));
  const Owned<CFDataRef> data(CFDataCreate(nullptr, start, static_cast<CFIndex>(bytes.size())));
  if (!data) return nullptr;
  return Owned<CFPropertyListRef>(
      CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
}

PropertyList numberOf(CFNumberRef number) {
  if (CFNumberIsFloatType(number) != 0) {
    double real = 0;
    CFNumberGetValue(number, kCFNumberDoubleType, &real);
    return PropertyList{real};
  }
  // Of an integer beyond the signed range, which the system has on the upper side only, these are the bits.
  std::int64_t integer = 0;
  CFNumberGetValue(number, kCFNumberSInt64Type, &integer);
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  const Owned<CFNumberRef> limit(CFNumberCreate(nullptr, kCFNumberSInt64Type, &most));
  if (CFNumberCompare(number, limit.get(), nullptr) != kCFCompareGreaterThan) return PropertyList{integer};
  return PropertyList{static_cast<std::uint64_t>(integer)};
}

/// Turns one list of the system's into values. Absent for a dictionary with a key that is no text, and for
/// what would take too much stack or memory: a binary list can name one array in another again and again.
class Conversion {
 public:
  [[nodiscard]] std::optional<PropertyList> valueOf(CFTypeRef object) {
    if (depth_ >= deepestNesting || ++values_ > mostValues) return std::nullopt;
    ++depth_;
    auto value = valueByKind(object);
    --depth_;
    return value;
  }

 private:
  [[nodiscard]] std::optional<PropertyList> valueByKind(CFTypeRef object) {
    const auto kind = CFGetTypeID(object);
    if (kind == CFDictionaryGetTypeID()) return dictionaryOf(static_cast<CFDictionaryRef>(object));
    if (kind == CFArrayGetTypeID()) return arrayOf(static_cast<CFArrayRef>(object));
    if (kind == CFBooleanGetTypeID()) return PropertyList{CFEqual(object, kCFBooleanTrue) != 0};
    if (kind == CFNumberGetTypeID()) return numberOf(static_cast<CFNumberRef>(object));
    if (kind == CFStringGetTypeID()) {
      return PropertyList{textOf(static_cast<CFStringRef>(object)).value_or("")};
    }
    return PropertyList{PropertyList::Other()};
  }

  [[nodiscard]] std::optional<PropertyList> arrayOf(CFArrayRef array) {
    PropertyList::Array items;
    for (CFIndex at = 0; at < CFArrayGetCount(array); ++at) {
      auto value = valueOf(CFArrayGetValueAtIndex(array, at));
      if (!value) return std::nullopt;
      items.push_back(std::move(*value));
    }
    return PropertyList{std::move(items)};
  }

  [[nodiscard]] std::optional<PropertyList> dictionaryOf(CFDictionaryRef dictionary) {
    const auto size = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(size);
    std::vector<const void*> objects(size);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), objects.data());
    PropertyList::Dictionary entries;
    for (std::size_t at = 0; at < size; ++at) {
      if (CFGetTypeID(keys[at]) != CFStringGetTypeID()) return std::nullopt;
      auto value = valueOf(objects[at]);
      if (!value) return std::nullopt;
      entries.insert_or_assign(textOf(static_cast<CFStringRef>(keys[at])).value_or(""), std::move(*value));
    }
    return PropertyList{std::move(entries)};
  }

  std::size_t depth_ = 0;
  std::size_t values_ = 0;
};

}  // namespace

std::optional<PropertyList> readPropertyList(std::string_view bytes) {
  const auto list = isXml(bytes) ? systemList(withMarksKept(bytes)) : systemList(bytes);
  if (!list) return std::nullopt;
  return Conversion().valueOf(list.get());
}

}  // namespace tamo::values
