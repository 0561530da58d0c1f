#include "mutation/structure.hpp"

#include <algorithm>
#include <array>

namespace tamo::mutation {
namespace {

constexpr std::array<std::string_view, 8> noTypes{"co_await", "co_yield", "throw",  "delete",
                                                  "new",      "this",     "return", "co_return"};

class Parser {
 public:
  explicit Parser(const std::vector<Token>& tokens) : tokens_(tokens) { pairBrackets(); }

  Structure parse() {
    parseScope({0, tokens_.size()}, false);
    return std::move(found_);
  }

 private:
  struct Function {
    bool givesBool = false;
    bool givesOptional = false;
  };

  [[nodiscard]] bool is(std::size_t at, std::string_view text) const {
    return at < tokens_.size() && tokens_[at].is(text);
  }
  [[nodiscard]] bool isWord(std::size_t at) const {
    return at < tokens_.size() && tokens_[at].kind == TokenKind::word;
  }
  [[nodiscard]] bool isOpening(std::size_t at) const { return is(at, "(") || is(at, "[") || is(at, "{"); }

  void pairBrackets() {
    partner_.resize(tokens_.size(), tokens_.size());
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < tokens_.size(); ++at) {
      if (isOpening(at)) open.push_back(at);
      if ((is(at, ")") || is(at, "]") || is(at, "}")) && !open.empty()) {
        partner_[open.back()] = at;
        open.pop_back();
      }
    }
  }

  /// The next of the texts outside of inner brackets; `end` when there is none.
  template <class... Texts>
  [[nodiscard]] std::size_t find(Range range, const Texts&... texts) const {
    for (auto at = range.begin; at < range.end; ++at) {
      if ((is(at, texts) || ...)) return at;
      if (isOpening(at)) at = partner_[at];
    }
    return range.end;
  }

  [[nodiscard]] bool has(Range range, std::string_view word) const {
    return std::any_of(at(range.begin), at(range.end), [word](const Token& token) { return token.is(word); });
  }

  [[nodiscard]] std::vector<Token>::const_iterator at(std::size_t number) const {
    return tokens_.begin() + static_cast<std::ptrdiff_t>(number);
  }

  /// Behind the bracket that closes a template's parameters or arguments.
  [[nodiscard]] std::size_t pastAngles(std::size_t at) const {
    int depth = 0;
    for (; at < tokens_.size(); ++at) {
      if (is(at, "<")) ++depth;
      if (is(at, ">") && --depth == 0) return at + 1;
      if (isOpening(at)) at = partner_[at];
      if (is(at, ";")) break;
    }
    return at;
  }

  // The inside of a namespace or a class.
  void parseScope(Range range, bool inClass) {
    for (auto at = range.begin; at < range.end;) {
      if (tokens_[at].kind == TokenKind::directive || is(at, ";")) {
        ++at;
      } else if ((is(at, "public") || is(at, "private") || is(at, "protected")) && is(at + 1, ":")) {
        at += 2;
      } else if (is(at, "template") && is(at + 1, "<")) {
        at = pastAngles(at + 1);
      } else if (is(at, "using") || is(at, "enum") || is(at, "static_assert") || is(at, "friend")) {
        at = find({at, range.end}, ";") + 1;
      } else {
        at = parseMember({at, range.end}, inClass);
      }
    }
  }

  /// A declaration of any kind; gives where the next begins.
  std::size_t parseMember(Range range, bool inClass) {
    const auto stop = find(range, "{", ";", "=");
    if (stop >= range.end || is(stop, ";")) {
      parseDirect({range.begin, stop}, inClass);
      return stop + 1;
    }
    if (is(range.begin, "namespace") || is(range.begin, "extern")) {
      parseScope({stop + 1, partner_[stop]}, false);
      return partner_[stop] + 1;
    }
    const Range head{range.begin, stop};
    if (is(stop, "{") && isFunction(head)) return parseFunction(head, range.end);
    if (is(stop, "{") &&
        (is(range.begin, "struct") || is(range.begin, "class") || is(range.begin, "union"))) {
      parseScope({stop + 1, partner_[stop]}, true);
      return partner_[stop] + 1;
    }
    const auto end = find({stop, range.end}, ";");
    if (isFunction(head)) return end + 1;  // defaulted, deleted or pure
    parseVariable({range.begin, end}, stop, false);
    return end + 1;
  }

  [[nodiscard]] bool isFunction(Range head) const {
    if (has(head, "operator")) return true;
    const auto open = find(head, "(");
    return open < head.end && partner_[open] < head.end;
  }

  std::size_t parseFunction(Range head, std::size_t end) {
    // Members may be initialised with braces before the body begins.
    auto open = head.end;
    while (isWord(open - 1) && !isSpecifier(open - 1) && has(head, ":") && partner_[open] + 1 < end &&
           (is(partner_[open] + 1, ",") || is(partner_[open] + 1, "{")))
      open = find({partner_[open] + 1, end}, "{");
    const auto parameters = find(head, "(");
    const Range type{head.begin, parameters};
    const Function function{.givesBool = has(type, "bool") && !has(type, "Task") && !has(type, "optional"),
                            .givesOptional = has(type, "optional") && !has(type, "Task")};
    parseBlock({open + 1, partner_[open]}, function, true);
    return partner_[open] + 1;
  }

  [[nodiscard]] bool isSpecifier(std::size_t at) const {
    return is(at, "const") || is(at, "noexcept") || is(at, "override") || is(at, "final");
  }

  /// A variable of a namespace or a class that is initialised in round brackets.
  void parseDirect(Range range, bool inClass) {
    const auto open = find(range, "(");
    if (inClass || open >= range.end || !has({range.begin, open}, "constexpr")) return;
    parseVariable(range, open, false);
  }

  /// `sign` is where the initialiser begins.
  void parseVariable(Range range, std::size_t sign, bool local) {
    const auto word = find({range.begin, sign}, "constexpr");
    if (word < sign) found_.constants.push_back({.word = word, .range = range, .local = local});
    if (is(sign, "=")) {
      parseInitialiser({sign + 1, range.end});
    } else {
      parseElements({sign + 1, partner_[sign]}, is(sign, "{"));
    }
  }

  void parseInitialiser(Range value) {
    if (is(value.begin, "{")) {
      parseElements({value.begin + 1, partner_[value.begin]}, true);
    } else {
      parseValue(value);
    }
  }

  /// A value that can be exchanged; one that suspends cannot, because that must not be a part of a condition.
  void parseValue(Range value, Slot::Kind kind = Slot::Kind::value) {
    if (value.begin >= value.end) return;
    if (!has(value, "co_await")) found_.slots.push_back({kind, value});
    parseInner(value);
  }

  /// What lies within an expression: the bodies of lambdas and lists in braces.
  void parseInner(Range value) {
    for (auto at = value.begin; at < value.end; ++at) {
      if (is(at, "[") && isLambda(at)) {
        at = parseLambda(at, value.end);
      } else if (is(at, "{")) {
        parseElements({at + 1, partner_[at]}, true);
        at = partner_[at];
      }
    }
  }

  [[nodiscard]] bool isLambda(std::size_t at) const {
    if (at == 0) return true;
    return !is(at - 1, ")") && !is(at - 1, "]") && (!isWord(at - 1) || is(at - 1, "return"));
  }

  std::size_t parseLambda(std::size_t at, std::size_t end) {
    const auto open = find({partner_[at] + 1, end}, "{");
    if (open >= end) return partner_[at];
    parseBlock({open + 1, partner_[open]}, {}, true);
    return partner_[open];
  }

  void parseElements(Range inside, bool inBraces) {
    std::vector<Range> elements;
    for (auto at = inside.begin; at < inside.end;) {
      const auto comma = find({at, inside.end}, ",");
      elements.push_back({at, comma});
      parseElement({at, comma});
      at = comma + 1;
    }
    if (inBraces && !elements.empty()) found_.lists.push_back(std::move(elements));
  }

  void parseElement(Range element) {
    const bool named = is(element.begin, ".") && is(element.begin + 2, "=");
    const auto begin = named ? element.begin + 3 : element.begin;
    parseInitialiser({begin, element.end});
  }

  void parseBlock(Range inside, Function function, bool endsFunction) {
    std::optional<std::size_t> before;
    for (auto at = inside.begin; at < inside.end;) {
      const auto known = found_.statements.size();
      const auto end = parseStatement({at, inside.end}, function, endsFunction);
      const bool simple = found_.statements.size() > known &&
                          found_.statements[known].range == Range{at, end} &&
                          found_.statements[known].kind == Statement::Kind::expression;
      if (simple && before) found_.statements[*before].next = Range{at, end};
      before = simple ? std::optional(known) : std::nullopt;
      at = std::max(end, at + 1);
    }
  }

  /// Gives where the next statement begins.
  std::size_t parseStatement(Range range, Function function, bool endsFunction) {
    const auto at = range.begin;
    if (is(at, "{")) {
      const auto close = partner_[at];
      parseBlock({at + 1, close}, function, endsFunction && close + 1 >= range.end);
      return close + 1;
    }
    if (is(at, "if")) return parseIf(range, function, endsFunction);
    if (is(at, "while") || is(at, "for") || is(at, "switch")) return parseLoop(range, function);
    if (is(at, "try") || is(at, "do") || is(at, "else")) return at + 1;
    if (is(at, "catch")) return find(range, "{");
    if (is(at, "case") || is(at, "default")) return find(range, ":") + 1;
    const auto end = find(range, ";") + 1;
    if (is(at, "using") || is(at, "static_assert")) return end;
    parseSimple({at, end}, function, endsFunction && end >= range.end);
    return end;
  }

  std::size_t parseIf(Range range, Function function, bool endsFunction) {
    auto open = range.begin + 1;
    if (is(open, "constexpr")) ++open;
    parseCondition({open + 1, partner_[open]}, is(open - 1, "constexpr"));
    // Only what an else follows or nothing follows is the last of its function.
    const auto body = partner_[open] + 1;
    const auto bodyEnd = endOfStatement({body, range.end});
    const bool hasElse = is(bodyEnd, "else");
    const auto whole = hasElse ? endOfStatement({bodyEnd + 1, range.end}) : bodyEnd;
    const bool last = endsFunction && whole >= range.end;
    parseStatement({body, bodyEnd}, function, last);
    if (hasElse) parseStatement({bodyEnd + 1, whole}, function, last);
    return whole;
  }

  [[nodiscard]] std::size_t endOfStatement(Range range) const {
    const auto at = range.begin;
    if (is(at, "{")) return partner_[at] + 1;
    if (is(at, "if")) {
      const auto open = is(at + 1, "constexpr") ? at + 2 : at + 1;
      const auto end = endOfStatement({partner_[open] + 1, range.end});
      return is(end, "else") ? endOfStatement({end + 1, range.end}) : end;
    }
    if (is(at, "while") || is(at, "for") || is(at, "switch"))
      return endOfStatement({partner_[at + 1] + 1, range.end});
    return find(range, ";") + 1;
  }

  void parseCondition(Range inside, bool atCompileTime) {
    if (atCompileTime) return;
    if (const auto semicolon = find(inside, ";"); semicolon < inside.end) {
      parseSimple({inside.begin, semicolon + 1}, {}, true);
      parseCondition({semicolon + 1, inside.end}, false);
      return;
    }
    const auto sign = find(inside, "=");
    if (sign < inside.end) return parseValue({sign + 1, inside.end});
    found_.conditions.push_back(inside);
    parseValue(inside, Slot::Kind::condition);
  }

  std::size_t parseLoop(Range range, Function function) {
    const auto open = range.begin + 1;
    const Range inside{open + 1, partner_[open]};
    if (is(range.begin, "while")) {
      parseCondition(inside, false);
    } else if (is(range.begin, "switch")) {
      parseValue(inside);
    } else if (const auto colon = find(inside, ":"); colon < inside.end) {
      parseValue({colon + 1, inside.end});
    } else {
      parseCounting(inside);
    }
    const auto body = partner_[open] + 1;
    const auto end = endOfStatement({body, range.end});
    parseStatement({body, end}, function, false);
    return end;
  }

  void parseCounting(Range inside) {
    const auto first = find(inside, ";");
    const auto second = find({first + 1, inside.end}, ";");
    const auto sign = find({inside.begin, first}, "=");
    if (sign < first) parseInitialiser({sign + 1, first});
    if (first + 1 < second) parseCondition({first + 1, second}, false);
    parseValue({second + 1, inside.end});
  }

  /// A statement that ends with a semicolon.
  void parseSimple(Range range, Function function, bool last) {
    if (const auto sign = initialiserOf(range)) {
      if (*sign < range.end) parseVariable({range.begin, range.end - 1}, *sign, true);
      return;
    }
    const bool returns = is(range.begin, "return") || is(range.begin, "co_return");
    const bool jumps = is(range.begin, "break") || is(range.begin, "continue");
    const auto kind =
        returns ? Statement::Kind::returning : (jumps ? Statement::Kind::jump : Statement::Kind::expression);
    found_.slots.push_back({Slot::Kind::statement, range});
    found_.statements.push_back({.kind = kind,
                                 .range = range,
                                 .isLast = last,
                                 .inBoolFunction = function.givesBool,
                                 .inOptionalFunction = function.givesOptional});
    parseInner(range);
  }

  /// Where a declared variable's value begins, the statement's end when it has none; absent for an expression.
  [[nodiscard]] std::optional<std::size_t> initialiserOf(Range range) const {
    auto at = range.begin;
    while (is(at, "const") || is(at, "constexpr") || is(at, "static") || is(at, "typename") ||
           is(at, "mutable"))
      ++at;
    if (!isWord(at) || std::ranges::find(noTypes, tokens_[at].text) != noTypes.end()) return std::nullopt;
    for (;;) {
      if (is(at, "::")) ++at;
      if (!isWord(at)) return std::nullopt;
      ++at;
      if (is(at, "<") && !tokens_[at].spaceBefore) at = pastAngles(at);
      if (!is(at, "::")) break;
    }
    while (is(at, "&") || is(at, "&&") || is(at, "*") || is(at, "const"))
      ++at;
    const bool bound = is(at, "[") && tokens_[at].spaceBefore;
    if (!bound && !isWord(at)) return std::nullopt;
    at = bound ? partner_[at] + 1 : at + 1;
    if (is(at, "=") || is(at, "(") || is(at, "{")) return at;
    return range.end;
  }

  const std::vector<Token>& tokens_;
  std::vector<std::size_t> partner_;
  Structure found_;
};

}  // namespace

Structure structure(const std::vector<Token>& tokens) {
  return Parser(tokens).parse();
}

}  // namespace tamo::mutation
