#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamo::stage {

/// One word of a script.
struct ScriptWord {
  /// A name is a run of letters and digits; a sign is "&", "(" or ")".
  enum class Kind { Name, Literal, Sign, LineEnd };
  Kind kind = Kind::Name;
  /// A literal without its quotes, its escapes resolved.
  std::string text{};

  friend bool operator==(const ScriptWord&, const ScriptWord&) = default;
};

/// The words of a script; absent when it holds a character that begins none, or a literal without its end.
/// Each line is closed by a LineEnd, the last one as well. Pure.
[[nodiscard]] std::optional<std::vector<ScriptWord>> scriptWords(std::string_view script);

}  // namespace tamo::stage
