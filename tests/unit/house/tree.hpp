#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

/// The tree that was built, as texts.
namespace tamo {

inline const std::filesystem::path root = TAMO_SOURCE_DIR;

/// The bytes of a file; empty when there is none.
inline std::string contents(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream rest(text);
  for (std::string line; std::getline(rest, line);)
    lines.push_back(line);
  return lines;
}

}  // namespace tamo
