#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The words of a C++ source, as far as changing it on purpose needs them.
namespace tamo::mutation {

enum class TokenKind { word, number, text, character, sign, directive };

/// A view into the source that was taken apart, which has to outlive it.
struct Token {
  TokenKind kind = TokenKind::sign;
  std::string_view text;
  std::size_t offset = 0;
  /// Counted from 1.
  std::size_t line = 1;
  /// Whether white space or a comment stands before or behind it: in formatted code that tells a comparison
  /// from a template's bracket.
  bool spaceBefore = false;
  bool spaceBehind = false;

  [[nodiscard]] bool is(std::string_view what) const { return text == what; }
  /// An operator between two operands.
  [[nodiscard]] bool isBetween() const { return spaceBefore && spaceBehind; }
};

/// Comments are no tokens; a directive is one, whole.
[[nodiscard]] std::vector<Token> tokens(std::string_view source);

}  // namespace tamo::mutation
