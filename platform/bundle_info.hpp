#pragma once

#include <optional>
#include <string>

#include "platform/files.hpp"
#include "values/property_list.hpp"

/// What an application bundle says of itself in "Contents/Info.plist", read from the file each time. The
/// bundle services of macOS keep what they read for the life of the process, which is wrong as soon as a
/// bundle is replaced under its path; so this plain reading is used on every backend. Any thread.
namespace tamo::platform {

/// The whole dictionary; absent when the file is missing, unreadable or no dictionary.
[[nodiscard]] std::optional<values::PropertyList> bundleInfo(const FileReader& files,
                                                             const std::string& appPath);

/// The value of a key when it is text; absent in every other case.
[[nodiscard]] std::optional<std::string> bundleText(const FileReader& files, const std::string& appPath,
                                                    const std::string& key);

/// CFBundleIdentifier; absent when the folder is no bundle or declares none.
[[nodiscard]] std::optional<std::string> bundleIdentifier(const FileReader& files,
                                                          const std::string& appPath);

}  // namespace tamo::platform
