#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

/// Core Foundation's objects and the platform's values. Plain C++; any thread.
namespace tamo::values::macos {

struct ReleaseCF {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns one reference, or none. For what functions named Create or Copy give.
template <class Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, ReleaseCF>;

/// A string of the system, every character of the text in it. Null when `text` is not UTF-8.
[[nodiscard]] Owned<CFStringRef> cfText(std::string_view text);

/// The UTF-8 of a string; absent for null. Half a surrogate pair, which no UTF-8 can hold, becomes a "?".
[[nodiscard]] std::optional<std::string> textOf(CFStringRef string);

/// A URL of the file system. Null when `path` is not UTF-8 or is empty. Whether it is a folder is not looked
/// at.
[[nodiscard]] Owned<CFURLRef> cfFileURL(std::string_view path);

/// The path of a URL, without a "/" at its end; absent for null and for what has no path.
[[nodiscard]] std::optional<std::string> pathOf(CFURLRef url);

}  // namespace tamo::values::macos
