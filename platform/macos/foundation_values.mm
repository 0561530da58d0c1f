#include "platform/macos/foundation_values.hpp"

#include "values/macos/cf_values.hpp"

namespace tamo::macos {

NSString* foundationText(std::string_view text) {
  return CFBridgingRelease(values::macos::cfText(text).release());
}

/// An empty path would stand for the current directory.
NSURL* fileURL(std::string_view path) {
  NSString* text = foundationText(path);
  return text.length == 0 ? nil : [NSURL fileURLWithPath:text];
}

std::optional<std::string> textOf(NSString* string) {
  return values::macos::textOf((__bridge CFStringRef)string);
}

std::optional<std::string> pathOf(NSURL* url) {
  return textOf(url.path);
}

/// Copied out of the object, which belongs to an autorelease pool of the thread that got it.
std::optional<platform::ErrorReport> reportOf(NSError* error) {
  if (error == nil) return std::nullopt;
  return platform::ErrorReport{
      .domain = textOf(error.domain), .code = error.code, .description = textOf(error.localizedDescription)};
}

std::optional<platform::Error> failureOf(NSError* error) {
  if (error == nil) return std::nullopt;
  return platform::errorOf(reportOf(error));
}

}  // namespace tamo::macos
