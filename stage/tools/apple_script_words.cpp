#include "stage/tools/apple_script_words.hpp"

#include <cctype>

namespace tamo::stage {
namespace {

using Kind = ScriptWord::Kind;

bool isNameLetter(char letter) {
  return std::isalnum(static_cast<unsigned char>(letter)) != 0;
}

ScriptWord takeName(std::string_view& rest) {
  std::size_t size = 0;
  while (size < rest.size() && isNameLetter(rest[size]))
    ++size;
  ScriptWord word{.kind = Kind::Name, .text = std::string(rest.substr(0, size))};
  rest.remove_prefix(size);
  return word;
}

/// The escapes of AppleScript. One that it does not know is a mistake in the script.
std::optional<char> escaped(char letter) {
  switch (letter) {
    case 'n':
      return '\n';
    case 't':
      return '\t';
    case 'r':
      return '\r';
    case '"':
    case '\\':
      return letter;
    default:
      return std::nullopt;
  }
}

/// `rest` begins with the opening quote. A literal without its end is a mistake, as is an escape that means nothing.
std::optional<ScriptWord> takeLiteral(std::string_view& rest) {
  ScriptWord word{.kind = Kind::Literal};
  for (std::size_t at = 1; at < rest.size(); ++at) {
    if (rest[at] == '"') {
      rest.remove_prefix(at + 1);
      return word;
    }
    if (rest[at] != '\\') {
      word.text += rest[at];
      continue;
    }
    const auto meant = at + 1 < rest.size() ? escaped(rest[++at]) : std::nullopt;
    if (!meant) return std::nullopt;
    word.text += *meant;
  }
  return std::nullopt;
}

/// Only what the companion's own scripts are made of is known. Anything else is a mistake, so that a script which a Mac
/// would read otherwise is not taken for understood.
std::optional<ScriptWord> takeScriptWord(std::string_view& rest) {
  const char first = rest.front();
  if (first == '"') return takeLiteral(rest);
  if (isNameLetter(first)) return takeName(rest);
  rest.remove_prefix(1);
  if (first == '\n') return ScriptWord{.kind = Kind::LineEnd};
  if (first == '&' || first == '(' || first == ')')
    return ScriptWord{.kind = Kind::Sign, .text = std::string(1, first)};
  return std::nullopt;
}

}  // namespace

/// The end of the last line is added where it is missing, so that each line can be read in the same way.
std::optional<std::vector<ScriptWord>> scriptWords(std::string_view script) {
  std::vector<ScriptWord> words;
  for (auto rest = script; !rest.empty();) {
    if (rest.front() == ' ' || rest.front() == '\t') {
      rest.remove_prefix(1);
      continue;
    }
    auto word = takeScriptWord(rest);
    if (!word) return std::nullopt;
    words.push_back(*std::move(word));
  }
  if (words.empty() || words.back().kind != Kind::LineEnd) words.push_back({.kind = Kind::LineEnd});
  return words;
}

}  // namespace tamo::stage
