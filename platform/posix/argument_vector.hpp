#pragma once

#include <string>
#include <vector>

namespace tamo::platform {

/// Words in the form that exec and spawn take: pointers with a null behind the last. They point into `words`,
/// which is kept as it is until the call has been made.
[[nodiscard]] inline std::vector<char*> vectorOf(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (auto& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace tamo::platform
