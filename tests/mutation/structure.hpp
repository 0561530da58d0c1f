#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "mutation/tokens.hpp"

/// Where the statements, the conditions and the values of a source lie. It is no parser of C++: it knows the forms
/// that this system's formatted code uses, and what it takes for something else is found out by the compiler.
namespace tamo::mutation {

/// Tokens, by their numbers; the end is not part of it.
struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;

  [[nodiscard]] bool contains(const Range& inner) const { return begin <= inner.begin && inner.end <= end; }
  [[nodiscard]] std::size_t size() const { return end - begin; }
  friend bool operator==(const Range&, const Range&) = default;
};

/// A place where code can be exchanged for other code at run time.
struct Slot {
  /// A condition may be anything that a bool can be made of.
  enum class Kind { value, condition, statement };
  Kind kind = Kind::value;
  Range range;
};

struct Statement {
  enum class Kind { expression, returning, jump };
  Kind kind = Kind::expression;
  /// With its semicolon.
  Range range;
  /// Nothing of its function comes behind it.
  bool isLast = false;
  bool inBoolFunction = false;
  bool inOptionalFunction = false;
  /// The expression statement that follows directly.
  std::optional<Range> next = std::nullopt;
};

/// A variable that is constexpr: it has to lose that before its value can be exchanged at run time.
struct Constant {
  std::size_t word = 0;
  Range range;
  bool local = false;
};

struct Structure {
  std::vector<Slot> slots;
  std::vector<Statement> statements;
  std::vector<Range> conditions;
  /// The elements of each list in braces.
  std::vector<std::vector<Range>> lists;
  std::vector<Constant> constants;
};

[[nodiscard]] Structure structure(const std::vector<Token>& tokens);

}  // namespace tamo::mutation
