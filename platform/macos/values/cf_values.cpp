#include "platform/macos/values/cf_values.hpp"

namespace tamo::macos {

Owned<CFStringRef> cfText(std::string_view text) {
  const auto* bytes = static_cast<const UInt8*>(static_cast<const void*>(text.data()));
  return Owned<CFStringRef>(CFStringCreateWithBytes(nullptr, bytes, static_cast<CFIndex>(text.size()),
                                                    kCFStringEncodingUTF8, /*isExternal*/ false));
}

std::optional<std::string> textOf(CFStringRef string) {
  if (string == nullptr) return std::nullopt;
  const auto whole = CFRangeMake(0, CFStringGetLength(string));
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

}  // namespace tamo::macos
