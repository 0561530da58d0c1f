#include "platform/bundle_info.hpp"

#include "values/paths.hpp"

namespace tamo::platform {

std::optional<values::PropertyList> bundleInfo(const FileReader& files, const std::string& appPath) {
  const auto bytes = files.readWhole(values::joinedPath(appPath, "Contents/Info.plist"));
  if (!bytes) return std::nullopt;
  auto list = values::readPropertyList(*bytes);
  if (!list || list->dictionary() == nullptr) return std::nullopt;
  return list;
}

/// A value of another kind is not turned into a text: who reads it would compare what nobody wrote.
std::optional<std::string> bundleText(const FileReader& files, const std::string& appPath,
                                      const std::string& key) {
  const auto info = bundleInfo(files, appPath);
  const auto* found = info ? info->entry(key) : nullptr;
  const auto* text = found == nullptr ? nullptr : found->text();
  if (text == nullptr) return std::nullopt;
  return *text;
}

std::optional<std::string> bundleIdentifier(const FileReader& files, const std::string& appPath) {
  return bundleText(files, appPath, "CFBundleIdentifier");
}

}  // namespace tamo::platform
