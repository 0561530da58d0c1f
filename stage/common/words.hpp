#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Texts that are made of words: taken apart and put together. Pure.
namespace tamo::stage {

/// What stands between the separators, the empty parts too: at least one part.
[[nodiscard]] inline std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0; start <= text.size();) {
    const auto end = std::min(text.find(separator, start), text.size());
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

/// The words with single blanks between.
[[nodiscard]] inline std::string joinedWords(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

}  // namespace tamo::stage
