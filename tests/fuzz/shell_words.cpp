#include "fuzz/shell_words.hpp"

namespace tamo::fuzz {
namespace {

bool isPlain(char character) {
  constexpr std::string_view others = "/.-_=+:,@%";
  const bool letter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  return letter || (character >= '0' && character <= '9') || others.find(character) != std::string_view::npos;
}

/// Takes one character, or one quoted part, off the front and appends what it stands for.
bool takePart(std::string_view& rest, std::string& word) {
  const char first = rest.front();
  if (first == '\'') {
    const auto end = rest.find('\'', 1);
    if (end == std::string_view::npos) return false;
    word += rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
    return true;
  }
  const bool escape = first == '\\';
  if (escape ? rest.size() < 2 || rest[1] == '\n' : !isPlain(first)) return false;
  word += rest[escape ? 1 : 0];
  rest.remove_prefix(escape ? 2 : 1);
  return true;
}

}  // namespace

std::optional<std::vector<std::string>> shellWords(std::string_view command) {
  std::vector<std::string> words;
  while (!command.empty()) {
    if (command.front() == ' ') {
      command.remove_prefix(1);
    } else if (command.starts_with("&& ")) {
      words.emplace_back("&&");
      command.remove_prefix(2);
    } else {
      auto& word = words.emplace_back();
      while (!command.empty() && command.front() != ' ')
        if (!takePart(command, word)) return std::nullopt;
    }
  }
  return words;
}

}  // namespace tamo::fuzz
