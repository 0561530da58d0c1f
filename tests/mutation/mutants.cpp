#include "mutation/mutants.hpp"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>

namespace tamo::mutation {
namespace {

using Replacements = std::vector<std::string_view>;

/// What an operator between two operands is exchanged for.
const std::map<std::string_view, Replacements>& exchanges() {
  static const std::map<std::string_view, Replacements> table{
      {"<", {"<=", ">"}}, {"<=", {"<", ">"}}, {">", {">=", "<"}}, {">=", {">", "<"}}, {"==", {"!="}},
      {"!=", {"=="}},     {"&&", {"||"}},     {"||", {"&&"}},     {"+", {"-"}},       {"-", {"+"}},
      {"*", {"/"}},       {"/", {"*"}},       {"%", {"*"}},       {"+=", {"-="}},     {"-=", {"+="}},
  };
  return table;
}

std::string_view ruleOf(std::string_view sign) {
  if (sign == "&&" || sign == "||") return "and, or";
  return sign.find_first_of("<>=!") == 0 && sign != "=" ? "comparison" : "arithmetic";
}

class Maker {
 public:
  Maker(const std::vector<Token>& tokens, const Structure& structure)
      : tokens_(tokens), structure_(structure) {}

  std::vector<Mutant> make() {
    for (std::size_t at = 0; at < tokens_.size(); ++at)
      changeToken(at);
    for (const auto& condition : structure_.conditions)
      negate(condition);
    for (const auto& statement : structure_.statements)
      changeStatement(statement);
    for (const auto& list : structure_.lists)
      shorten(list);
    // Not a stable sort: the library's uses what the language has given up.
    std::multimap<std::size_t, Mutant> inOrder;
    for (auto& mutant : made_)
      inOrder.emplace(mutant.edits.front().range.begin, std::move(mutant));
    std::vector<Mutant> all;
    for (auto& entry : inOrder)
      all.push_back(std::move(entry.second));
    return all;
  }

 private:
  void add(std::string_view rule, Range range, std::string text) {
    made_.push_back({.rule = rule, .edits = {{.range = range, .text = std::move(text)}}});
  }

  void changeToken(std::size_t at) {
    const auto& token = tokens_[at];
    if (token.kind == TokenKind::number) changeNumber(at);
    if (token.kind == TokenKind::text) changeText(at);
    if (token.is("true")) add("truth", {at, at + 1}, "false");
    if (token.is("false")) add("truth", {at, at + 1}, "true");
    if (token.is("!")) add("not dropped", {at, at + 1}, "");
    if (token.is("++")) add("arithmetic", {at, at + 1}, "--");
    if (token.is("--")) add("arithmetic", {at, at + 1}, "++");
    if (token.is("?")) negateChoice(at);
    if (token.kind != TokenKind::sign || !token.isBetween() || isOfOperator(at) || joinsTexts(at)) return;
    if (const auto found = exchanges().find(token.text); found != exchanges().end())
      for (const auto other : found->second)
        add(ruleOf(token.text), {at, at + 1}, std::string(other));
  }

  /// There is nothing but a sum of texts.
  [[nodiscard]] bool joinsTexts(std::size_t at) const {
    const auto isText = [this](std::size_t side) { return tokens_[side].kind == TokenKind::text; };
    return at > 0 && at + 1 < tokens_.size() && tokens_[at].text.starts_with('+') &&
           (isText(at - 1) || isText(at + 1));
  }

  [[nodiscard]] bool isOfOperator(std::size_t at) const { return at > 0 && tokens_[at - 1].is("operator"); }

  /// The `= 0` of a function without a body is no number.
  [[nodiscard]] bool isPure(std::size_t at) const {
    if (at < 2 || !tokens_[at].is("0") || !tokens_[at - 1].is("=")) return false;
    const auto& before = tokens_[at - 2];
    return before.is(")") || before.is("const") || before.is("noexcept");
  }

  void changeNumber(std::size_t at) {
    if (isPure(at)) return;
    std::string digits(tokens_[at].text);
    const auto suffix = std::min(digits.find_first_not_of("0123456789'"), digits.size());
    const auto rest = digits.substr(suffix);
    if (rest.starts_with('.') || rest.starts_with('x') || rest.starts_with('b')) return;
    digits.resize(suffix);
    std::erase(digits, '\'');
    long long value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    std::set<long long> others{value + 1, value - 1, 0};
    others.erase(value);
    others.erase(-1);
    for (const auto other : others)
      add("number", {at, at + 1}, std::to_string(other) + rest);
  }

  void changeText(std::size_t at) {
    const auto text = tokens_[at].text;
    const auto quote = text.find('"');
    const bool raw = quote > 0 && text[quote - 1] == 'R';
    const auto begin = raw ? text.find('(') + 1 : quote + 1;
    add("text", {at, at + 1}, std::string(text.substr(0, begin)).append("~").append(text.substr(begin)));
  }

  /// The condition of a choice reaches back to whatever its expression begins with.
  void negateChoice(std::size_t question) {
    auto begin = question;
    int depth = 0;
    while (begin > 0) {
      const auto& token = tokens_[begin - 1];
      if (token.is(")") || token.is("]") || token.is("}")) ++depth;
      if ((token.is("(") || token.is("[") || token.is("{")) && depth-- == 0) break;
      if (depth == 0 && (token.is(",") || token.is(";") || token.is("=") || token.is("return") ||
                         token.is("co_return") || token.is("?") || token.is(":")))
        break;
      --begin;
    }
    negate({begin, question});
  }

  /// Where the condition is one comparison or begins with a lone `!`, other changes say the same.
  void negate(Range condition) {
    if (condition.size() == 0) return;
    const auto joins = count(condition, {"&&", "||"});
    const bool turned = count(condition, {"==", "!="}) == 1 || tokens_[condition.begin].is("!");
    if (joins == 0 && turned) return;
    add("negated", condition, "!(" + written(tokens_, condition) + ")");
  }

  [[nodiscard]] std::ptrdiff_t count(Range range, const Replacements& signs) const {
    const auto begin = tokens_.begin();
    return std::count_if(
        begin + static_cast<std::ptrdiff_t>(range.begin), begin + static_cast<std::ptrdiff_t>(range.end),
        [&signs](const Token& token) { return std::ranges::find(signs, token.text) != signs.end(); });
  }

  void changeStatement(const Statement& statement) {
    const auto range = statement.range;
    if (statement.kind != Statement::Kind::returning) {
      add("statement dropped", range, ";");
    } else {
      changeReturn(statement);
    }
    if (!statement.next) return;
    const auto next = *statement.next;
    const auto first = written(tokens_, range);
    const auto second = written(tokens_, next);
    if (first == second) return;
    made_.push_back({.rule = "order", .edits = {{range, second}, {next, first}}});
  }

  void changeReturn(const Statement& statement) {
    const auto range = statement.range;
    const Range value{range.begin + 1, range.end - 1};
    if (!statement.isLast) add("return dropped", range, ";");
    if (value.size() == 0) return;
    const auto text = written(tokens_, value);
    if (statement.inOptionalFunction && !text.ends_with("nullopt"))
      add("nothing returned", range, std::string(tokens_[range.begin].text) + " std::nullopt;");
    if (statement.inBoolFunction && text != "true" && text != "false") negate(value);
  }

  void shorten(const std::vector<Range>& list) {
    if (list.size() < 2) return;
    for (std::size_t number = 0; number < list.size(); ++number) {
      auto range = list[number];
      if (range.size() == 0) continue;
      if (number + 1 < list.size()) {
        ++range.end;
      } else if (tokens_[range.begin - 1].is(",")) {
        --range.begin;
      }
      add("element dropped", range, "");
    }
  }

  const std::vector<Token>& tokens_;
  const Structure& structure_;
  std::vector<Mutant> made_;
};

void append(std::string& text, const std::vector<Token>& tokens, Range range) {
  for (auto at = range.begin; at < range.end; ++at) {
    const bool apart = at > 0 && tokens[at - 1].offset + tokens[at - 1].text.size() < tokens[at].offset;
    if (apart && !text.empty()) text += ' ';
    text += tokens[at].text;
  }
}

}  // namespace

std::vector<Mutant> mutants(const std::vector<Token>& tokens, const Structure& structure) {
  return Maker(tokens, structure).make();
}

std::string written(const std::vector<Token>& tokens, Range range) {
  std::string text;
  append(text, tokens, range);
  return text;
}

std::string written(const std::vector<Token>& tokens, Range range, const Edit& edit) {
  std::string text;
  append(text, tokens, {range.begin, edit.range.begin});
  text += ' ' + edit.text + ' ';
  append(text, tokens, {edit.range.end, range.end});
  return text;
}

}  // namespace tamo::mutation
