#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Takes out of a text what names a person or a machine. Pure.
namespace tamo::acceptance {

/// What must not be told, and what stands in its place.
struct Secret {
  std::string text;
  std::string instead;
};

/// In the order in which they are given, so a home goes before the name that is a part of it. One that begins and ends
/// with a letter or a digit is taken for a word: it counts only where it stands by itself, without regard to the case
/// of ASCII letters. One of less than two characters is none.
[[nodiscard]] std::string redacted(std::string text, const std::vector<Secret>& secrets);

/// Who is here: the user's names and home, the machine's names and its serial. What is not known is empty.
struct Identity {
  std::string home;
  std::string userName;
  std::string fullName;
  std::vector<std::string> hostNames{};
  std::string serial{};
  /// The user's own temporary directory, which has a name of its own.
  std::string temporary{};
};

[[nodiscard]] std::vector<Secret> secretsOf(const Identity& identity);

}  // namespace tamo::acceptance
