#pragma once

#include <string>

#include "contract/binary_list_builder.hpp"

/// Info.plist files as tests of the move lay them.
namespace tamo {

/// An XML list with these entries in its dictionary.
inline std::string infoWith(const std::string& entries) {
  return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
}

inline std::string identifierEntry(const std::string& identifier) {
  return "<key>CFBundleIdentifier</key><string>" + identifier + "</string>";
}

inline std::string versionEntry(const std::string& version) {
  return "<key>CFBundleVersion</key><string>" + version + "</string>";
}

/// The same two entries as a build writes them for a release: in the binary form. The texts are ASCII.
inline std::string binaryInfo(const std::string& identifier, const std::string& version) {
  const auto text = [](const std::string& characters) {
    return std::string("\x5F\x10") + static_cast<char>(characters.size()) + characters;
  };
  return BinaryListBuilder()
      .addDictionary("\x01\x02", "\x03\x04")
      .add(text("CFBundleIdentifier"))
      .add(text("CFBundleVersion"))
      .add(text(identifier))
      .add(text(version))
      .bytes();
}

}  // namespace tamo
