#include "mutation/tokens.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

namespace tamo::mutation {
namespace {

// A longer sign stands before its beginnings. Closing brackets of templates are single signs, as in `a<b<c>>`.
constexpr std::array<std::string_view, 25> signs{"<=>", "...", "->*", "<<=", "::", "->", "++", "--", "<<",
                                                 "<=",  ">=",  "==",  "!=",  "&&", "||", "+=", "-=", "*=",
                                                 "/=",  "%=",  "&=",  "|=",  "^=", ".*", "##"};

bool isWordCharacter(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

bool isSpace(char character) {
  return std::isspace(static_cast<unsigned char>(character)) != 0;
}

class TokenReader {
 public:
  explicit TokenReader(std::string_view source) : source_(source) {}

  std::vector<Token> read() {
    while (skipBlank(), at_ < source_.size()) {
      const auto begin = at_;
      const auto kind = advance();
      add(kind, begin);
    }
    return std::move(tokens_);
  }

 private:
  [[nodiscard]] std::string_view rest() const { return source_.substr(at_); }
  [[nodiscard]] char here() const { return at_ < source_.size() ? source_[at_] : '\0'; }

  void skipTo(std::size_t where) { at_ = std::min(where, source_.size()); }

  void skipPast(std::string_view what) {
    const auto found = source_.find(what, at_);
    skipTo(found == std::string_view::npos ? source_.size() : found + what.size());
  }

  void skipBlank() {
    while (at_ < source_.size()) {
      if (isSpace(here())) {
        ++at_;
      } else if (rest().starts_with("//")) {
        skipTo(source_.find('\n', at_));
      } else if (rest().starts_with("/*")) {
        skipPast("*/");
      } else {
        return;
      }
    }
  }

  /// Steps over one token.
  TokenKind advance() {
    if (here() == '#') return advanceDirective();
    if (const auto prefix = prefixOfText()) return advanceText(*prefix);
    if (here() == '\'') return advanceQuoted('\''), TokenKind::character;
    if (std::isdigit(static_cast<unsigned char>(here())) != 0) return advanceNumber();
    if (isWordCharacter(here())) {
      while (isWordCharacter(here()))
        ++at_;
      return TokenKind::word;
    }
    const auto found = std::ranges::find_if(signs, [this](auto sign) { return rest().starts_with(sign); });
    at_ += found == signs.end() ? 1 : found->size();
    return TokenKind::sign;
  }

  /// The length of what stands before a text's quote; absent where no text begins.
  [[nodiscard]] std::optional<std::size_t> prefixOfText() const {
    for (const std::string_view prefix : {"", "R", "u8", "u8R", "L", "u", "U"})
      if (rest().starts_with(prefix) && rest().substr(prefix.size()).starts_with('"')) return prefix.size();
    return std::nullopt;
  }

  TokenKind advanceText(std::size_t prefix) {
    const bool raw = prefix > 0 && source_[at_ + prefix - 1] == 'R';
    at_ += prefix;
    if (raw) {
      const auto open = source_.find('(', at_);
      const auto end = std::string(")").append(source_.substr(at_ + 1, open - at_ - 1)).append("\"");
      skipPast(end);
    } else {
      advanceQuoted('"');
    }
    while (isWordCharacter(here()))
      ++at_;
    return TokenKind::text;
  }

  void advanceQuoted(char quote) {
    for (++at_; at_ < source_.size() && here() != quote; ++at_)
      if (here() == '\\') ++at_;
    skipTo(at_ + 1);
  }

  TokenKind advanceNumber() {
    while (isWordCharacter(here()) || here() == '\'' || here() == '.')
      ++at_;
    return TokenKind::number;
  }

  TokenKind advanceDirective() {
    do {
      skipTo(source_.find('\n', at_ + 1));
    } while (at_ < source_.size() && source_[at_ - 1] == '\\');
    return TokenKind::directive;
  }

  void add(TokenKind kind, std::size_t begin) {
    line_ += static_cast<std::size_t>(std::ranges::count(source_.substr(counted_, begin - counted_), '\n'));
    counted_ = begin;
    tokens_.push_back({.kind = kind,
                       .text = source_.substr(begin, at_ - begin),
                       .offset = begin,
                       .line = line_,
                       .spaceBefore = begin > 0 && isSpace(source_[begin - 1]),
                       .spaceBehind = at_ < source_.size() && isSpace(source_[at_])});
  }

  std::string_view source_;
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::size_t counted_ = 0;
  std::size_t line_ = 1;
};

}  // namespace

std::vector<Token> tokens(std::string_view source) {
  return TokenReader(source).read();
}

}  // namespace tamo::mutation
