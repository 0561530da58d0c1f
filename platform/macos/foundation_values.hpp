#pragma once

#import <Foundation/Foundation.h>
#include <optional>
#include <string>
#include <string_view>

#include "platform/error_report.hpp"

/// Foundation's objects and the platform's values. For Objective-C++ sources; any thread.
namespace tamo::macos {

/// nil when `text` is not UTF-8.
[[nodiscard]] NSString* _Nullable foundationText(std::string_view text);

/// A URL of the file system for an absolute path; nil when that is not UTF-8 or is empty.
[[nodiscard]] NSURL* _Nullable fileURL(std::string_view path);

/// Absent for nil.
[[nodiscard]] std::optional<std::string> textOf(NSString* _Nullable string);
[[nodiscard]] std::optional<std::string> pathOf(NSURL* _Nullable url);
[[nodiscard]] std::optional<platform::ErrorReport> reportOf(NSError* _Nullable error);

/// What a completion handler tells: nil is success.
[[nodiscard]] std::optional<platform::Error> failureOf(NSError* _Nullable error);

}  // namespace tamo::macos
