#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Texts that are made of words: taken apart and put together. Pure.
namespace tamo::stage {

/// What stands between the separators, the empty parts too: at least one part.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);

/// The words with single blanks between.
[[nodiscard]] std::string joinedWords(const std::vector<std::string>& words);

}  // namespace tamo::stage
