#import <Foundation/Foundation.h>
#include <utility>

#include "platform/macos/values/cf_values.hpp"
#include "platform/property_list.hpp"
#include "platform/property_list_limits.hpp"

namespace tamo::platform {
namespace {

using macos::Owned;
using macos::textOf;

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
    if (kind == CFDictionaryGetTypeID()) return dictionaryOf((__bridge NSDictionary*)object);
    if (kind == CFArrayGetTypeID()) return arrayOf((__bridge NSArray*)object);
    if (kind == CFBooleanGetTypeID()) return PropertyList{CFEqual(object, kCFBooleanTrue) != 0};
    if (kind == CFNumberGetTypeID()) return numberOf((__bridge NSNumber*)object);
    if (kind == CFStringGetTypeID()) {
      return PropertyList{textOf(static_cast<CFStringRef>(object)).value_or("")};
    }
    return PropertyList{PropertyList::Other()};
  }

  [[nodiscard]] static PropertyList numberOf(NSNumber* number) {
    if (CFNumberIsFloatType((__bridge CFNumberRef)number) != 0) return PropertyList{number.doubleValue};
    // The system's integers reach beyond the signed range on the upper side only.
    if ([number compare:@(INT64_MAX)] == NSOrderedDescending) {
      return PropertyList{static_cast<std::uint64_t>(number.unsignedLongLongValue)};
    }
    return PropertyList{static_cast<std::int64_t>(number.longLongValue)};
  }

  [[nodiscard]] std::optional<PropertyList> arrayOf(NSArray* array) {
    PropertyList::Array items;
    for (id item in array) {
      auto value = valueOf((__bridge CFTypeRef)item);
      if (!value) return std::nullopt;
      items.push_back(std::move(*value));
    }
    return PropertyList{std::move(items)};
  }

  [[nodiscard]] std::optional<PropertyList> dictionaryOf(NSDictionary* dictionary) {
    PropertyList::Dictionary entries;
    for (id key in dictionary) {
      if (![key isKindOfClass:[NSString class]]) return std::nullopt;
      auto value = valueOf((__bridge CFTypeRef)dictionary[key]);
      if (!value) return std::nullopt;
      entries.insert_or_assign(textOf((__bridge CFStringRef)key).value_or(""), std::move(*value));
    }
    return PropertyList{std::move(entries)};
  }

  std::size_t depth_ = 0;
  std::size_t values_ = 0;
};

}  // namespace

std::optional<PropertyList> readPropertyList(std::string_view bytes) {
  @autoreleasepool {
    const auto* start = static_cast<const UInt8*>(static_cast<const void*>(bytes.data()));
    const Owned<CFDataRef> data(CFDataCreate(nullptr, start, static_cast<CFIndex>(bytes.size())));
    if (!data) return std::nullopt;
    const Owned<CFPropertyListRef> list(
        CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
    if (!list) return std::nullopt;
    return Conversion().valueOf(list.get());
  }
}

}  // namespace tamo::platform
